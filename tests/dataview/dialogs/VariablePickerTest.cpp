#include "dataview/dialogs/DialogFixture.h"
#include "dataview/dialogs/VariablePicker.h"

namespace {

TORVIKSTRUCT Named(const std::vector<CString>& names) {
  TORVIKSTRUCT data;
  data.variables = static_cast<std::int32_t>(names.size());
  data.ResizeArrays(names.size());
  for (std::size_t i = 0; i < names.size(); ++i) data.variable[i].name = names[i];
  return data;
}

TEST(VariablePicker, FindsWhatIsTyped) {
  CVariablePicker list;
  list.SetVariables(Named({"age", "income", "A1", "A2", "agegroup", "mean age"}));
  const struct {
    const char* typed;
    int want;
  } cases[] = {{"inc", 1}, {"a2", 3}, {"ageg", 4}, {"mean", 5}, {"group", 4}, {"zzz", -1}};
  for (const auto& c : cases) {
    list.Select({});
    EXPECT_EQ(list.FindName(c.typed), c.want >= 0) << c.typed;
    EXPECT_EQ(list.FirstSelected(), c.want) << c.typed;
  }
  list.Select({0});
  list.FindName("age", true);
  EXPECT_EQ(list.FirstSelected(), 4) << "the next one that begins so";
  list.FindName("age", true);
  EXPECT_EQ(list.FirstSelected(), 0) << "and round to the first";
  list.show();
  list.Select({});
  QTest::keyClicks(&list, "A2");
  EXPECT_EQ(list.FirstSelected(), 3);
}

TEST(VariablePicker, SelectsSeveralOfManyQuickly) {
  std::vector<CString> names;
  for (int i = 0; i < 32767; ++i) names.push_back("v" + std::to_string(i + 1));
  CVariablePicker list;
  list.SetVariables(Named(names));
  list.resize(200, 300);
  list.show();
  list.Select({32766, 7, 9});
  EXPECT_EQ(list.Selected(), (std::vector<std::int32_t>{7, 9, 32766}));
  list.selectAll();
  EXPECT_EQ(list.Selected().size(), 32767U);
  list.SetSingle();
  list.Select({3});
  EXPECT_EQ(list.FirstSelected(), 3);
}

TEST(VariablePicker, FinderGoesOnWithEnterAndHidesAtShortLists) {
  QWidget parent;
  CVariablePicker list(&parent);
  CVariableFinder finder(&parent);
  list.SetVariables(Named({"a", "b"}));
  finder.SetList(&list);
  EXPECT_TRUE(finder.isHidden());
  list.SetVariables(Named(std::vector<CString>(40, "item")));
  finder.SetList(&list);
  EXPECT_FALSE(finder.isHidden());
  parent.show();
  QTest::keyClicks(&finder, "ite");
  EXPECT_EQ(list.FirstSelected(), 0);
  QTest::keyClick(&finder, Qt::Key_Return);
  EXPECT_EQ(list.FirstSelected(), 1);
}

}  // namespace
