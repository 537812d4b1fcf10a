// Draws the procedures' dialogs into PNG files, for looking at them and for the documentation.
//   procedure_pictures FOLDER DATA.VSF
// QT_SCALE_FACTOR=2 draws them for a fine screen.
#include <QDir>
#include <QListWidget>
#include <QStandardPaths>
#include <QTest>
#include <cstdio>

#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"
#include "host/Recorder.h"
#include "support/OffscreenApplication.h"
#include "syntax/dialogs/DataFTPRGDlg.h"
#include "syntax/dialogs/DataMTPRGDlg.h"
#include "syntax/dialogs/ProcedureDialogs.h"
#include "vexapp/Appearance.h"

namespace {

void Draw(QWidget& window, const QString& file) {
  window.show();
  // Until the cells of a recoding are counted.
  QTest::qWait(window.findChild<QWidget*>("rules") != nullptr ? 600 : 0);
  QApplication::processEvents();
  window.grab().save(file);
  window.close();
}

// Choices as in the guide's examples, where the survey has these variables.
std::vector<ProcedureChoices> Examples() {
  const NameList a = {"A1", "A2", "A3", "A4", "A5"};
  ProbitChoices fixed{{"A1"}, {"gender", "age"}};
  fixed.declareFixed = true;
  ProbitChoices probit{{"A1", "A2"}, {"gender", "age"}};
  probit.marginalThresholds = {"A1"};
  return {FactorAnalysisChoices{a, true, "2", true},
          OrdinalFactorChoices{a, false, "1"},
          PrincipalComponentChoices{a, true, false, "2"},
          EqualThresholdChoices{{"A1", "A2"}, true, "survey.th"},
          FixThresholdChoices{{"A1"}, "survey.th"},
          HomogeneityChoices{{"A1", "A2", "A2", "A3"}},
          NormalScoreChoices{{"C1", "C2"}},
          ImputationChoices{{"education"}, {"age", "gender"}, "0.5"},
          MultipleImputationChoices{a, true},
          BootstrappingChoices{"200", "100", true},
          RegressionChoices{{"age"}, {"A1", "A2"}},
          TwoStageChoices{{"age"}, {"A1"}, {"A2", "A3"}},
          probit,
          fixed,
          LogisticChoices{{"gender"}, {"age", "A1"}, true},
          CensoredChoices{},
          ComputeChoices{{{"total", "(A1 + A2 + A3) / 3"}, {"logage", "LOG(age)"}}, "new.VSF"},
          RecodeChoices{{"A1"}, {{"1,2", "1"}, {"3-HI", "2"}}, "new.VSF"}};
}

void DrawAll(CDataDoc& document, const QDir& folder, const QString& look) {
  for (const ProcedureChoices& choices : Examples()) {
    const auto dialog = MakeProcedureDialog(document, choices, nullptr);
    QString name = dialog->windowTitle().toLower().replace(' ', '-');
    const auto* const probit = std::get_if<ProbitChoices>(&choices);
    if (probit != nullptr && probit->declareFixed) name += "-fixed";
    if (auto* const list = dialog->findChild<QListWidget*>("variableList")) list->setCurrentRow(5);
    Draw(*dialog, folder.filePath(name + '-' + look + ".png"));
  }
  const ProbitChoices probit{{"A1", "A2"}, {"age"}};
  CDataFTPRGDlg fixed(*document.GetTorvik(), probit, {}, nullptr);
  Draw(fixed, folder.filePath("fixed-thresholds-" + look + ".png"));
  CDataMTPRGDlg marginal(*document.GetTorvik(), probit, nullptr);
  Draw(marginal, folder.filePath("marginal-thresholds-" + look + ".png"));
}

}  // namespace

int main(int argc, char** argv) {
  const COffscreenApplication application(argc, argv);
  if (argc != 3) {
    std::fputs("procedure_pictures FOLDER DATA.VSF\n", stderr);
    return 2;
  }
  StartAppearance();
  CRecorder host;
  CDataDoc document;
  const CDataView view(document);
  if (document.OnOpenDbmsDocument(argv[2]) == 0) return 1;
  const std::pair<Appearance, const char*> looks[] = {{Appearance::Light, "light"},
                                                      {Appearance::Dark, "dark"}};
  for (const auto& [look, name] : looks) {
    ChooseAppearance(look);
    DrawAll(document, QDir(QString::fromLocal8Bit(argv[1])), name);
  }
  return 0;
}
