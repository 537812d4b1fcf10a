#include "datadoc/DocumentFixture.h"
#include "datadoc/FormatStatement.h"

namespace {

using Fields = std::vector<RANGE_KTQ>;

TEST(FormatStatement, GivesItsFields) {
  const struct {
    const char* statement;
    Fields fields;
  } cases[] = {
      {"(3F8.2)", {{0, 7, 2, 0}, {8, 15, 2, 0}, {16, 23, 2, 0}}},
      {"( 2 f 4 . 1 , i3 )", {{0, 3, 1, 0}, {4, 7, 1, 0}, {8, 10, 0, 0}}},
      {"(D10.3,E12.4E2,G9,F5)", {{0, 9, 3, 0}, {10, 21, 4, 0}, {22, 30, 0, 0}, {31, 35, 0, 0}}},
      {"(5X,F2,X3,F2,2X4,F1)", {{5, 6, 0, 0}, {10, 11, 0, 0}, {16, 16, 0, 0}}},
      {"(X,F2)", {{1, 2, 0, 0}}},
      {"(A4,F2,3A5,F2)", {{4, 5, 0, 0}, {11, 12, 0, 0}}},
      {"(F2,H10,F3,H1,F1)", {{0, 1, 0, 0}, {9, 11, 0, 0}, {0, 0, 0, 0}}},
      // Lines go on, columns do too.
      {"(F3/F3,/,F3//2I1)",
       {{0, 2, 0, 0}, {3, 5, 0, 1}, {6, 8, 0, 2}, {9, 9, 0, 4}, {10, 10, 0, 4}}},
      // Other letters are ignored, and so are empty items and what stands behind the end.
      {"(T5,F2,,1P,F2)F9", {{0, 1, 0, 0}, {2, 3, 0, 0}}},
      {"((F2,F3", {{0, 1, 0, 0}, {2, 4, 0, 0}}},
      {"F2", {{0, 1, 0, 0}}},
      {"(999999999999F2)", Fields()},  // as many as are wanted; see below
      {"()", {}},
      {"", {}},
  };
  for (const auto& [statement, fields] : cases) {
    const FORMATFIELDS format = ParseFormat(statement, 12);
    EXPECT_EQ(format.problem, "") << statement;
    if (std::string_view(statement).find("9999") != std::string_view::npos) {
      EXPECT_EQ(format.fields.size(), 12U);
    } else {
      EXPECT_EQ(format.fields, fields) << statement;
    }
  }
}

TEST(FormatStatement, SaysWhichItemItCannotRead) {
  const struct {
    const char* statement;
    const char* problem;
  } cases[] = {
      {"(F2,F0.1)", "\"F0.1\""},
      {"(F)", "width"},
      {"(F2,0I4)", "repeat count"},
      {"(99999999999F99999999999)", "right"},
      {"(99999999999X,F1)", "right"},
      {"(F8.2F8.2)", "\"F8.2F8.2\""},
      {"(F2,2(F3,X))", "\"2(F3\""},
      {"(*)", "\"*\""},
      {"(F2,12)", "\"12\""},
      {"(A)", "width"},
      {"(H)", "width"},
      {"(F8.999999999)", "decimals"},
      {"(2/F3)", "\"2\""},
      {"(5Habcde,F3)", "\"5Habcde\""},
  };
  for (const auto& [statement, problem] : cases) {
    EXPECT_NE(ParseFormat(statement, 20).problem.find(problem), CString::npos)
        << statement << ": " << ParseFormat(statement, 20).problem;
  }
}

using FormatOfDocument = DocumentTest;

TEST_F(FormatOfDocument, HasRoomForTenMore) {
  EXTERNDATA kind;
  kind.fixedFormat = 1;
  kind.formatStatement = "(2F3,X,40I1)";
  document.SetExtern(kind, {}, 1, 2, false);
  Fields ranges;
  EXPECT_EQ(document.GetRangeFromFormat(ranges), 12);
  ASSERT_EQ(ranges.size(), 12U);
  EXPECT_EQ(ranges[2], (RANGE_KTQ{7, 7, 0, 0}));
  document.SetExtern(kind, {}, 1, 60, false);
  EXPECT_EQ(document.GetRangeFromFormat(ranges), 42);
  EXPECT_EQ(ranges.size(), 70U);
}

}  // namespace
