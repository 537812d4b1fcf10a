#include "datadoc/DocumentFixture.h"
#include "syntax/SyntaxText.h"

namespace {

const std::string kTop = "!TORVIK SYNTAX: Can be edited \n";
const std::string kListingTop = "\n!Contents of VSFFILE: \n!-------------------- \n";
const std::string kListingEnd = "!End of Contents \n!--------------- \n\n";

// A whole listing with these lines.
std::string Listing(std::initializer_list<std::string> lines) {
  std::string text = kListingTop;
  for (const std::string& line : lines) text += line;
  return text += kListingEnd;
}

// `count` variables of no known type, named V1, V2, ...
TORVIKSTRUCT DataOf(int count) {
  TORVIKSTRUCT data;
  data.records = 120;
  data.variables = count;
  data.ResizeArrays(static_cast<std::size_t>(count) + 3);  // room to spare, as in a document
  for (std::size_t i = 0; i < data.variable.size(); ++i) {
    data.variable[i].name = "V" + std::to_string(i + 1);
    data.variable[i].type = 9;
  }
  return data;
}

}  // namespace

class SyntaxFile : public DocumentTest {
 protected:
  std::string Build(CStringList lines, long repetitions, int rewind, int append = 0) {
    document.BuildTORVIKSyntax(&lines, path.c_str(), nullptr, 1, repetitions, rewind, append);
    return ReadBytes(path);
  }
  const std::string path = folder / "survey.TRK";
  const std::string systemFile = "SY='" + folder / "survey.VSF'\n";
};

TEST_F(SyntaxFile, RepetitionsAndRewindChooseTheSystemFileLine) {
  const struct {
    long repetitions;
    int rewind;
    std::string head;  // between the title and the command lines
  } cases[] = {
      {1, 0, systemFile},
      {50, 0, "RP=50 " + systemFile},
      {50, 1, "RP=50 " + systemFile + " RE"},
      {1, 1, systemFile + " RE"},
      {0, 0, ""},
      {0, 1, systemFile + " RE"},
      {-1, 0, ""},
      {-8, 1, systemFile + " RE"},
      {2147483648, 0, "RP=2147483648 " + systemFile},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Build({"OU XT XM ", "last"}, c.repetitions, c.rewind),
              kTop + c.head + "OU XT XM \nlast\n")
        << c.repetitions << ' ' << c.rewind;
  }
}

TEST_F(SyntaxFile, BootstrappingCountsTwice) {
  document.GetOutputOptions()->nRepetitions = 50;
  CString line;
  document.GetOUString(document.GetOutputOptions(), line, 1);
  EXPECT_EQ(Build({line + " BS=100 SF=50 "}, 50, 1),
            kTop + "RP=50 " + systemFile + " REOU RP=50 XT XM  BS=100 SF=50 \n");
}

TEST_F(SyntaxFile, AppendsOrReplaces) {
  const std::string one = Build({"SE 1 2\n\nFA"}, 1, 0);
  EXPECT_EQ(one, kTop + systemFile + "SE 1 2\n\nFA\n");
  EXPECT_EQ(Build({}, 1, 0, 1), one + kTop + systemFile);
  EXPECT_EQ(Build({}, 1, 0), kTop + systemFile);
}

TEST_F(SyntaxFile, IsNotThereWhenItCannotBeWritten) {
  CStringList lines = {"OU"};
  const std::string absent = folder / "absent/a.TRK";
  EXPECT_EQ(document.BuildTORVIKSyntax(&lines, absent.c_str(), nullptr, 1, 1, 0, 0), 1);
  EXPECT_EQ(document.BuildTORVIKSyntax(&lines, "/dev/full", nullptr, 1, 1, 0, 0), 1);
  EXPECT_TRUE(host.messages.empty());
  EXPECT_EQ(folder.FileCount(), 0U);
}

TEST_F(SyntaxFile, ListsTheDocument) {
  Fill({{1, 2}, {3, 4}, {5, 6}});
  document.SetWeight(2);
  CStringList lines = {"OU XM"};
  document.BuildTORVIKSyntax(&lines, path.c_str(), "/tmp/copy", 0, -9, 0, 0);
  EXPECT_EQ(ReadBytes(path), kTop + kListingTop +
                                 "!DA NI=2 NO=0 \n!LA\n!A B \n!WE 2 \n!OR A \n!OR B \n" +
                                 kListingEnd + systemFile + "OU XM\n");
}

TEST(ContentsListing, NamesStandEightToALine) {
  const struct {
    int variables;
    const char* names;
  } cases[] = {
      {0, ""},
      {1, "!V1 \n"},
      {8, "!V1 V2 V3 V4 V5 V6 V7 V8 \n"},
      {9, "!V1 V2 V3 V4 V5 V6 V7 V8 \n!V9 \n"},
      {16, "!V1 V2 V3 V4 V5 V6 V7 V8 \n!V9 V10 V11 V12 V13 V14 V15 V16 \n"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ContentsListing(DataOf(c.variables), false),
              Listing({"!DA NI=", std::to_string(c.variables), " NO=120 \n!LA\n", c.names}));
  }
}

TEST(ContentsListing, DataLine) {
  const struct {
    std::int32_t weight;
    std::int32_t deletion;
    GlobalMissingDefinition missing;
    const char* lines;
  } cases[] = {
      {0, 0, kDefaultGlobalMissing, "!DA NI=0 NO=120 MI= -999999 TR=LI \n!LA\n"},
      {0, 1, kDefaultGlobalMissing, "!DA NI=0 NO=120 MI= -999999 TR=PA \n!LA\n"},
      {0, 2, kDefaultGlobalMissing, "!DA NI=0 NO=120 MI= -999999 \n!LA\n"},
      {7, 0, kDefaultGlobalMissing, "!DA NI=0 NO=0 MI= -999999 TR=LI \n!LA\n!WE 7 \n"},
      {-1, 0, kDefaultGlobalMissing, "!DA NI=0 NO=120 MI= -999999 TR=LI \n!LA\n"},
      {0,
       0,
       {1, kNotSet, -12.345, 5, 1000.5, 99},
       "!DA NI=0 NO=120 MI=  1.00,-12.35,  5.00 - 1000.50,      99 TR=LI \n!LA\n"},
      {0,
       0,
       {kNotSet, 2, kNotSet, 5, kNotSet, 0.5},
       "!DA NI=0 NO=120 MI=  2.00,       0 TR=LI \n!LA\n"},
      {0,
       0,
       {kNotSet, kNotSet, kNotSet, kNotSet, 5, 12345678901.0},
       "!DA NI=0 NO=120 MI=12345678901 TR=LI \n!LA\n"},
  };
  for (const auto& c : cases) {
    TORVIKSTRUCT data = DataOf(0);
    data.weightVariable = c.weight;
    data.deletion = c.deletion;
    data.missing = c.missing;
    EXPECT_EQ(ContentsListing(data, true), Listing({c.lines}));
  }
}

TEST(ContentsListing, GlobalCodeIsPrintedEvenWhenItIsNotSet) {
  TORVIKSTRUCT data = DataOf(0);
  data.missing[kGlobalValue] = kNotSet;
  char code[400];
  std::snprintf(code, sizeof code, "MI=%8.0f TR=LI \n", kNotSet);
  EXPECT_NE(ContentsListing(data, true).find(code), std::string::npos);
}

TEST(ContentsListing, OneTypeLineAVariable) {
  TORVIKSTRUCT data = DataOf(8);
  for (std::int32_t i = 0; i < 8; ++i) data.variable[static_cast<std::size_t>(i)].type = i - 1;
  data.variable[1].name = "averylongname_16";
  EXPECT_EQ(ContentsListing(data, false),
            kListingTop + "!DA NI=8 NO=120 \n!LA\n!V1 averylongname_16 V3 V4 V5 V6 V7 V8 \n" +
                "!OR averylongname_16 \n!CO V3 \n!CA V4 \n!CB V5 \n!CE V6 \n!FI V7 \n" +
                kListingEnd);
}

TEST(ContentsListing, AllCategoriesOfAVariableStandOnOneLine) {
  TORVIKSTRUCT data = DataOf(2);
  data.variable[1].categories = 15;
  std::string line = "!CL V2 ";
  for (std::size_t k = 0; k < kCategorySlots; ++k) {
    data.categoryValues[kCategorySlots + k] = static_cast<std::int32_t>(k) - 1;
    data.categoryLabels[kCategorySlots + k] = k == 0   ? "123456789"
                                              : k == 1 ? "abcdefg\xC3\xA4"
                                                       : "";
    line += std::to_string(static_cast<int>(k) - 1) + " = " +
            (k == 0   ? "12345678 "
             : k == 1 ? "abcdefg "
                      : " ");
  }
  EXPECT_EQ(ContentsListing(data, false),
            kListingTop + "!DA NI=2 NO=120 \n!LA\n!V1 V2 \n" + line + '\n' + kListingEnd);
}

TEST(ContentsListing, MissingValuesOfAVariable) {
  const double none = kNotSet;
  const struct {
    MissingDefinition missing;
    const char* line;
  } cases[] = {
      {{none, none, none, none, none}, ""},
      {{1, none, none, none, none}, "!MI   1.00  V1\n"},
      {{1, 2, none, none, none}, "!MI   1.00,   2.00  V1\n"},
      {{none, -2.555, 1e6, none, none}, "!MI  -2.56, 1000000.00  V1\n"},
      {{1, 2, none, 5, 9}, "!MI   1.00,   2.00, V1\n"},
      {{1, 2, 3, 5, none}, "!MI   1.00,   2.00,   3.00  V1\n"},
      {{none, none, none, 5, 9}, ""},
  };
  for (const auto& c : cases) {
    TORVIKSTRUCT data = DataOf(1);
    data.variable[0].missing = c.missing;
    const std::string beforeIt = "!LA\n!V1 \n";
    EXPECT_EQ(ContentsListing(data, true),
              Listing({"!DA NI=1 NO=120 MI= -999999 TR=LI \n", beforeIt, c.line}));
    EXPECT_EQ(ContentsListing(data, false), Listing({"!DA NI=1 NO=120 \n", beforeIt}));
  }
}

TEST(ContentsListing, TextsOfTheFileCannotEndAComment) {
  TORVIKSTRUCT data = DataOf(1);
  data.variable[0].name = "x\nSD 1\r";
  data.variable[0].type = kOrdinal;
  data.variable[0].categories = 1;
  data.categoryLabels[0] = "a\nOU";
  const std::string text = ContentsListing(data, true);
  EXPECT_NE(text.find("!x SD 1  \n!OR x SD 1  \n!CL x SD 1  0 = a OU \n"), std::string::npos)
      << text;
}
