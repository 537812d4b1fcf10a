#include "syntax/dialogs/DataBootDlg.h"

#include <QLabel>
#include <QLineEdit>

CDataBootDlg::CDataBootDlg(CDataDoc& document, BootstrappingChoices last, QWidget* parent)
    : CChoicesDlgOf(document, std::move(last), parent) {
  Form().AddText(tr("Number of bootstrap samples"), choices_.samples, "samples");
  Form()
      .AddText(tr("Sample fraction"), choices_.fraction, "fraction")
      .setToolTip(tr("In percent of the cases"));
  Form().AddRow(new QLabel(tr("Save:"), this));
  const struct {
    QString text;
    bool& save;
    CString& file;
    const char* name;
  } files[] = {
      {tr("All the MA-matrices"), choices_.saveMatrices, choices_.matricesFile, "matricesFile"},
      {tr("All the mean vectors"), choices_.saveMeans, choices_.meansFile, "meansFile"},
      {tr("All the standard deviations"), choices_.saveDeviations, choices_.deviationsFile,
       "deviationsFile"}};
  for (const auto& [text, save, file, name] : files) {
    Form().AddSavedFile(text, save, file, name, tr("Filename:"));
  }
  Finish(tr(
      "Draws samples with replacement from the cases, each of the given percentage of their "
      "number, "
      "and saves what is chosen of every sample. Output Options chooses the matrix and the seed of "
      "the random numbers."));
}
