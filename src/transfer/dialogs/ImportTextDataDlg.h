// The dialog that has a text import confirmed.
#pragma once

#include <QDialog>
#include <memory>

#include "transfer/TextConfirmation.h"

class CTextPreviewModel;

namespace Ui {
class ImportTextDataDlg;
}

// Shows a CTextConfirmation, hands every choice to it at once and shows what came of it. Cancelling
// is the caller's matter: what was changed in the confirmation stays there.
class CdlgImportTextData final : public QDialog {
  Q_OBJECT

 public:
  // The confirmation must outlive the dialog.
  CdlgImportTextData(CTextConfirmation& confirmation, QWidget* parent);
  ~CdlgImportTextData() override;

 private:
  void FillChoices();
  void Connect();
  void ReadSettings();
  void ReadMissingStrings();
  void ReadNames();
  void ShowSettings();
  void ShowVariables();
  void ShowPreview();
  void ShowProblem(const std::string& problem);

  CTextConfirmation& confirmation_;
  std::unique_ptr<Ui::ImportTextDataDlg> ui_;
  CTextPreviewModel* preview_;
};
