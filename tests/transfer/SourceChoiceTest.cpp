// What a foreign file leaves open, and what becomes of the answers.
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/Recorder.h"
#include "support/TempFolder.h"
#include "transfer/DataPort.h"
#include "transfer/SourceChoice.h"

namespace {

constexpr int kDbf = 6;

// A table of dBASE III with one field and one record: "K", a byte, "ln". `codePage` is 0 where the
// file does not name its encoding.
std::string MakeTable(const std::string& name, char codePage, char byte) {
  std::string bytes(32, '\0');
  bytes[0] = 3, bytes[1] = 100, bytes[2] = 1, bytes[3] = 1;
  bytes[4] = 1, bytes[8] = 65, bytes[10] = 6, bytes[29] = codePage;
  std::string field(32, '\0');
  field.replace(0, 4, "TOWN");
  field[11] = 'C', field[16] = 5;
  std::ofstream(name, std::ios::binary) << bytes << field << "\r K" << byte << "ln ";
  return name;
}

std::size_t EncodingCalled(const std::string& name) {
  const auto rows = STUtils::ImportEncodings();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].name == name) return i;
  }
  return 0;
}

TEST(SourceChoice, TheEncodingIsAskedForWhereTheFileDoesNotTellIt) {
  TempFolder folder;
  const struct {
    char codePage;
    char byte;
    bool asks;
  } cases[] = {{0, '\x94', true}, {0, 'o', false}, {2, '\x94', false}};
  for (const auto& c : cases) {
    const CSourceChoice choice(MakeTable(folder / "t.dbf", c.codePage, c.byte), kDbf);
    EXPECT_EQ(choice.AsksForEncoding(), c.asks);
    EXPECT_EQ(choice.AsksForAnything(), c.asks);
  }
  EXPECT_FALSE(CSourceChoice(folder / "none.dbf", kDbf).AsksForAnything());
}

TEST(SourceChoice, SamplesReadAsChosen) {
  TempFolder folder;
  CSourceChoice choice(MakeTable(folder / "t.dbf", 0, '\x94'), kDbf);
  choice.encoding = EncodingCalled("CP850");
  EXPECT_THAT(choice.Sample(), testing::ElementsAre("Köln"));
  choice.encoding = EncodingCalled("CP1251");
  EXPECT_THAT(choice.Sample(), testing::ElementsAre("K”ln"));
}

TEST(SourceChoice, AConnectionFileAsksForThePassword) {
  TempFolder folder;
  const std::string name = folder / "t.sql";
  std::ofstream(name) << "[ODBC]\nDRIVER=none\n";
  const CSourceChoice choice(name, 28);
  EXPECT_TRUE(choice.AsksForPassword());
  EXPECT_TRUE(choice.Tables().empty());
}

TEST(SourceChoice, AnImportThatIsGivenUpLeavesNothing) {
  TempFolder folder;
  CRecorder host;
  std::string source = MakeTable(folder / "t.dbf", 0, '\x94');
  std::string target = folder / "t.VSF";
  for (const bool chosen : {false, true}) {
    CDataPort port(nullptr);
    int asked = 0;
    port.SetSourceChooser([&](CSourceChoice& choice) {
      ++asked;
      choice.encoding = EncodingCalled("CP850");
      return chosen;
    });
    int type = kDbf;
    const auto result = port.Import(source, type, false, true, target);
    EXPECT_EQ(result == STUtils::eOK, chosen);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(std::filesystem::exists(target), chosen);
  }
}

}  // namespace
