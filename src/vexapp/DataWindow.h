// One data window: a document, its view and the grid.
#pragma once

#include <map>
#include <memory>

#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"
#include "dataview/table/DataViewTbl.h"
#include "syntax/procedures/Procedures.h"
#include "vexapp/FrameWindow.h"

class CVexApp;

class CDataWindow final : public CFrameWindow {
  Q_OBJECT

 public:
  explicit CDataWindow(CVexApp& app, QWidget* parent = nullptr);
  ~CDataWindow() override;

  CDataDoc& Document() { return document_; }
  CDataView& View() { return *view_; }
  CDataViewTbl& Table() { return *table_; }

  // False when the file could not be opened; the user has then been told.
  bool Open(const QString& path, const EXTERNDATA& kind);
  // The same with a free-format text file, of cases or of a matrix.
  bool OpenText(const QString& path, const EXTERNDATA& kind, const ASC2VSF& choice);
  // Takes over what a program that ended badly has left behind.
  bool Recover(const LeftOverScratch& left);
  // False when nothing was saved.
  bool Save();
  bool SaveAs();
  bool CanBeSaved() const;

  bool Holds(const QString& path) const override;
  QString FileName() const override;  // a stand-in while there is none
  bool IsModified() const override { return document_.IsModified(); }
  QString CellDescription() const;
  QString SizeDescription() const;
  void AskForCase();  // Go to Case
  // What was chosen last in the procedures' dialogs, by command.
  std::map<int, ProcedureChoices>& LastChoices() { return lastChoices_; }

 signals:
  void CellChanged();
  void ContextMenuAsked(int type, QPoint globalPoint);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void ShowTitle();
  bool MayClose();
  void AskForMenu(TableArea area, const QPoint& globalPoint);

  CVexApp& app_;
  CDataDoc document_;
  CDataViewTbl* table_;
  std::unique_ptr<CDataView> view_;
  std::map<int, ProcedureChoices> lastChoices_;
  int menuType_ = -1;  // of the last right click that hit something
};
