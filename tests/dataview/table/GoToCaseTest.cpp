#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>

#include <gtest/gtest.h>

#include "dataview/table/GoToCaseDlg.h"

namespace {

TEST(GoToCase, ReadsCaseNumbersAsPeopleTypeThem) {
  const struct {
    const char* text;
    std::int64_t want;
  } cases[] = {
      {"1", 1},
      {" 2800 ", 2800},
      {"2,800", 2800},
      {"2 800", 2800},
      {"2801", -1},
      {"0", -1},
      {"-1", -1},
      {"", -1},
      {"12.5", -1},
      {"1,5", -1},
      {"abc", -1},
      {"1e3", -1},
      {"99999999999999999999", -1},
  };
  for (const auto& c : cases) EXPECT_EQ(CaseNumberFromText(c.text, 2800), c.want) << c.text;
  EXPECT_EQ(CaseNumberFromText("6,000,000,000", 6'000'000'000), 6'000'000'000);
}

TEST(GoToCase, StartsAtTheCurrentCellAndRefusesWhatIsNoCase) {
  CGoToCaseDlg dialog(2800, {"x1", "x2", "x3"}, {41, 2}, nullptr);
  EXPECT_EQ(dialog.Chosen().row, 41);
  EXPECT_EQ(dialog.Chosen().column, 2);
  auto* edit = dialog.findChild<QLineEdit*>("caseEdit");
  auto* ok = dialog.findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Ok);
  edit->setText("2801");
  EXPECT_FALSE(ok->isEnabled());
  edit->setText("2800");
  EXPECT_TRUE(ok->isEnabled());
  dialog.findChild<QComboBox*>("variableBox")->setCurrentIndex(0);
  EXPECT_EQ(dialog.Chosen().row, 2799);
  EXPECT_EQ(dialog.Chosen().column, 0);
}

}  // namespace
