#include <cstring>

#include "datadoc/DocumentFixture.h"
#include "datadoc/VsfReader.h"
#include "support/VsfBytes.h"

namespace {

std::string SmallFile() {
  return Bytes()
      .Add(VsfHead("VEXC16 DATA SYSTEM FILE", ' ', 2, 2))
      .Add(VsfVariable("first", 16, 'l'))
      .Add(VsfVariable("second", 16, 'l'))
      .Reals({1, 2, 3, 4})
      .Get();
}

std::string WithInt(std::string bytes, std::size_t offset, std::int32_t value) {
  std::memcpy(bytes.data() + offset, &value, sizeof value);
  return bytes;
}

constexpr std::size_t kRecords = 64;
constexpr std::size_t kVariables = 68;
constexpr std::size_t kCells = 128 + 2 * 276;

}  // namespace

using VsfDamage = DocumentTest;

TEST_F(VsfDamage, EveryTruncationIsReadAsFarAsItGoes) {
  const std::string whole = SmallFile();
  const CString name = folder / "cut.VSF";
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    WriteBytes(name, whole.substr(0, size));
    host.messages.clear();
    const int opened = document.OnOpenDbmsDocument(name);
    ASSERT_EQ(opened, size >= 23 ? 1 : 0) << size;
    if (!opened) continue;
    EXPECT_TRUE(host.messages.empty()) << size;
    const TORVIKSTRUCT& data = *document.GetTorvik();
    ASSERT_EQ(data.variables, size >= 72 ? 2 : 0) << size;
    if (size >= 128 + 16) {
      EXPECT_EQ(data.variable[0].name, "first") << size;
    }
    const std::size_t cells = size > kCells ? (size - kCells) / 8 : 0;
    const std::size_t records = size > kCells ? (size - kCells + 15) / 16 : 0;
    ASSERT_EQ(static_cast<std::size_t>(data.records), records) << size;
    const auto rows = Rows();
    for (std::size_t i = 0; i < records * 2; ++i) {
      const double expected = i < cells ? static_cast<double>(i + 1) : -999999.0;
      ASSERT_EQ(rows[i / 2][i % 2], expected) << size << " cell " << i;
    }
  }
}

TEST_F(VsfDamage, LabelsEndAtAShortRead) {
  const std::size_t labels = 128 + 16 + 80;
  WriteBytes(folder / "labels.VSF",
             WithInt(SmallFile(), kVariables, 1).substr(0, labels + 8 * 3 + 5));
  ASSERT_EQ(document.OnOpenDbmsDocument(folder / "labels.VSF"), 1);
  const TORVIKSTRUCT& data = *document.GetTorvik();
  EXPECT_EQ(data.categoryLabels[2], "llllllll");
  EXPECT_EQ(data.categoryLabels[3], "");
}

TEST_F(VsfDamage, CountsAreNotTrusted) {
  const std::string whole = SmallFile();
  const struct {
    const char* what;
    std::string bytes;
    bool opens;
    std::int32_t records;
    std::int32_t variables;
  } cases[] = {
      {"no records", WithInt(whole, kRecords, 0), true, 0, 2},
      {"an import that was broken off", WithInt(whole, kRecords, -1), true, 0, 2},
      {"fewer records than there are", WithInt(whole, kRecords, 1), true, 1, 2},
      {"more records than there are", WithInt(whole, kRecords, 1000000000), true, 2, 2},
      {"negative variables", WithInt(whole, kVariables, -1), false, 0, 0},
      {"absurd variables", WithInt(whole, kVariables, 2000000000), false, 0, 0},
      {"just above what is trusted", WithInt(whole, kVariables, 32768), false, 0, 0},
      {"trusted although not there", WithInt(whole, kVariables, 32767), true, 0, 32767},
      {"no variables", WithInt(whole, kVariables, 0), true, 0, 0},
  };
  for (const auto& c : cases) {
    WriteBytes(folder / "count.VSF", c.bytes);
    ASSERT_EQ(document.OnOpenDbmsDocument(folder / "count.VSF"), c.opens ? 1 : 0) << c.what;
    if (!c.opens) {
      EXPECT_EQ(host.LastMessage(), "The file is not a correct VEXMOR data system file!") << c.what;
      EXPECT_EQ(document.GetTorvik()->format, kNoFormat) << c.what;
      continue;
    }
    EXPECT_EQ(document.GetRecnum(), c.records) << c.what;
    EXPECT_EQ(document.GetVarnum(), c.variables) << c.what;
  }
}

TEST_F(VsfDamage, CategoryCountsAreClamped) {
  for (const auto& [stored, read] : {std::pair{-4, 0}, {16, 15}, {15, 15}, {2147483647, 15}}) {
    WriteBytes(folder / "categories.VSF", WithInt(SmallFile(), 128 + 16 + 76, stored));
    ASSERT_EQ(document.OnOpenDbmsDocument(folder / "categories.VSF"), 1);
    EXPECT_EQ(document.GetTorvik()->variable[0].categories, read);
  }
}

TEST_F(VsfDamage, ARefusedFileLeavesTheDataAsTheyWere) {
  Fill({{1, 2}, {3, 4}});
  WriteBytes(folder / "text.VSF", "not a data file at all, but long enough to hold a header word");
  WriteBytes(folder / "negative.VSF", WithInt(SmallFile(), kVariables, -7));
  const struct {
    CString name;
    const char* message;
  } cases[] = {{folder / "absent.VSF", "The file does not exist!"},
               {folder / "", "The file does not exist!"},  // a folder
               {folder / "text.VSF", "The file is not a correct VEXMOR data system file!"},
               {folder / "negative.VSF", "The file is not a correct VEXMOR data system file!"}};
  for (const auto& c : cases) {
    EXPECT_EQ(document.OnOpenDbmsDocument(c.name), 0) << c.name;
    EXPECT_EQ(host.LastMessage(), c.message) << c.name;
    EXPECT_EQ(document.GetVarnum(), 2);
    EXPECT_EQ(Rows(), (std::vector<std::vector<double>>{{1, 2}, {3, 4}}));
  }
}

TEST_F(VsfDamage, IsToldOnTheStatusBarOnly) {
  const std::string whole = SmallFile();
  WriteBytes(folder / "short.VSF", whole.substr(0, whole.size() - 1));
  ASSERT_EQ(document.OnOpenDbmsDocument(folder / "short.VSF"), 1);
  EXPECT_TRUE(host.messages.empty());
  ASSERT_EQ(host.statusTexts.size(), 1U);
}
