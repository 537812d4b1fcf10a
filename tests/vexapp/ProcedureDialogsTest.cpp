// The procedures' dialogs: controls against the lines that are written, and the messages. What the
// choices come to has tests of its own.
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

#include "datadoc/DocumentFixture.h"
#include "syntax/dialogs/ProcedureDialogs.h"
#include "syntax/dialogs/VariableList.h"
#include "vexapp/DataWindow.h"
#include "vexapp/Driver.h"
#include "vexapp/ProcedureCommands.h"

namespace {

using Steps = QStringList;

template <typename Widget>
Widget& Find(QDialog& dialog, const QString& name) {
  auto* const widget = dialog.findChild<Widget*>(name);
  if (widget == nullptr) throw std::runtime_error("no " + name.toStdString());
  return *widget;
}

void Select(QDialog& dialog, const QString& names) {
  auto& list = Find<CVariableList>(dialog, "variableList");
  list.clearSelection();
  for (int row = 0; row < list.count(); ++row) {
    if (names.split(',').contains(list.item(row)->text())) list.item(row)->setSelected(true);
  }
}

QStringList Items(QDialog& dialog, const QString& name) {
  const auto& list = Find<QListWidget>(dialog, name);
  QStringList texts;
  for (int row = 0; row < list.count(); ++row) texts << list.item(row)->text();
  return texts;
}

// "list0=A,B" adds variables, "select=A,B" selects them, "factors=2" types, "scores" clicks;
// "rules=1-3|0" fills the last row of a table.
void Do(QDialog& dialog, const QString& step) {
  const QString name = step.section('=', 0, 0);
  const QString value = step.section('=', 1);
  if (name == "select") return Select(dialog, value);
  auto& widget = Find<QWidget>(dialog, name);
  if (qobject_cast<CVariableList*>(&widget) != nullptr) {
    Select(dialog, value);
    Find<QPushButton>(dialog, name + "AddButton").click();
  } else if (auto* const edit = qobject_cast<QLineEdit*>(&widget)) {
    edit->setText(value);
  } else if (auto* const text = qobject_cast<QPlainTextEdit*>(&widget)) {
    text->setPlainText(value);
  } else if (auto* const table = qobject_cast<QTableWidget*>(&widget)) {
    const int row = table->rowCount() - 1;
    for (int column = 0; column < 2; ++column) {
      table->item(row, column)->setText(value.section('|', column, column));
    }
  } else if (auto* const box = qobject_cast<QComboBox*>(&widget)) {
    box->setCurrentIndex(value.toInt());
  } else {
    dynamic_cast<QAbstractButton&>(widget).click();
  }
}

// Variables A to D are ordinal, E is continuous, F censored above.
class ProcedureDialogs : public DocumentTest {
 protected:
  ProcedureDialogs() {
    Fill({{1, 2, 3, 4, 5, 6}});
    document.GetTorvik()->variable[4].type = kContinuous;
    document.GetTorvik()->variable[5].type = kCensoredAbove;
    for (const std::string& name : {data, thresholds}) WriteBytes(name, "x");
    document.SetPathName(data);
    document.SetModifiedFlag(false);
  }
  std::unique_ptr<CChoicesDlg> Open(const ProcedureChoices& choices) {
    return MakeProcedureDialog(document, choices, nullptr);
  }
  ProcedureState Run(QDialog& dialog, const Steps& steps) {
    driver.Then([&dialog, steps](QDialog&) {
      for (const QString& step : steps) Do(dialog, step);
    });
    return RunProcedureDialog(document, dynamic_cast<CProcedureDlg&>(dialog)).state;
  }
  std::string Written() const {
    const std::string text = ReadBytes(folder / "survey.TRK");
    const std::string head = "!TORVIK SYNTAX: Can be edited \nSY='" + data + "'\n";
    return text.starts_with(head) ? text.substr(head.size()) : "no head: " + text;
  }
  static ProcedureChoices FixedProbit() {
    ProbitChoices choices;
    choices.declareFixed = true;
    return choices;
  }

  const std::string data = folder / "survey.VSF";
  const std::string thresholds = folder / "my.th";
  CDialogDriver driver;
};

TEST_F(ProcedureDialogs, RunAndSyntaxWriteWhatWasChosen) {
  const struct {
    ProcedureChoices choices;
    Steps steps;
    const char* lines;
  } cases[] = {
      {FactorAnalysisChoices(),
       {"list0=A,B,E", "minres1", "factors=2", "scores"},
       "\nSE 1 2 5 \nFA NF=2 MR FS\nOU XT XM \n"},
      {OrdinalFactorChoices(),
       {"list0=A,E,B", "proportionalOdds1", "factors=1"},
       "\nSE 1 2 \nOFA POM NF=1\nOU XT XM \n"},
      {PrincipalComponentChoices(),
       {"correlations", "scores", "components=2"},
       "PC NC=2 KM PS\nOU XT XM \n"},
      {EqualThresholdChoices(),
       {"list0=B,A", "thresholdFileCheck", "thresholdFile=new.th"},
       "ET 1 2\nOU XT XM  TH=new.th \n"},
      {FixThresholdChoices(), {"list0=B", "thresholdFile=my.th"}, "FT 2\nOU XT XM  TH=my.th \n"},
      {HomogeneityChoices(),
       {"select=A,B", "select=C", "select=B,C", "select=A,C", "removeButton", "select=A,B"},
       "HT 1 2\nHT 2 3\nOU XT XM \n"},
      {NormalScoreChoices(), {"list0=E,B"}, "NS 2 5 \nOU XT XM \n"},
      {ImputationChoices(),
       {"list0=A,B", "list1=B,E", "varianceRatio=0.5", "listing1"},
       "IMPUTE (1 ) (2 5 )  VR=0.500000 XN \nOU XT XM \n"},
      {MultipleImputationChoices(),
       {"list0=A,E", "mcmc1", "iterations=50", "convergence=0.001", "dataSets=5", "allMissing=2"},
       "MC 1 5 IT=50 CC=0.001 TC=2 RP=5\nOU XT XM \n"},
      {BootstrappingChoices(),
       {"samples=50", "fraction=80", "matricesFileCheck", "deviationsFileCheck",
        "deviationsFile=my.sd"},
       "OU XT XM  BS=50 SF=80 BM=mafile SD=my.sd \n"},
      {RegressionChoices(), {"list0=E", "list1=A,B"}, "RG 5 ON 1 2\nOU XT XM \n"},
      {TwoStageChoices(),
       {"list0=E", "list1=A,B", "list2=B,C"},
       "TS 5 ON 1 2 WITH 2 3\nOU XT XM \n"},
      {ProbitChoices(), {"list0=A,B", "list1=E", "alternative"}, "PR 1 2 ON 5 AP\nOU XT XM \n"},
      {FixedProbit(), {"list0=A", "list1=E"}, "FI 5 \nPR 1 ON 5\nOU XT XM \n"},
      {LogisticChoices(), {"list0=A,E", "list1=E", "alternative"}, "LO 1 ON 5 AP\nOU\n"},
      {CensoredChoices(), {"list0=A,F", "list1=A"}, "CR 6 ON 1\nOU\n"},
  };
  for (const auto& c : cases) {
    for (const char* button : {"syntaxButton", "runButton"}) {
      std::filesystem::remove(folder / "survey.TRK");
      const auto dialog = Open(c.choices);
      const auto state = Run(*dialog, c.steps + Steps{button});
      EXPECT_EQ(Written(), c.lines) << EntryOf(c.choices).title;
      const bool ran = QString(button) == "runButton";
      EXPECT_EQ(state, ran ? ProcedureState::Done : ProcedureState::SyntaxShown);
      EXPECT_EQ(host.openedDocuments.back(), folder / (ran ? "survey.OUT" : "survey.TRK"));
      // The choices fill a dialog anew.
      const auto again = Open(dialog->Choices());
      EXPECT_EQ(again->Job().lines, dialog->Job().lines) << EntryOf(c.choices).title;
    }
  }
}

TEST_F(ProcedureDialogs, WhatIsMissingIsToldAndTheDialogStays) {
  const struct {
    ProcedureChoices choices;
    Steps steps;
    const char* message;
    const char* focus;
  } cases[] = {
      {EqualThresholdChoices(), {"list0=A"}, "Please select at least two ordinal variables.", ""},
      {FixThresholdChoices(),
       {"list0=A", "thresholdFile=absent"},
       "The previously saved threshold file is missing!",
       "thresholdFile"},
      {MultipleImputationChoices(),
       {"list0=A", "convergence=1"},
       "Convergence criterion must be a real number\nbetween 0.0000001 and 0.01",
       "convergence"},
      {BootstrappingChoices(),
       {"samples=0"},
       "Please enter a whole number between 1 and 2147483647 for the number of bootstrap samples.",
       "samples"},
      {RegressionChoices(), {"list0=A"}, "Please select at least one X variable.", ""},
      {PrincipalComponentChoices(),
       {"components=7"},
       "Please enter a whole number between 1 and 6 for the number of components.",
       "components"},
  };
  for (const auto& c : cases) {
    host.messages.clear();
    const auto dialog = Open(c.choices);
    driver.Then([&](QDialog&) {
      for (const QString& step : c.steps + Steps{"runButton"}) Do(*dialog, step);
      EXPECT_EQ(host.LastMessage(), c.message);
      EXPECT_TRUE(dialog->isVisible());
      EXPECT_TRUE(*c.focus == '\0' || dialog->focusWidget()->objectName() == c.focus) << c.focus;
      dialog->reject();
    });
    EXPECT_EQ(RunProcedureDialog(document, *dialog).state, ProcedureState::NotWanted);
  }
  EXPECT_FALSE(std::filesystem::exists(folder / "survey.TRK"));
}

TEST_F(ProcedureDialogs, ProbitAsksAboutVariablesThatAreNotOrdinal) {
  const auto dialog = Open(ProbitChoices());
  driver.Then([](QDialog& probit) { Do(probit, "list0=E,F"); });
  driver.ThenPress(QMessageBox::Ok);
  driver.Then([](QDialog& probit) {
    EXPECT_TRUE(Items(probit, "list0").isEmpty());
    Do(probit, "list0=A,E");
  });
  driver.ThenPress(QMessageBox::Cancel);
  driver.Then([](QDialog& probit) {
    EXPECT_TRUE(Items(probit, "list0").isEmpty());
    Do(probit, "list0=A,E");
  });
  driver.ThenPress(QMessageBox::Ok);
  driver.Then([](QDialog& probit) {
    EXPECT_EQ(Items(probit, "list0"), Steps("A"));
    probit.reject();
  });
  dialog->exec();
  EXPECT_EQ(driver.Texts(), Steps({kNotOrdinal, kSomeNotOrdinal, kSomeNotOrdinal}));
}

TEST_F(ProcedureDialogs, ThresholdsOfAProbitRegression) {
  const auto dialog = Open(ProbitChoices{{"A", "B"}, {"E"}});
  driver.Then([](QDialog& probit) { Do(probit, "fixButton"); });
  driver.Then([&](QDialog& fixed) {
    EXPECT_EQ(fixed.windowTitle(), "Fixed Thresholds");
    for (const char* step : {"list0=B,C", "previousButton"}) Do(fixed, step);
    EXPECT_EQ(host.LastMessage(), kThresholdFileMissing);
    EXPECT_EQ(Items(fixed, "list0"), Steps("Fix threshold for B"));
    for (const char* step : {"thresholdFile=my.th", "previousButton"}) Do(fixed, step);
    QTimer::singleShot(0, [&dialog] {
      EXPECT_FALSE(Find<QPushButton>(*dialog, "marginalButton").isEnabled());
      Do(*dialog, "syntaxButton");
    });
  });
  EXPECT_EQ(RunProcedureDialog(document, *dialog).state, ProcedureState::SyntaxShown);
  EXPECT_EQ(Written(), "FT 2\nPR 1 2 ON 5\nOU XT XM  TH=my.th \n");

  const auto marginal = Open(ProbitChoices{{"A", "B"}, {"E"}});
  driver.Then([](QDialog& probit) { Do(probit, "marginalButton"); });
  driver.Then([&](QDialog& thresholdsOf) {
    Do(thresholdsOf, "list0=A,B");
    EXPECT_EQ(Items(thresholdsOf, "list0"),
              Steps({"Marginal threshold for A", "Marginal threshold for B"}));
    Do(thresholdsOf, "previousButton");
    QTimer::singleShot(0, [&marginal] {
      // A variable that leaves the regression takes its thresholds along.
      Find<CVariableList>(*marginal, "list0").setCurrentRow(0);
      for (const char* step : {"list0RemoveButton", "syntaxButton"}) Do(*marginal, step);
    });
  });
  RunProcedureDialog(document, *marginal);
  EXPECT_EQ(Written(), "MT 2 \nPR 2 ON 5\nOU XT XM \n");
}

TEST_F(ProcedureDialogs, VariablesMoveByDoubleClickKeysAndDragging) {
  const auto dialog = Open(RegressionChoices());
  dialog->show();
  auto& source = Find<CVariableList>(*dialog, "variableList");
  auto& y = Find<CVariableList>(*dialog, "list0");
  auto& x = Find<CVariableList>(*dialog, "list1");
  Select(*dialog, "A,B,C");
  emit source.Activated();  // into the first list until another was used
  EXPECT_EQ(Items(*dialog, "list0"), Steps({"A", "B", "C"}));
  y.setCurrentRow(1);
  emit x.Dropped(&y, 0);
  EXPECT_EQ(Items(*dialog, "list0"), Steps({"A", "C"}));
  EXPECT_EQ(Items(*dialog, "list1"), Steps("B"));
  Select(*dialog, "E,F");
  emit x.Dropped(&source, 0);
  EXPECT_EQ(Items(*dialog, "list1"), Steps({"E", "F", "B"}));
  x.setCurrentRow(0);
  emit x.Dropped(&x, 3);  // within the list
  EXPECT_EQ(Items(*dialog, "list1"), Steps({"F", "B", "E"}));
  x.setCurrentRow(1);
  emit source.Dropped(&x, 0);
  EXPECT_EQ(Items(*dialog, "list1"), Steps({"F", "E"}));
  y.setCurrentRow(0);
  emit y.RemoveAsked();
  EXPECT_EQ(Items(*dialog, "list0"), Steps("C"));
  Do(*dialog, "list0=F");  // leaves the other list
  EXPECT_EQ(Items(*dialog, "list1"), Steps("E"));
  EXPECT_EQ(dialog->Job().lines.front(), "RG 3 6 ON 5");

  Do(*dialog, "findEdit=b");
  source.selectAll();
  EXPECT_EQ(source.SelectedVariables(), std::vector<int>{1});
}

TEST_F(ProcedureDialogs, WhatCannotBeChosenSaysWhy) {
  const auto censored = Open(CensoredChoices());
  auto& add = Find<QPushButton>(*censored, "list0AddButton");
  Select(*censored, "A");
  EXPECT_FALSE(add.isEnabled());
  EXPECT_TRUE(add.toolTip().startsWith("Only censored variables")) << add.toolTip().toStdString();
  EXPECT_TRUE(Find<QPushButton>(*censored, "outputButton").isHidden());

  const auto homogeneity = Open(HomogeneityChoices());
  for (const char* button : {"runButton", "syntaxButton", "outputButton"}) {
    EXPECT_FALSE(Find<QPushButton>(*homogeneity, button).isEnabled());
  }
  document.GetTorvik()->variable[3].name = "A";
  const auto regression = Open(RegressionChoices());
  const auto& list = Find<CVariableList>(*regression, "variableList");
  EXPECT_FALSE(list.item(3)->flags() & Qt::ItemIsSelectable);
  EXPECT_TRUE(list.item(0)->flags() & Qt::ItemIsSelectable);
}

TEST_F(AppFrameTest, StatisticsCommandsOpenTheirDialogsAndRememberTheirChoices) {
  const QString path = Sample("survey.VSF");
  ASSERT_TRUE(frame.OpenPath(path));
  for (const ProcedureEntry& procedure : Procedures()) {
    const QString title = procedure.title;
    driver.Then([title](QDialog& dialog) {
      EXPECT_EQ(dialog.windowTitle(), title);
      dialog.reject();
    });
    ASSERT_TRUE(frame.Menus().Action(procedure.command)->isEnabled()) << procedure.title;
    Trigger(procedure.command);
    ASSERT_TRUE(driver.AllAnswered()) << procedure.title;
  }
  driver.Then([](QDialog& dialog) {
    for (const char* step : {"list0=x2", "factors=3", "syntaxButton"}) Do(dialog, step);
  });
  Trigger(34044);
  frame.OpenPath(path);  // the syntax window came up
  driver.Then([](QDialog& dialog) {
    EXPECT_EQ(Items(dialog, "list0"), Steps("x2"));
    EXPECT_EQ(Find<QLineEdit>(dialog, "factors").text(), "3");
    Do(dialog, "factors=4");
    dialog.reject();  // what was not used is not remembered
  });
  Trigger(34044);
  driver.Then([](QDialog& dialog) {
    EXPECT_EQ(Find<QLineEdit>(dialog, "factors").text(), "3");
    dialog.reject();
  });
  Trigger(34044);
  EXPECT_TRUE(driver.AllAnswered());
}

bool TakesTab(const QWidget& widget) {
  return widget.isVisible() && widget.isEnabled() && (widget.focusPolicy() & Qt::TabFocus) != 0;
}

TEST_F(ProcedureDialogs, TabbingStartsAtTheTopAndNoMnemonicStandsTwice) {
  for (const ProcedureEntry& procedure : Procedures()) {
    const auto dialog = Open(procedure.initial);
    dialog->show();
    const QWidget* first = dialog->nextInFocusChain();
    while (first != dialog.get() && !TakesTab(*first)) first = first->nextInFocusChain();
    const int top = first->mapTo(dialog.get(), QPoint(0, 0)).y();
    QString letters;
    for (const QWidget* widget : dialog->findChildren<QWidget*>()) {
      if (TakesTab(*widget)) {
        EXPECT_GE(widget->mapTo(dialog.get(), QPoint(0, 0)).y(), top) << procedure.title;
      }
      const QString text = widget->isVisible() ? widget->property("text").toString() : QString();
      const qsizetype mark = text.indexOf('&');
      if (mark >= 0) letters += text[mark + 1].toLower();
    }
    // These two texts of the censored regression are as they are.
    if (procedure.command == 34065) letters.remove(letters.lastIndexOf('v'), 1);
    for (const QChar letter : letters) {
      EXPECT_EQ(letters.count(letter), 1)
          << procedure.title << ' ' << QString(letter).toStdString();
    }
  }
}

TEST_F(ProcedureDialogs, NewDataNeverTakeAFileUnasked) {
  WriteBytes(folder / "there.VSF", "x");
  const auto dialog = Open(ComputeChoices{{{"y", "A + 1"}}, "survey.VSF"});
  driver.Then([&](QDialog&) {
    Do(*dialog, "runButton");
    EXPECT_EQ(host.LastMessage(), "The new data cannot take the place of the data file.");
    Do(*dialog, "expression=A + G");
    Do(*dialog, "newData=there.VSF");
    Do(*dialog, "runButton");
    EXPECT_TRUE(host.LastMessage().starts_with("y: ")) << host.LastMessage();
    Do(*dialog, "expression=A + B");
    host.answers = {MessageAnswer::No, MessageAnswer::Yes};
    Do(*dialog, "runButton");
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(host.LastMessage(), "there.VSF exists already.\nDo you want to replace it?");
    Do(*dialog, "runButton");
  });
  EXPECT_EQ(RunProcedureDialog(document, *dialog).state, ProcedureState::Done);
  EXPECT_EQ(Written(), "NE y = A + B\nOU RA=there.VSF XT XM \n");
}

TEST_F(ProcedureDialogs, WithoutOutputEachSaysSoInItsSpelling) {
  host.engineOutput = std::nullopt;
  const auto compute = Open(ComputeChoices{{{"y", "A"}}, "new.VSF"});
  EXPECT_EQ(Run(*compute, {"runButton"}), ProcedureState::Failed);
  EXPECT_EQ(host.LastMessage(), "Serious errors occured, no output file available!");
  const auto recode = Open(RecodeChoices{{"A"}, {{"1", "2"}}, "new.VSF"});
  EXPECT_EQ(Run(*recode, {"runButton"}), ProcedureState::Failed);
  EXPECT_EQ(host.LastMessage(), "Serious errors occurred, no output file available!");
}

std::vector<double> Column(CDataWindow& window, int column) {
  std::vector<double> values;
  for (int row = 0; row < window.Document().GetRecnum(); ++row) {
    values.push_back(window.Table().ValueText({row, column}).toDouble());
  }
  return values;
}

// Cell (r, c) of the sample is r + c / 100; the first cell of every seventh case is missing.
TEST_F(AppFrameTest, ComputedDataAreWrittenByTheEngineAndOpened) {
  ASSERT_TRUE(frame.OpenPath(Sample("survey.VSF", 8)));
  const std::string newData = folder / "new.VSF";
  const std::string before = ReadBytes(folder / "survey.VSF");
  driver.Then([&](QDialog& dialog) {
    auto& state = Find<QLabel>(dialog, "stateLabel");
    for (const char* step : {"target=y", "expression=x1 + 2 * x9"}) Do(dialog, step);
    EXPECT_TRUE(state.text().contains("x9")) << state.text().toStdString();
    Do(dialog, "expression=x1 + 2 * x2");
    EXPECT_EQ(state.text(), "The expression is in order.");
    for (const char* step : {"newButton", "target=x3", "expression=ABS(-y)"}) Do(dialog, step);
    Do(dialog, "newData=new.VSF");
    Do(dialog, "runButton");
  });
  driver.ThenPress(QMessageBox::Yes);  // open the new data
  Trigger(1236);
  ASSERT_TRUE(driver.AllAnswered());
  ASSERT_TRUE(frame.CurrentWindow() != nullptr && frame.CurrentWindow()->Holds(newData.c_str()));
  CDataWindow& window = *frame.CurrentWindow();
  EXPECT_EQ(window.Table().ColumnHeading(3), "y");
  std::vector<double> expected;
  for (int r = 0; r < 8; ++r) expected.push_back(r == 6 ? -999999 : r + 2 * (r + 0.01));
  for (const int column : {2, 3}) {
    const std::vector<double> values = Column(window, column);
    for (std::size_t r = 0; r < 8; ++r) EXPECT_NEAR(values[r], expected[r], 1e-12) << r;
  }
  EXPECT_EQ(ReadBytes(folder / "survey.VSF"), before);
}

TEST_F(AppFrameTest, TheCellsOfARecodingAreCounted) {
  ASSERT_TRUE(frame.OpenPath(Sample("survey.VSF", 9)));
  const auto dialog =
      MakeProcedureDialog(frame.CurrentWindow()->Document(), RecodeChoices(), nullptr);
  dialog->show();
  const auto& counted = Find<QLabel>(*dialog, "countedLabel");
  const auto waitFor = [&counted](const char* text) {
    for (int i = 0; i < 300 && !counted.text().contains(text); ++i) QTest::qWait(10);
  };
  for (const char* step : {"list0=x1", "rules=0-4|1", "addRuleButton", "rules=HI-5|2"}) {
    Do(*dialog, step);
  }
  waitFor("OLD=");
  EXPECT_TRUE(counted.text().contains("OLD=")) << counted.text().toStdString();
  Do(*dialog, "rules=5-HI|2");
  waitFor("stay");
  EXPECT_EQ(counted.text(), "Cells that stay as they are: 1 (all 9 cases counted)");
  const auto& rules = Find<QTableWidget>(*dialog, "rules");
  EXPECT_EQ(rules.item(0, 2)->text() + ' ' + rules.item(1, 2)->text(), "5 3");
}

TEST_F(AppFrameTest, RecodedDataAreWrittenByTheEngineAndOpened) {
  ASSERT_TRUE(frame.OpenPath(Sample("survey.VSF", 9)));
  driver.Then([](QDialog& dialog) {
    for (const char* step : {"list0=x1", "rules=0-4|1", "addRuleButton", "rules=5-HI|2",
                             "newData=new.VSF", "runButton"}) {
      Do(dialog, step);
    }
  });
  driver.ThenPress(QMessageBox::Yes);  // open the new data
  Trigger(1233);
  ASSERT_TRUE(driver.AllAnswered());
  ASSERT_NE(frame.CurrentWindow(), nullptr);
  EXPECT_EQ(Column(*frame.CurrentWindow(), 0),
            (std::vector<double>{1, 1, 1, 1, 1, 2, -999999, 2, 2}));
}

}  // namespace
