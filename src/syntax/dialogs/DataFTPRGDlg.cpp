#include "syntax/dialogs/DataFTPRGDlg.h"

#include <filesystem>

#include "host/Host.h"
#include "syntax/procedures/ThresholdProcedures.h"

CDataFTPRGDlg::CDataFTPRGDlg(const TORVIKSTRUCT& dataSet, ProbitChoices choices, CString folder,
                             QWidget* parent)
    : CProbitThresholdsDlg(dataSet, std::move(choices), tr("Fixed Thresholds"), parent),
      folder_(std::move(folder)) {
  AddVariables(tr("Fix threshold for %1"), choices_.fixedThresholds);
  Form().AddFile(tr("File that contains thresholds"), choices_.thresholdFile, "thresholdFile");
}

void CDataFTPRGDlg::accept() {
  const CString& file = choices_.thresholdFile;
  const CString named = file.empty() ? file : (std::filesystem::path(folder_) / file).string();
  const auto problem = CheckThresholdFile(named);
  if (choices_.fixedThresholds.empty() || !problem) return QDialog::accept();
  AfxMessageBox(problem->text);
  Form().ShowField(problem->field);
}
