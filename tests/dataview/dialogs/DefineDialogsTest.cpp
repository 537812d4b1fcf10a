// Define Variables and the dialogs behind it, worked as a user does.
#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>

#include "dataview/definition/CategoryItems.h"
#include "dataview/dialogs/DataDefAddDlg.h"
#include "dataview/dialogs/DataDefCatDlg.h"
#include "dataview/dialogs/DataDefDlg.h"
#include "dataview/dialogs/DataDefMissDlg.h"
#include "dataview/dialogs/DataDefTypeDlg.h"
#include "dataview/dialogs/DialogFixture.h"
#include "dataview/dialogs/VariablePicker.h"

namespace {

class DefineDialogs : public DialogTest {
 protected:
  CString NameOf(const CdlgDataDef& dialog, std::size_t variable) {
    return dialog.Copy()->variable[variable].name;
  }
};

TEST_F(DefineDialogs, EnableTheButtonsWhileANameIsSelected) {
  CdlgDataDef dialog(document, -1, nullptr);
  dialog.show();
  for (const bool any : {false, true}) {
    Find<CVariablePicker>(dialog, "variableList")
        .Select(any ? std::vector<std::int32_t>{2} : std::vector<std::int32_t>());
    for (const char* name : {"typeButton", "categoryButton", "missingButton"}) {
      EXPECT_EQ(Find<QPushButton>(dialog, name).isEnabled(), any) << name;
    }
    EXPECT_TRUE(Find<QPushButton>(dialog, "insertButton").isEnabled());
  }
}

TEST_F(DefineDialogs, RenameEndsWithTheFocusAndKeepsTheDialogOpen) {
  CdlgDataDef dialog(document, 1, nullptr);
  dialog.show();
  QApplication::setActiveWindow(&dialog);
  auto& list = Find<CVariablePicker>(dialog, "variableList");
  auto& edit = Find<QLineEdit>(dialog, "renameEdit");
  const struct {
    Qt::Key key;
    const char* typed;
    const char* want;
  } cases[] = {{Qt::Key_Return, "income", "income"},
               {Qt::Key_Escape, "abcdefghijklmnopqrst", "abcdefghijklmnop"}};
  for (const auto& c : cases) {
    list.Select({1, 3});
    Click(dialog, "renameButton");
    ASSERT_TRUE(edit.isVisible());
    ASSERT_TRUE(edit.hasFocus());
    EXPECT_EQ(edit.selectedText(), edit.text());
    QTest::keyClicks(&edit, c.typed);
    QTest::keyClick(&edit, c.key);
    EXPECT_FALSE(edit.isVisible());
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(NameOf(dialog, 1), c.want);
    EXPECT_EQ(list.Name(1).toStdString(), c.want);
    EXPECT_EQ(list.Selected(), (std::vector<std::int32_t>{1}));
  }
  Click(dialog, "renameButton");
  QTest::keyClicks(&edit, "other");
  list.Select({4});
  EXPECT_EQ(NameOf(dialog, 1), "abcdefghijklmnop") << "a new selection forgets the rename";
  EXPECT_EQ(document.GetTorvik()->variable[1].name, "x2") << "only the copy was changed";
}

TEST_F(DefineDialogs, AddedVariablesReachTheDocumentOnOkOnly) {
  CdlgDataDef dialog(document, 0, nullptr);
  dialog.show();
  Then([](QDialog& add) {
    auto& edit = Find<QLineEdit>(add, "nameEdit");
    EXPECT_FALSE(Ok(add).isEnabled());
    edit.setText("y1 - z3");
    Ok(add).click();
    EXPECT_TRUE(add.isVisible()) << "stays open";
    edit.setText("y1 - y3");
    Ok(add).click();
  });
  Click(dialog, "insertButton");
  EXPECT_EQ(host.LastMessage(),
            "The two variables should have the same name and the second variable should have "
            "higher index!");
  EXPECT_EQ(dialog.Copy()->variables, 8);
  EXPECT_EQ(document.GetVarnum(), 5);
  ASSERT_TRUE(view.UpdateDefinition(*dialog.Copy()));
  EXPECT_EQ(document.GetVarnum(), 8);
  EXPECT_EQ(document.GetTorvik()->variable[7].name, "y3");
  EXPECT_EQ(view.GetCellValue({19, 7}), 0.0);
}

TEST_F(DefineDialogs, TypeGoesToTheSelectedOrToAll) {
  for (const bool all : {false, true}) {
    CdlgDataDef dialog(document, -1, nullptr);
    dialog.show();
    Find<CVariablePicker>(dialog, "variableList").Select({0, 2});
    Then([all](QDialog& type) {
      EXPECT_EQ(type.windowTitle(), "Variable Types for x1 ...");
      EXPECT_TRUE(Find<QAbstractButton>(type, "ordinalRadio").isChecked());
      Click(type, "aboveRadio");
      Find<QCheckBox>(type, "allCheck").setChecked(all);
      Ok(type).click();
    });
    Click(dialog, "typeButton");
    EXPECT_EQ(dialog.Copy()->variable[2].type, kCensoredAbove);
    EXPECT_EQ(dialog.Copy()->variable[1].type, all ? kCensoredAbove : kOrdinal);
    EXPECT_EQ(Find<CVariablePicker>(dialog, "variableList").Selected().size(), 2U);
  }
}

TEST_F(DefineDialogs, MissingValuesAreTakenFromTheFields) {
  TORVIKSTRUCT& data = *document.GetTorvik();
  CDataDefMissDlg dialog(data.variable[0], data, nullptr);
  auto& value = Find<QLineEdit>(dialog, "variableValue1");
  EXPECT_FALSE(value.isEnabled());
  Click(dialog, "someRadio");
  EXPECT_TRUE(value.isEnabled());
  value.setText("9");
  Find<QLineEdit>(dialog, "variableHigh").setText("99");
  Find<QLineEdit>(dialog, "globalLow").setText("-5");
  Find<QLineEdit>(dialog, "globalHigh").setText("-1");
  Click(dialog, "pairwiseRadio");
  Ok(dialog).click();
  EXPECT_EQ(data.variable[0].missing, (MissingDefinition{9, kNotSet, kNotSet, kNotSet, kNotSet}));
  EXPECT_EQ(data.missing[kRangeLow], -5);
  EXPECT_EQ(data.missing[kRangeHigh], -1);
  EXPECT_EQ(data.deletion, kPairwise);
}

TEST_F(DefineDialogs, CategoriesAreAddedDeletedAndLimited) {
  TORVIKSTRUCT& data = *document.GetTorvik();
  CDataDefCatDlg dialog(data, 1, nullptr);
  dialog.show();
  EXPECT_EQ(dialog.windowTitle(), "Category Labels for x2 ...");
  auto& value = Find<QLineEdit>(dialog, "valueEdit");
  auto& label = Find<QLineEdit>(dialog, "labelEdit");
  const auto add = [&](const QString& v, const QString& l) {
    value.clear();
    label.clear();
    QTest::keyClicks(&value, v);
    QTest::keyClicks(&label, l);
    Click(dialog, "addButton");
  };
  add("1", "");
  EXPECT_EQ(host.LastMessage(), "Please enter both the label and value field!");
  add("123456789", "abcdef");
  auto& list = Find<QListWidget>(dialog, "categoryList");
  ASSERT_EQ(list.count(), 1);
  EXPECT_EQ(list.item(0)->text(), "1234567 = abcd");
  EXPECT_TRUE(value.text().isEmpty() && label.text().isEmpty());
  for (int i = 1; i <= 15; ++i) add(QString::number(i), "a");
  Ok(dialog).click();
  EXPECT_EQ(host.LastMessage(), "An ordinal variable cannot have more than 15 categories!");
  EXPECT_TRUE(dialog.isVisible());
  list.item(0)->setSelected(true);
  list.item(14)->setSelected(true);
  Click(dialog, "deleteButton");
  Ok(dialog).click();
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_EQ(data.variable[1].categories, 14);
  EXPECT_EQ(CategoryItems(data, 1).back(), "15 = a");
}

}  // namespace
