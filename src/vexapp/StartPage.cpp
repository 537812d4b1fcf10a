#include "vexapp/StartPage.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <algorithm>

#include "resources/DrawnIcon.h"
#include "ui_StartPage.h"

namespace {

constexpr int kIconSize = 32;

void DressButton(QToolButton* button, Picture picture) {
  button->setIcon(DrawnIcon(picture));
  button->setIconSize(QSize(kIconSize, kIconSize));
  button->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
  button->setMinimumSize(128, 84);
  button->setFocusPolicy(Qt::StrongFocus);
}

}  // namespace

CStartPage::CStartPage(QWidget* parent) : QWidget(parent), ui_(std::make_unique<Ui::StartPage>()) {
  ui_->setupUi(this);
  QFont large = font();
  large.setPointSizeF(large.pointSizeF() * 2);
  large.setBold(true);
  ui_->titleLabel->setFont(large);
  DressButton(ui_->openButton, Picture::Open);
  DressButton(ui_->importButton, Picture::Import);
  DressButton(ui_->exampleButton, Picture::Variables);
  ui_->exampleButton->setVisible(!ExampleFile().isEmpty());

  connect(ui_->openButton, &QToolButton::clicked, this, &CStartPage::OpenAsked);
  connect(ui_->importButton, &QToolButton::clicked, this, &CStartPage::ImportAsked);
  connect(ui_->exampleButton, &QToolButton::clicked, this,
          [this] { emit FileAsked(ExampleFile()); });
  // A click opens a file, and so does the Enter key; a double click comes as both.
  const auto choose = [this](QListWidgetItem* item) {
    if (isVisible()) emit FileAsked(item->data(Qt::UserRole).toString());
  };
  connect(ui_->recentList, &QListWidget::itemClicked, this, choose, Qt::QueuedConnection);
  connect(ui_->recentList, &QListWidget::itemActivated, this, choose, Qt::QueuedConnection);
}

CStartPage::~CStartPage() = default;

void CStartPage::ShowRecentFiles(const std::vector<RECENTFILE>& files) {
  ui_->recentList->clear();
  for (const RECENTFILE& file : files) {
    const QFileInfo info(file.path);
    auto* item = new QListWidgetItem(
        tr("%1   in %2").arg(info.fileName(), QDir::toNativeSeparators(info.path())),
        ui_->recentList);
    item->setData(Qt::UserRole, file.path);
    item->setToolTip(file.path);
  }
  const int rowHeight =
      std::max(ui_->recentList->sizeHintForRow(0), 1) + 2 * ui_->recentList->spacing();
  const int frame = 2 * ui_->recentList->frameWidth();
  ui_->recentList->setFixedHeight(rowHeight * static_cast<int>(files.size()) + frame + 2);
  ui_->recentBox->setVisible(!files.empty());
}

QString ExampleFile() {
  for (const QString& folder :
       {QCoreApplication::applicationDirPath() + "/../share/vexdata/examples",
        QStringLiteral(VEX_EXAMPLES)}) {
    const QFileInfoList found =
        QDir(folder).entryInfoList({"*.VSF", "*.vsf", "*.sav"}, QDir::Files, QDir::Name);
    const auto system = std::find_if(found.begin(), found.end(), [](const QFileInfo& info) {
      return info.suffix().compare("VSF", Qt::CaseInsensitive) == 0;
    });
    if (system != found.end()) return system->absoluteFilePath();
    if (!found.isEmpty()) return found.first().absoluteFilePath();
  }
  return {};
}
