// The Output Options dialog.
#pragma once

#include <QDialog>
#include <memory>

#include "syntax/OutputDialog.h"

class QCheckBox;
class QLineEdit;
class QWidget;

namespace Ui {
class DataOutDlg;
}

// Fills its controls from an OutputDialog, hands every event to the functions of OutputDialog.h and
// shows what came of it.
class CDataOutDlg final : public QDialog {
  Q_OBJECT

 public:
  // Edits `options`, which outlive the dialog. What `mode` and `tests` switch off stands in
  // OutputDialog.h.
  CDataOutDlg(QWidget* parent, TRVOUSTRUCT* options, int mode, int tests);
  ~CDataOutDlg() override;

  void accept() override;

 private:
  // The controls of one "Save to file:".
  struct SaveRow {
    SaveBox box;
    QCheckBox* check;
    QLineEdit* edit;
    QWidget* button;
    QCheckBox* print;  // null where nothing is printed
  };
  struct Check {
    QCheckBox* check;
    std::int32_t TRVOUSTRUCT::*value;
  };
  struct Number {
    QLineEdit* edit;
    CString OutputDialog::*text;
    OutputEdit name;
  };

  void CollectControls();
  void Fill();
  void Connect();
  void Read();
  void ShowEnabled();
  void SaveBoxClicked(const SaveRow& row, bool checked);
  void ChooseFile(QLineEdit* edit);
  void Focus(OutputEdit edit);

  std::unique_ptr<Ui::DataOutDlg> ui_;
  TRVOUSTRUCT* options_;
  OutputDialog state_;
  std::vector<SaveRow> saveRows_;
  std::vector<Check> checks_;
  std::vector<Number> numbers_;
};
