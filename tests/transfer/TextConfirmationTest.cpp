// What the dialog shows and what its commands do, without the dialog.
#include <functional>

#include "transfer/TextConfirmation.h"
#include "transfer/TextImportFixture.h"

using Command = TextVariableCommand;
using State = TextPreviewCell::State;

class TextConfirmation : public TextImportTest {
 protected:
  // Imports `text` with `body` in the place of the user.
  void Confirm(const std::string& text, int type,
               const std::function<void(CTextConfirmation&)>& body) {
    bool asked = false;
    port.SetTextConfirmer([&](CTextConfirmation& confirmation) {
      asked = true;
      body(confirmation);
      return true;
    });
    EXPECT_TRUE(Import(text, type)) << Reason();
    EXPECT_TRUE(asked);
  }
  std::string problem;
};

TEST_F(TextConfirmation, SaysWhatWasFound) {
  Confirm("a,b\n1,x\n", 1003, [](CTextConfirmation& c) {
    EXPECT_EQ(c.Title(), "Importing source.csv");
    EXPECT_EQ(c.NamesLabel(), "Detected variable name(s) at top of file.");
    EXPECT_TRUE(c.IsNumeric(0));
    EXPECT_FALSE(c.IsNumeric(1));
  });
  Confirm("1,2\n", 1003,
          [](CTextConfirmation& c) { EXPECT_EQ(c.NamesLabel(), "Variable name not detected."); });
}

TEST_F(TextConfirmation, RefusesANameOfAnotherRow) {
  Confirm("a,b,\xC3\xA4\n1,2,3\n", 1003, [&](CTextConfirmation& c) {
    EXPECT_FALSE(c.Rename(1, " A ", problem));
    EXPECT_EQ(problem, "A already defined in row 1");
    EXPECT_FALSE(c.Rename(0, "  ", problem));
    EXPECT_EQ(problem, "");
    EXPECT_TRUE(c.Rename(0, "A", problem)) << "its own name in capitals";
    EXPECT_TRUE(c.Rename(1, "new", problem));
  });
  EXPECT_EQ(Names(), (std::vector<CString>{"A", "new", "\xE4"}));
}

TEST_F(TextConfirmation, CommandsNameAndChoose) {
  Confirm("a&b,,c\n1,2,3\n", 1003, [&](CTextConfirmation& c) {
    EXPECT_EQ(c.CommandText(Command::UseImportName, 0), "Use &Import Name (a&&b)");
    EXPECT_EQ(c.CommandText(Command::UseDefaultName, 2), "Use &Default Name (VAR003)");
    EXPECT_FALSE(c.CanDo(Command::UseImportName, 1)) << "the file gives it none";
    ASSERT_TRUE(c.Do(Command::UseDefaultName, 2, problem));
    EXPECT_EQ(c.Variables()[2].name, "VAR003");
    c.Rename(1, "c", problem);
    EXPECT_FALSE(c.Do(Command::UseImportName, 2, problem));
    EXPECT_EQ(problem, "c already defined in row 2");
    ASSERT_TRUE(c.Do(Command::UseNamesFromFile, 0, problem));
    EXPECT_EQ(c.Variables()[1].name, "VAR002");
    c.Do(Command::AllString, 0, problem);
    EXPECT_FALSE(c.IsNumeric(2));
    c.Do(Command::AllNumeric, 0, problem);
    c.Do(Command::UnselectAll, 0, problem);
    EXPECT_EQ(c.SelectedCount(), 0U);
    c.Do(Command::SelectAll, 0, problem);
    c.Select(0, false);
    STUtils::var_name_template_t names;
    names.prefix = "Q";
    c.SetNames(names);
  });
  EXPECT_EQ(Names(), (std::vector<CString>{"Q002", "c"}));
  EXPECT_EQ(Rows(), (rows_t{{2, 3}}));
}

TEST_F(TextConfirmation, OtherWaysToReadScanAgainAndKeepChoices) {
  Confirm("a;b\n1,5;x\n-;2\n", 1003, [&](CTextConfirmation& c) {
    EXPECT_EQ(c.Variables().size(), 1U) << "a;b";
    EXPECT_TRUE(c.Preview(problem).empty());
    EXPECT_NE(problem.find("line 2"), std::string::npos) << problem;
    STUtils::TextSettings settings = c.Settings();
    settings.delimiter = ';';
    settings.decimalMark = ';';
    EXPECT_FALSE(c.Change(settings, problem));
    EXPECT_NE(problem.find("decimal mark"), std::string::npos);
    EXPECT_EQ(c.Separator(), ',') << "as it was";
    settings.decimalMark = ',';
    ASSERT_TRUE(c.Change(settings, problem)) << problem;
    EXPECT_EQ(c.Separator(), ';');
    EXPECT_FALSE(c.IsNumeric(0));
    c.SetNumeric(1, true);
    c.Rename(1, "mine", problem);
    ASSERT_TRUE(c.SetMissingStrings({"-", "x"}, problem));
    EXPECT_TRUE(c.IsNumeric(0)) << "scanned again";
    EXPECT_TRUE(c.IsNumeric(1));
    settings.hasNames = false;
    ASSERT_TRUE(c.Change(settings, problem));
    EXPECT_EQ(c.Variables()[0].name, "VAR001");
    EXPECT_EQ(c.Variables()[1].name, "mine");
    settings.hasNames = std::nullopt;
    ASSERT_TRUE(c.Change(settings, problem));
  });
  EXPECT_EQ(Rows(), (rows_t{{1.5, M}, {M, 2}}));
  EXPECT_EQ(Names(), (std::vector<CString>{"a", "mine"}));
}

TEST_F(TextConfirmation, PreviewFollowsTheChoices) {
  std::string text = "a,b,c\n1,x,NA\n";
  for (int i = 0; i < 200; ++i) text += "12abc,y,3\n";
  Confirm(text, 1003, [&](CTextConfirmation& c) {
    c.SetNumeric(0, true);
    const auto cells = c.Preview(problem);
    ASSERT_EQ(cells.size(), 100U);
    EXPECT_EQ(cells[0][0].state, State::Value);
    EXPECT_EQ(cells[0][1].state, State::LeftOut);
    EXPECT_EQ(cells[0][2].state, State::Missing);
    EXPECT_EQ(cells[1][0].state, State::Unreadable);
    EXPECT_EQ(cells[1][0].text, "12abc");
    c.Select(2, false);
    EXPECT_EQ(c.Preview(problem)[1][2].state, State::LeftOut);
  });
  EXPECT_EQ(document.GetRecnum(), 201) << "the preview leaves nothing behind";
}

TEST(VarNameTemplate, FillsUpAndShortens) {
  const struct {
    const char* prefix;
    const char* suffix;
    int width;
    int length;
    std::size_t position;
    const char* name;
  } cases[] = {{"VAR", "", 3, 16, 0, "VAR001"},        {"VAR", "", 3, 16, 999, "VAR1000"},
               {"V", "_x", 0, 16, 8, "V9_x"},          {"abcdef", "xyz", 3, 8, 0, "ab001xyz"},
               {"abc", "uvwxyz", 3, 8, 0, "001uvwxy"}, {"abc", "x", 3, 2, 0, "001"}};
  for (const auto& c : cases) {
    STUtils::var_name_template_t names;
    names.prefix = c.prefix;
    names.suffix = c.suffix;
    names.numberWidth = c.width;
    names.maximumLength = c.length;
    EXPECT_EQ(names.Name(c.position), c.name);
  }
}
