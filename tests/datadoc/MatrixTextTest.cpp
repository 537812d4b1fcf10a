// Text files of moment matrices and vectors.
#include "datadoc/DocumentFixture.h"

namespace {

using Table = std::vector<std::vector<double>>;

class MatrixText : public DocumentTest {
 protected:
  static EXTERNDATA Kind(int matrix, int first, int second, bool full) {
    EXTERNDATA kind;
    kind.data_type = kTextFile;
    kind.ma_type = 1;
    kind.matrixPosition = static_cast<std::uint8_t>(matrix);
    kind.firstVectorPosition = static_cast<std::uint8_t>(first);
    kind.secondVectorPosition = static_cast<std::uint8_t>(second);
    kind.fullMatrix = full ? 1 : 0;
    return kind;
  }
  const CString name = folder / "matrix.dat";
};

TEST_F(MatrixText, ReadsAndWritesThePartsInEveryOrder) {
  const Table lower = {{1, 0}, {2, 3}};
  const Table full = {{1, 2}, {2, 3}};
  const std::vector<double> first = {5, 6};
  const std::vector<double> second = {7, 8};
  const struct {
    int matrix, first, second;
  } orders[] = {{1, 0, 0}, {1, 2, 0}, {2, 1, 0}, {1, 0, 2}, {2, 0, 1}, {1, 2, 3}, {1, 3, 2},
                {2, 1, 3}, {3, 1, 2}, {2, 3, 1}, {3, 2, 1}, {0, 2, 1}, {0, 1, 0}};
  for (const bool isFull : {false, true}) {
    for (const auto& order : orders) {
      CString text;
      for (int place = 1; place <= 3; ++place) {
        if (order.matrix == place) text += isFull ? "1 2\n2 3\n" : "1\n2 3\n";
        if (order.first == place) text += "5 6\n";
        if (order.second == place) text += "7 8\n";
      }
      Table rows = order.matrix == 0 ? Table() : isFull ? full : lower;
      if (order.first > 0) rows.push_back(first);
      if (order.second > 0) rows.push_back(second);
      WriteBytes(name, text);
      const auto kind = Kind(order.matrix, order.first, order.second, isFull);
      for (const int records : {0, static_cast<int>(rows.size())}) {
        document.SetExtern(kind, {}, records, 2, false);
        ASSERT_EQ(document.OnOpenDocument(name), 1) << text << host.LastMessage();
        EXPECT_EQ(Rows(), rows) << text;
      }
      EXPECT_FALSE(document.HoldsRawData());
      ASSERT_EQ(document.OnSaveDocument(name), 1);
      document.SetExtern(kind, {}, 0, 2, false);
      ASSERT_EQ(document.OnOpenDocument(name), 1);
      EXPECT_EQ(Rows(), rows) << text;
    }
  }
  EXPECT_TRUE(host.messages.empty());
}

TEST_F(MatrixText, FixedColumnsTakeARowALine) {
  WriteBytes(name, "(2F3.1)\n 15\n 2.  3\n  4 55\n");
  document.SetExtern(Kind(1, 2, 0, false), {}, 0, 2, false);
  ASSERT_EQ(document.OnOpenDocument(name), 1) << host.LastMessage();
  EXPECT_EQ(Rows(), (Table{{1.5, 0}, {2, 0.3}, {0.4, 5.5}}));
  EXPECT_EQ(view.GetRowHeading(1), "VAR002");
  EXPECT_EQ(view.GetRowHeading(2), "Mean");
  ASSERT_EQ(document.OnSaveDocument(name), 1);
  EXPECT_EQ(ReadBytes(name), "(2F3.1)\n1.5\n2.00.3\n0.45.5\n");
}

TEST_F(MatrixText, TellsOfNumbersThatAreLeft) {
  WriteBytes(name, "1 2\n2 3\n");
  document.SetExtern(Kind(1, 0, 0, false), {}, 0, 2, false);
  ASSERT_EQ(document.OnOpenDocument(name), 1);
  EXPECT_NE(host.LastMessage().find("holds more"), CString::npos);
}

TEST_F(MatrixText, StopsWhereNoPartIs) {
  WriteBytes(name, "1 2 3 9 9");
  document.SetExtern(Kind(1, 3, 0, false), {}, 0, 2, false);
  ASSERT_EQ(document.OnOpenDocument(name), 1);
  EXPECT_EQ(Rows(), (Table{{1, 0}, {2, 3}}));
}

TEST_F(MatrixText, RefusesWhatIsNotWhole) {
  const struct {
    const char* text;
    EXTERNDATA kind;
    const char* message;
  } cases[] = {{"1 2", Kind(1, 0, 0, false), "of row 2, which has 2 value(s), 1 are there"},
               {"1 2 3 4", Kind(1, 2, 0, false), "of row 3, which has 2 value(s), 1 are there"},
               {"1 2 3", Kind(0, 2, 3, false), "No part"},
               {"", Kind(1, 0, 0, true), "of row 1"}};
  for (const auto& test : cases) {
    WriteBytes(name, test.text);
    document.SetExtern(test.kind, {}, 0, 2, false);
    EXPECT_EQ(document.OnOpenDocument(name), 0);
    EXPECT_NE(host.LastMessage().find(test.message), CString::npos) << host.LastMessage();
  }
  Fill({{1, 2}, {2, 3}, {4, 5}});
  document.SetExternData(Kind(1, 0, 0, false));
  EXPECT_EQ(document.OnSaveDocument(name), 0);
  EXPECT_NE(host.LastMessage().find("rows"), CString::npos);
}

}  // namespace
