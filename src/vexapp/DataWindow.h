// One data window: a document, its view and the grid.
#pragma once

#include <map>
#include <memory>
#include <optional>

#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"
#include "dataview/table/DataViewTbl.h"
#include "syntax/procedures/Procedures.h"
#include "vexapp/FrameWindow.h"

class CFindValueDlg;
class CSelectionStatistics;
class CVexApp;

class CDataWindow final : public CFrameWindow {
  Q_OBJECT

 public:
  explicit CDataWindow(CVexApp& app, QWidget* parent = nullptr);
  ~CDataWindow() override;

  CVexApp& App() { return app_; }
  CDataDoc& Document() { return document_; }
  CDataView& View() { return *view_; }
  CDataViewTbl& Table() { return *table_; }
  const CDataViewTbl& Table() const { return *table_; }

  // False when the file could not be opened; the user has then been told.
  bool Open(const QString& path, const EXTERNDATA& kind);
  // The same with a free-format text file, of cases or of a matrix.
  bool OpenText(const QString& path, const EXTERNDATA& kind, const ASC2VSF& choice);
  // Makes an empty data set; all cells are 0.
  bool New(std::int32_t cases, std::int32_t variables);
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
  // What was chosen last in the procedures' dialogs, by command.
  std::map<int, ProcedureChoices>& LastChoices() { return lastChoices_; }
  QString Statistics() const { return statisticsText_; }  // of the selected cells
  void AskForCase();                                      // Go to Case
  void AskForValue();                                     // Find
  void FindAgain(bool backward);                          // what was looked for last

 signals:
  void CellChanged();  // the current cell, the selection, or what they hold
  void StatisticsChanged();
  void ContextMenuAsked(int type, QPoint globalPoint);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void ShowTitle();
  bool MayClose();
  void WatchSelection();
  void FindFromDialog(bool backward);
  void Find(FindRequest request);

  CVexApp& app_;
  CDataDoc document_;
  CDataViewTbl* table_;
  std::unique_ptr<CDataView> view_;
  std::map<int, ProcedureChoices> lastChoices_;
  CSelectionStatistics* statistics_;
  QString statisticsText_;
  CFindValueDlg* findDialog_ = nullptr;  // once it was opened
  std::optional<FindRequest> lastFind_;
};
