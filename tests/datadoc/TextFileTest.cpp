// Text documents of cases: free format, fixed columns, what is wrong in them, and back.
#include <fstream>
#include <random>

#include "datadoc/DocumentFixture.h"
#include "support/FileSizeLimit.h"

namespace {

using Table = std::vector<std::vector<double>>;
constexpr double kMissing = -999999.0;

class TextFile : public DocumentTest {
 protected:
  static EXTERNDATA Kind(const CString& statement = {}) {
    EXTERNDATA kind;
    kind.data_type = kTextFile;
    kind.fixedFormat = statement.empty() ? 0 : 1;
    kind.formatStatement = statement;
    return kind;
  }

  // Opens `text`; 0 variables or records: not told beforehand.
  int Open(const CString& text, const EXTERNDATA& kind, int variables, int records) {
    WriteBytes(name, text);
    document.SetExtern(kind, {}, records, variables, false);
    return document.OnOpenDocument(name);
  }

  const CString name = folder / "data.dat";
};

TEST_F(TextFile, ReadsLines) {
  const struct {
    const char* what;
    CString text;
    CString statement;  // handed in; empty: none
    int variables;
    int records;
    Table rows;
  } cases[] = {
      {"words across lines", "1 2\n3\t4 5\r\n\n 6 ", "", 3, 2, {{1, 2, 3}, {4, 5, 6}}},
      {"as many as there are", "1 2 3 4", "", 2, 0, {{1, 2}, {3, 4}}},
      {"a record cut short", "1 2 3", "", 2, 0, {{1, 2}, {3, kMissing}}},
      {"fewer than promised", "1 2 3", "", 2, 9, {{1, 2}, {3, kMissing}}},
      {"a byte-order mark",
       "\xEF\xBB\xBF"
       "1 2",
       "",
       2,
       0,
       {{1, 2}}},
      {"an end mark of old systems", "1 2\n\x1A", "", 2, 0, {{1, 2}}},
      {"texts", "x 1e 2", "", 3, 0, {{0, 1, 2}}},
      {"a statement above", " (2F3.1)\n1.5 25\n", "", 2, 0, {{1.5, 2.5}}},
      {"it says how many", "(2F3.1)\n1.5 25\n", "", 0, 0, {{1.5, 2.5}}},
      {"it may say too many", "(9F1)\n123456789", "", 2, 0, {{1, 2}}},
      {"handed in", "12345\n67890\n", "(F2,X,2I1)", 3, 0, {{12, 4, 5}, {67, 9, 0}}},
      {"handed in before the one above", "(2I1)\n1234", "(I2,I2)", 2, 0, {{12, 34}}},
      {"several lines, columns go on",
       "12\n  34\n56\n  78\n",
       "(F2/F2)",
       2,
       2,
       {{12, 34}, {56, 78}}},
      {"a line passed over", "12\nx\n  34\n", "(F2//F2)", 2, 0, {{12, 34}}},
      {"columns beyond the line", "12\n\n3456", "(2F2)", 2, 0, {{12, 0}, {0, 0}, {34, 56}}},
      {"blank lines at the end", "12\n 3\n\n \n", "(F2)", 1, 0, {{12}, {3}}},
      {"blank lines that were promised", "12\n\n", "(F2)", 1, 2, {{12}, {0}}},
      {"the second line is not there", "12\n", "(F2/F2)", 2, 0, {{12, kMissing}}},
      {"D exponents", "0.15D+01 1.d0", "", 2, 0, {{1.5, 1}}},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(Open(test.text, Kind(test.statement), test.variables, test.records), 1) << test.what;
    EXPECT_EQ(Rows(), test.rows) << test.what;
    EXPECT_EQ(static_cast<std::size_t>(document.GetRecnum()), test.rows.size()) << test.what;
  }
}

TEST_F(TextFile, TellsWhatWasNoNumber) {
  ASSERT_EQ(Open("1   2xx\nab     \n  3 4\n", Kind("(2F4)"), 2, 4), 1);
  const CString text = host.LastMessage();
  for (const char* part : {"1 value(s) are no numbers", "\"ab\" in record 2, variable VAR001",
                           "Of 1 value(s)", "\"2xx\" in record 1, variable VAR002",
                           "1 field(s) are blank", "3 of 4 record(s) are there"}) {
    EXPECT_NE(text.find(part), CString::npos) << part << "\nin " << text;
  }
  host.messages.clear();
  ASSERT_EQ(Open("1 2 3 4", Kind(), 2, 1), 1);
  EXPECT_NE(host.LastMessage().find("holds more"), CString::npos);
  host.messages.clear();
  ASSERT_EQ(Open("1 2\n3 4\n\n", Kind(), 2, 2), 1);
  EXPECT_TRUE(host.messages.empty());
}

TEST_F(TextFile, RefusesWhatItCannotRead) {
  const struct {
    CString text;
    CString statement;
    int variables;
    const char* message;
  } cases[] = {
      {"1 2", "", 0, "number of variables is not known"},
      {"12", "(F1)", 2, "gives 1 field(s), the data set has 2"},
      {"12", "()", 2, "gives 0 field(s)"},
      {"()\n12", "", 0, "gives 0 field(s)"},
      {"(F0)\n12", "", 2, "\"F0\""},
      {"(" + CString(300, ' ') + "F1" + CString(300, ','), "", 2, "more than 256 characters"},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(Open(test.text, Kind(test.statement), test.variables, 0), 0) << test.text;
    EXPECT_NE(host.LastMessage().find(test.message), CString::npos) << host.LastMessage();
  }
  EXPECT_EQ(document.OnOpenDocument(folder / "absent.dat"), 0);
  EXPECT_EQ(host.LastMessage(), "The file does not exist!");
  host.cancelAtStep = host.progressSteps;
  CString many;
  for (int i = 0; i < 100000; ++i) many += "1 ";
  EXPECT_EQ(Open(many, Kind(), 2, 0), 0);
  EXPECT_EQ(document.GetVarnum(), 0);
}

TEST_F(TextFile, ReadsLinesOfAnyLength) {
  constexpr int kVariables = 20000;
  CString line;
  for (int i = 0; i < kVariables; ++i)
    line += std::to_string(i % 1000) + "." + std::to_string(i) + ' ';
  ASSERT_EQ(Open(line + '\n' + line, Kind(), kVariables, 0), 1);
  const Table rows = Rows();
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[1], rows[0]);
  EXPECT_EQ(rows[0][12345], 345.12345);

  // A word longer than any number, and columns far behind the first block of the file.
  ASSERT_EQ(Open("1 " + CString(300000, '7') + " 2", Kind(), 3, 0), 1);
  EXPECT_EQ(Rows(), (Table{{1, 0, 2}}));
  const CString far = CString(3 * 65535, '.') + "42" + CString(500000, 'x') + '\n';
  ASSERT_EQ(Open(far + far, Kind("(A65535,A65535,A65535,F2)"), 1, 0), 1);
  EXPECT_EQ(Rows(), (Table{{42}, {42}}));
}

TEST_F(TextFile, TakesNamesFromTheTop) {
  WriteBytes(name, "\xEF\xBB\xBFheight weight a_very_long_name_of_a_variable\n1 2 3 4\n5 6 7 8 \n");
  ASSERT_EQ(document.OpenFreeFormatFile(name, {4, true}), 1);
  EXPECT_EQ(Rows(), (Table{{1, 2, 3, 4}, {5, 6, 7, 8}}));
  const auto& variable = document.GetTorvik()->variable;
  EXPECT_EQ(variable[1].name, "weight");
  EXPECT_EQ(variable[2].name, "a_very_long_name");
  EXPECT_EQ(variable[3].name, "VAR004");

  // They are there again when it is saved, and the same look proposes them.
  document.GetTorvik()->variable[3].name = "my var";
  ASSERT_EQ(document.OnSaveDocument(name), 1);
  EXPECT_EQ(ReadBytes(name).substr(0, 47), "height weight a_very_long_name my_var \n1.000000");
  const TEXTFILELOOK look = LookAtTextFile(name);
  EXPECT_TRUE(look.readable && look.proposal.namesOnTop && !look.statement);
  EXPECT_EQ(look.proposal.variables, 4);
  CDataDoc other;
  CDataView otherView(other);
  ASSERT_EQ(other.OpenFreeFormatFile(name, look.proposal), 1);
  EXPECT_EQ(Rows(other, otherView), Rows());
  EXPECT_EQ(other.GetTorvik()->variable[3].name, "my_var");
}

TEST_F(TextFile, SavesAsItWasOpened) {
  const struct {
    const char* text;
    CString statement;
    int variables;
    const char* saved;
  } cases[] = {
      {"(2F5.1,X,F1)\n  1.5  123 4\n", "", 3, "(2F5.1,X,F1)\n1.50012.30 4\n"},
      {" 12345\n", "(F6.2)", 1, "123.45\n"},
      {"12345\n", "(F5.2)", 1, "12345\n"},
      {"12\n  34\n", "(F2/F2)", 2, "12\n  34\n"},
      {"1 2\n", "", 2, "1.000000 2.000000 \n"},
  };
  for (const auto& test : cases) {
    ASSERT_EQ(Open(test.text, Kind(test.statement), test.variables, 0), 1) << test.text;
    document.SetModifiedFlag();
    ASSERT_EQ(document.OnSaveDocument(name), 1) << host.LastMessage();
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(ReadBytes(name).substr(0, std::string(test.saved).size()), test.saved);
  }
}

TEST_F(TextFile, AValueThatDoesNotFitLeavesTheOldFile) {
  Fill({{1, 2}, {3, 123.456}});
  WriteBytes(name, "old");
  const struct {
    CString statement;
    const char* message;
  } cases[] = {{"(2F5.1)", "The value 123.456 of case 2, variable B does not fit"},
               {"(F5)", "gives 1 field(s)"},
               {"(F9,H1,F9)", "case 1, variable A"},  // both in the same columns
               {"(F9,F)", "width"}};
  for (const auto& [statement, message] : cases) {
    document.SetExternData(Kind(statement));
    document.SetModifiedFlag();
    EXPECT_EQ(document.OnSaveDocument(name), 0);
    EXPECT_NE(host.LastMessage().find(message), CString::npos) << host.LastMessage();
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(ReadBytes(name), "old");
  }
  document.SetExternData(Kind("(2F9.1)"));
  {
    const FileSizeLimit limit(10);
    EXPECT_EQ(document.OnSaveDocument(name), 0);
  }
  EXPECT_EQ(host.LastMessage(), "Cannot write to file!");
  EXPECT_EQ(document.OnSaveDocument(folder / "no/where.dat"), 0);
  EXPECT_EQ(host.LastMessage(), "Cannot write to file!");
  EXPECT_EQ(ReadBytes(name), "old");
  EXPECT_EQ(folder.FileCount(), 1U);
}

// A statement with fields for so many variables, and the columns of each.
CString AnyStatement(std::mt19937_64& random, int variables,
                     std::vector<std::pair<int, int>>& form) {
  CString statement = "(";
  for (int i = 0; i < variables;) {
    switch (random() % 8) {
      case 0:
        statement += std::to_string(1 + random() % 3) + "x , ";
        break;
      case 1:
        statement += "A" + std::to_string(1 + random() % 4) + ',';
        break;
      case 2:
        statement += "/";
        break;
      default: {
        const int repeat = 1 + static_cast<int>(random() % 3);
        const int width = 1 + static_cast<int>(random() % 14);
        const int decimals = static_cast<int>(random() % 4);
        statement += std::to_string(repeat) + "DEFGIdefgi"[random() % 10] + std::to_string(width) +
                     '.' + std::to_string(decimals) + ',';
        for (int k = 0; k < repeat; ++k) form.emplace_back(width, decimals);
        i += repeat;
      }
    }
  }
  return statement + ")";
}

TEST_F(TextFile, RoundTripsOverRandomStatements) {
  std::mt19937_64 random(3);
  for (int round = 0; round < 60; ++round) {
    const int variables = 1 + static_cast<int>(random() % 12);
    std::vector<std::pair<int, int>> form;
    const CString statement = AnyStatement(random, variables, form);
    Table rows(1 + random() % 20, std::vector<double>(static_cast<std::size_t>(variables)));
    for (auto& row : rows) {
      for (std::size_t i = 0; i < row.size(); ++i) {
        // What so many digits with so many decimals can say: every field can hold it.
        const auto [width, decimals] = form[i];
        const double digits = std::floor(std::pow(10, std::min(width, 14)) *
                                         (static_cast<double>(random() % 1000) / 1000.0));
        row[i] = digits / std::pow(10, decimals);
      }
    }
    Fill(rows);
    document.SetExternData(Kind(statement));
    ASSERT_EQ(document.SaveASCIIFile(name), 1) << statement << ": " << host.LastMessage();
    CDataDoc other;
    CDataView otherView(other);
    const bool handedIn = random() % 2 == 0;
    other.SetExtern(Kind(handedIn ? statement : CString()), {}, 0, variables, false);
    ASSERT_EQ(other.OnOpenDocument(name), 1) << statement << ": " << host.LastMessage();
    ASSERT_EQ(Rows(other, otherView), rows) << statement << '\n' << ReadBytes(name);
  }
}

TEST_F(TextFile, SaveAsChangesTheKind) {
  Fill({{1, 2}, {3, 4}});
  const auto rows = [&] { return host.dialogs.back().rows; };
  host.choices.push_back(FileDialogChoice{folder / "free", 1});
  ASSERT_EQ(document.OnFileSaveAs(), 1);
  EXPECT_EQ(rows().size(), 2U);
  EXPECT_EQ(ReadBytes(folder / "free.DAT"), "1.000000 2.000000 \n3.000000 4.000000 \n");
  EXPECT_EQ(document.GetExternType(), kTextFile);

  // A failure leaves the kind; the own kind is now the first.
  WriteBytes(folder / "file", "");
  host.choices.push_back(FileDialogChoice{folder / "file/x.VSF", 1});
  document.GetTorvik()->format = kNewFormat;
  EXPECT_EQ(document.OnFileSaveAs(), 0);
  EXPECT_NE(rows()[0].patterns.find("*.DAT"), CString::npos);
  EXPECT_EQ(document.GetExternType(), kTextFile);
  host.choices.push_back(FileDialogChoice{folder / "back", 1});
  ASSERT_EQ(document.OnFileSaveAs(), 1);
  EXPECT_EQ(document.GetExternType(), kSystemDataFile);
  EXPECT_EQ(ReadBytes(folder / "back.VSF").substr(0, 6), "VEXC16");
}

}  // namespace
