#include "vexapp/AppFrame.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QSettings>
#include <QStackedWidget>
#include <QStatusBar>
#include <QToolBar>

#include "resources/Commands.h"
#include "resources/DrawnIcon.h"
#include "syntax/ProcedureRun.h"
#include "vexapp/AboutDlg.h"
#include "vexapp/Appearance.h"
#include "vexapp/DataWindow.h"
#include "vexapp/Display.h"
#include "vexapp/EngineDlg.h"
#include "vexapp/ProcedureCommands.h"
#include "vexapp/StartPage.h"
#include "vexapp/TextWindow.h"
#include "vexapp/VexApp.h"

using namespace commands;

namespace {

constexpr QSize kFirstSize(1100, 720);
constexpr int kIconSize = 24;

struct CommandPicture {
  int number;
  Picture picture;
};
constexpr CommandPicture kPictures[] = {
    {kFileNew, Picture::New},
    {kFileOpen, Picture::Open},
    {kFileSave, Picture::Save},
    {kFileImport, Picture::Import},
    {kFileExport, Picture::Export},
    {kFilePrint, Picture::Print},
    {kEditUndo, Picture::Undo},
    {kEditRedo, Picture::Redo},
    {kEditFind, Picture::Find},
    {kViewGoToCase, Picture::GoTo},
    {kViewLabels, Picture::Labels},
    {kDataDefine, Picture::Define},
    {kDataInsertVariable, Picture::InsertVariable},
    {kDataInsertCase, Picture::InsertCase},
    {kDataSort, Picture::SortUp},
    {kDataSelect, Picture::Select},
    {kDataWeight, Picture::Weight},
};

}  // namespace

CAppFrame::CAppFrame(CVexApp& app)
    : app_(app),
      menus_(std::make_unique<CMenus>(*menuBar())),
      panes_(std::make_unique<CStatusBarPanes>(*statusBar())) {
  setObjectName("mainWindow");
  setAcceptDrops(true);
  for (const auto& [number, picture] : kPictures) {
    menus_->Action(number)->setIcon(DrawnIcon(picture));
  }
  BuildPages();
  BuildBars();
  HandleCommands();
  HandleProcedures();
  HandleData();
  HandleTexts();
  BuildAppearanceMenu();
  app_.SetMainFrame(this, this);
  app_.SetTargetCheck([this](const QString& path) { return WhyNotWriteTo(path); });
  RestoreWindow();
  ShowRecentFiles();
  UpdateTitle();
  UpdateActions();
}

CAppFrame::~CAppFrame() {
  area_->disconnect(this);
  // Windows that are closed already may still wait for their end.
  for (CFrameWindow* window : findChildren<CFrameWindow*>()) {
    window->disconnect(this);
    delete window;
  }
  app_.SetTargetCheck({});
  app_.SetOpener({});
  app_.SetMainFrame(nullptr, nullptr);
}

void CAppFrame::BuildPages() {
  pages_ = new QStackedWidget(this);
  startPage_ = new CStartPage(pages_);
  area_ = new QMdiArea(pages_);
  area_->setObjectName("dataArea");
  area_->setDocumentMode(true);
  area_->setTabsClosable(true);
  area_->setTabsMovable(true);
  pages_->addWidget(startPage_);
  pages_->addWidget(area_);
  setCentralWidget(pages_);
  connect(area_, &QMdiArea::subWindowActivated, this, &CAppFrame::WindowActivated);
  connect(startPage_, &CStartPage::OpenAsked, this, &CAppFrame::AskAndOpen);
  connect(startPage_, &CStartPage::ImportAsked, this, &CAppFrame::AskAndImport);
  connect(startPage_, &CStartPage::FileAsked, this, &CAppFrame::OpenRecent);
}

void CAppFrame::BuildBars() {
  toolBar_ = addToolBar(tr("Toolbar"));
  toolBar_->setObjectName("toolBar");
  FillBar(*toolBar_, {kFileNew, kFileOpen, kFileSave, kFilePrint, kSeparator, kFileImport,
                      kFileExport, kSeparator, kEditUndo, kEditRedo});
  dataBar_ = addToolBar(tr("Data Toolbar"));
  dataBar_->setObjectName("dataToolBar");
  FillBar(*dataBar_,
          {kViewGoToCase, kEditFind, kSeparator, kDataDefine, kDataInsertVariable, kDataInsertCase,
           kSeparator, kDataSort, kDataSelect, kDataWeight, kSeparator, kViewLabels});
  cellLabel_ = new QLabel(dataBar_);
  cellLabel_->setObjectName("cellLabel");
  cellLabel_->setTextFormat(Qt::PlainText);
  cellLabel_->setContentsMargins(8, 0, 8, 0);
  cellLabel_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  dataBar_->addWidget(cellLabel_);
  for (QToolBar* bar : {toolBar_, dataBar_}) {
    bar->setIconSize(QSize(kIconSize, kIconSize));
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
  }
  dataBar_->hide();
}

void CAppFrame::FillBar(QToolBar& bar, std::initializer_list<int> numbers) {
  for (const int number : numbers) {
    if (number == kSeparator) {
      bar.addSeparator();
    } else {
      bar.addAction(menus_->Action(number));
    }
  }
}

void CAppFrame::Handle(int number, void (CAppFrame::*handler)()) {
  QAction* const action = menus_->Action(number);
  action->setEnabled(true);
  connect(action, &QAction::triggered, this, [this, handler] {
    if (!app_.IsBusy()) (this->*handler)();
  });
}

void CAppFrame::HandleCommands() {
  Handle(kFileNew, &CAppFrame::NewDataSet);
  Handle(kFileOpen, &CAppFrame::AskAndOpen);
  Handle(kFileSave, &CAppFrame::SaveCurrent);
  Handle(kFileSaveAs, &CAppFrame::SaveCurrentAs);
  Handle(kFileImport, &CAppFrame::AskAndImport);
  Handle(kFileExport, &CAppFrame::ExportCurrent);
  Handle(kFileClose, &CAppFrame::CloseCurrent);
  Handle(kWindowTile, &CAppFrame::Tile);
  Handle(kWindowCascade, &CAppFrame::Cascade);
  Handle(kWindowNext, &CAppFrame::Next);
  Handle(kWindowPrevious, &CAppFrame::Previous);
  Handle(kWindowCloseAll, &CAppFrame::CloseAll);
  Handle(kStatisticsEngine, &CAppFrame::AskForEngine);
  Handle(kHelpAbout, &CAppFrame::ShowAbout);

  QAction* const leave = menus_->Action(kFileExit);
  leave->setEnabled(true);
  connect(leave, &QAction::triggered, this, &QWidget::close);

  const auto toggle = [this](int number, bool checked, auto handler) {
    QAction* const action = menus_->Action(number);
    action->setEnabled(true);
    action->setCheckable(true);
    action->setChecked(checked);
    connect(action, &QAction::triggered, this, handler);
  };
  toggle(kViewToolBar, true, [this](bool on) { toolBar_->setVisible(on); });
  toggle(kViewStatusBar, true, [this](bool on) { statusBar()->setVisible(on); });
  toggle(kViewDataToolBar, false, [this](bool on) {
    dataBarWanted_ = on;
    ToggleBarVisible(kDataToolBar, current_ != nullptr);
  });
  toggle(kFileKeepLabels, QSettings().value("import/keepLabels", false).toBool(),
         [](bool on) { QSettings().setValue("import/keepLabels", on); });
  toggle(kWindowTabs, true, [this](bool on) { ShowAsTabs(on); });
  connect(menus_->Menu("&Window"), &QMenu::aboutToShow, this, &CAppFrame::FillWindowMenu);
}

void CAppFrame::HandleProcedures() {
  for (const PROCEDURECOMMAND& command : ProcedureCommands()) {
    connect(menus_->Action(command.number), &QAction::triggered, this, [this, run = command.run] {
      if (app_.IsBusy() || current_ == nullptr) return;
      current_->Table().EndEdit();
      run(*current_);
    });
  }
  // Variables and their types change without the window's knowledge.
  for (const char* menu : {"&Statistics", "&Transformation"}) {
    connect(menus_->Menu(menu), &QMenu::aboutToShow, this, &CAppFrame::UpdateActions);
  }
}

void CAppFrame::BuildAppearanceMenu() {
  auto* group = new QActionGroup(this);
  const std::pair<int, Appearance> choices[] = {{kAppearanceSystem, Appearance::System},
                                                {kAppearanceLight, Appearance::Light},
                                                {kAppearanceDark, Appearance::Dark}};
  for (const auto& [number, appearance] : choices) {
    QAction* const action = menus_->Action(number);
    action->setEnabled(true);
    action->setCheckable(true);
    action->setChecked(appearance == ChosenAppearance());
    group->addAction(action);
    connect(action, &QAction::triggered, this, [choice = appearance] { ChooseAppearance(choice); });
  }
}

void CAppFrame::UpdateActions() {
  const bool open = current_ != nullptr;
  const bool saveable = open && current_->CanBeSaved();
  menus_->Action(kFileExport)->setEnabled(saveable);
  menus_->Action(kViewDataToolBar)->setEnabled(open);
  for (const PROCEDURECOMMAND& command : ProcedureCommands()) {
    menus_->Action(command.number)
        ->setEnabled(open && CanRunProcedure(current_->Document(), command.needsOrdinal));
  }
  for (const int number :
       {kFileClose, kWindowTile, kWindowCascade, kWindowNext, kWindowPrevious, kWindowCloseAll}) {
    menus_->Action(number)->setEnabled(Active() != nullptr);
  }
  UpdateTextActions();
  UpdateDataActions();
  const bool text = currentText_ != nullptr;
  menus_->Action(kFileSave)->setEnabled(saveable || (text && currentText_->CanReplace()));
  menus_->Action(kFileSaveAs)->setEnabled(saveable || text);
}

void CAppFrame::ToggleBarVisible(int bar, bool visible) {
  if (bar != kDataToolBar) return;
  dataBar_->setVisible(visible && dataBarWanted_);
  menus_->Action(kViewDataToolBar)->setChecked(visible && dataBarWanted_);
}

void CAppFrame::RestoreViewLayout() {
  // Other data windows still use the arrangement.
  if (DataWindows().size() > 1 || layoutBefore_.isEmpty()) return;
  restoreState(layoutBefore_);
  layoutBefore_.clear();
  toolBar_->setVisible(menus_->Action(kViewToolBar)->isChecked());
}

void CAppFrame::AddToRecentFileList(const CString& pathName) {
  const QString path = PathText(pathName);
  CDataWindow* const window = opening_ != nullptr ? opening_ : WindowOf(path);
  recent_.Add(path, window != nullptr ? window->Document().GetExtern() : EXTERNDATA());
  ShowRecentFiles();
}

void CAppFrame::ShowRecentFiles() {
  QMenu* const menu = menus_->RecentFilesMenu();
  menu->clear();
  int number = 0;
  for (const RECENTFILE& file : recent_.Files()) {
    const QString shown = fontMetrics().elidedText(file.path, Qt::ElideMiddle, 480);
    QAction* const action =
        menu->addAction(QString("&%1  %2").arg(++number).arg(QString(shown).replace('&', "&&")));
    action->setStatusTip(file.path);
    connect(action, &QAction::triggered, this, [this, path = file.path] { OpenRecent(path); });
  }
  menu->setEnabled(!recent_.Files().empty());
  startPage_->ShowRecentFiles(recent_.Files());
}

void CAppFrame::UpdateTitle() {
  const QString program = QCoreApplication::applicationName();
  const CFrameWindow* const active = Active();
  setWindowTitle(active == nullptr ? program : tr("%1[*] - %2").arg(active->FileName(), program));
  setWindowModified(active != nullptr && active->IsModified());
}

void CAppFrame::UpdateCell() {
  cellLabel_->setText(current_ == nullptr ? QString() : current_->CellDescription());
  const QString size = current_ != nullptr       ? current_->SizeDescription()
                       : currentText_ != nullptr ? currentText_->Description()
                                                 : QString();
  panes_->SetPaneText(CStatusBarPanes::kSizePane, size.toStdString());
}

void CAppFrame::ShowStatistics() {
  panes_->SetPaneText(CStatusBarPanes::kStatisticsPane,
                      current_ == nullptr ? CString() : current_->Statistics().toStdString());
}

void CAppFrame::ShowContextMenu(int type, const QPoint& point) {
  menus_->ContextMenu(type, this)->exec(point);
}

void CAppFrame::ShowAbout() {
  CAboutDlg(this).exec();
}

void CAppFrame::AskForEngine() {
  CEngineDlg(this).exec();
}

void CAppFrame::RestoreWindow() {
  const QSettings settings;
  resize(kFirstSize);
  restoreGeometry(settings.value("window/geometry").toByteArray());
  toolBar_->setVisible(settings.value("window/toolBar", true).toBool());
  statusBar()->setVisible(settings.value("window/statusBar", true).toBool());
  dataBarWanted_ = settings.value("window/dataToolBar", true).toBool();
  menus_->Action(kViewToolBar)->setChecked(settings.value("window/toolBar", true).toBool());
  menus_->Action(kViewStatusBar)->setChecked(settings.value("window/statusBar", true).toBool());
  ShowAsTabs(settings.value("window/tabs", true).toBool());
}

void CAppFrame::StoreWindow() {
  QSettings settings;
  settings.setValue("window/geometry", saveGeometry());
  settings.setValue("window/toolBar", menus_->Action(kViewToolBar)->isChecked());
  settings.setValue("window/statusBar", menus_->Action(kViewStatusBar)->isChecked());
  settings.setValue("window/dataToolBar", dataBarWanted_);
  settings.setValue("window/tabs", menus_->Action(kWindowTabs)->isChecked());
}
