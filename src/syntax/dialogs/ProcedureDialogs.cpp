#include "syntax/dialogs/ProcedureDialogs.h"

#include "datadoc/DataDoc.h"
#include "syntax/dialogs/DataBootDlg.h"
#include "syntax/dialogs/DataComputeDlg.h"
#include "syntax/dialogs/DataETDlg.h"
#include "syntax/dialogs/DataFADlg.h"
#include "syntax/dialogs/DataFTDlg.h"
#include "syntax/dialogs/DataHTDlg.h"
#include "syntax/dialogs/DataImpuDlg.h"
#include "syntax/dialogs/DataMTDlg.h"
#include "syntax/dialogs/DataPRGDlg.h"
#include "syntax/dialogs/DataRGDlg.h"
#include "syntax/dialogs/DataRecodeDlg.h"
#include "syntax/dialogs/DataTSLSDlg.h"
#include "syntax/dialogs/DlgCensoredRegression.h"
#include "syntax/dialogs/DlgLogisticRegression.h"
#include "syntax/dialogs/DlgMultipleImputation.h"
#include "syntax/dialogs/DlgPrincipalComponentAnalysis.h"
#include "syntax/dialogs/DlgProbitRegression.h"
#include "syntax/dialogs/OrdinalFactorAnalysis.h"

namespace {

using Dialog = std::unique_ptr<CChoicesDlg>;

// One function for each kind of choices.
struct Maker {
  CDataDoc& document;
  QWidget* parent;

  Dialog operator()(BootstrappingChoices& last) const { return Make<CDataBootDlg>(last); }
  Dialog operator()(EqualThresholdChoices& last) const { return Make<CDataETDlg>(last); }
  Dialog operator()(FactorAnalysisChoices& last) const { return Make<CDataFADlg>(last); }
  Dialog operator()(FixThresholdChoices& last) const { return Make<CDataFTDlg>(last); }
  Dialog operator()(HomogeneityChoices& last) const { return Make<CDataHTDlg>(last); }
  Dialog operator()(ImputationChoices& last) const { return Make<CDataImpuDlg>(last); }
  Dialog operator()(NormalScoreChoices& last) const { return Make<CDataMTDlg>(last); }
  Dialog operator()(RegressionChoices& last) const { return Make<CDataRGDlg>(last); }
  Dialog operator()(TwoStageChoices& last) const { return Make<CDataTSLSDlg>(last); }
  Dialog operator()(CensoredChoices& last) const { return Make<CdlgCensoredRegression>(last); }
  Dialog operator()(LogisticChoices& last) const { return Make<CdlgLogisticRegression>(last); }
  Dialog operator()(MultipleImputationChoices& last) const {
    return Make<CdlgMultipleImputation>(last);
  }
  Dialog operator()(PrincipalComponentChoices& last) const {
    return Make<CdlgPrincipalComponentAnalysis>(last);
  }
  Dialog operator()(OrdinalFactorChoices& last) const { return Make<COrdinalFactorAnalysis>(last); }
  Dialog operator()(ProbitChoices& last) const {
    if (last.declareFixed) return Make<CDataPRGDlg>(last);
    return Make<CdlgProbitRegression>(last);
  }

  Dialog operator()(ComputeChoices& last) const { return Make<CDataComputeDlg>(last); }
  Dialog operator()(RecodeChoices& last) const { return Make<CDataRecodeDlg>(last); }

  template <typename D, typename Choices>
  Dialog Make(Choices& last) const {
    return std::make_unique<D>(document, std::move(last), parent);
  }
};

}  // namespace

Dialog MakeProcedureDialog(CDataDoc& document, ProcedureChoices last, QWidget* parent) {
  ForgetAbsent(*document.GetTorvik(), last);
  return std::visit(Maker{document, parent}, last);
}
