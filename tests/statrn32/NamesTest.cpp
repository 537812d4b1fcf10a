#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "statrn32/Names.h"
#include "statrn32/SasFiles.h"
#include "statrn32/SpssFiles.h"
#include "statrn32/StataFiles.h"

using namespace statrn32;  // NOLINT: the tested names
using testing::ElementsAre;

namespace {

std::vector<std::string> Legal(const NAME_RULES& rules, std::vector<std::string> names) {
  MakeLegalNames(rules, &names);
  return names;
}

TEST(Names, FollowTheRulesOfEachFormat) {
  const struct {
    const char* name;
    const char* sav;
    const char* por;
    const char* dta;
    const char* transport;
  } cases[] = {
      {"age", "age", "AGE", "age", "AGE"},
      {"Größe", "Größe", "GROSE", "Grose", "GROSE"},
      {"", "VAR", "VAR", "VAR", "VAR"},
      {"2nd", "V2nd", "V2ND", "V2nd", "V2ND"},
      {"_x", "V_x", "V_X", "_x", "_X"},
      {"a b-c", "a_b_c", "A_B_C", "a_b_c", "A_B_C"},
      {"v.1", "v.1", "V.1", "v_1", "V_1"},
      {"end.", "end", "END", "end_", "END_"},
      {"WITH", "WITH_", "WITH_", "WITH", "WITH"},
      {"with", "with_", "WITH_", "with_", "WITH"},
      {"str12", "str12", "STR12", "str12_", "STR12"},
      {"strategy", "strategy", "STRATEGY", "strategy", "STRATEGY"},
      {"_all", "V_all", "V_ALL", "_all_", "_ALL"},
      {"_N_", "V_N_", "V_N_", "_N_", "_N__"},
      {"temperature", "temperature", "TEMPERAT", "temperature", "TEMPERAT"},
      {"日本", "日本", "V__", "__", "__"},
      {"\xe4rger", "ärger", "ARGER", "arger", "ARGER"},
  };
  for (const auto& c : cases) {
    EXPECT_THAT(Legal(kSavNames, {c.name}), ElementsAre(c.sav)) << c.name;
    EXPECT_THAT(Legal(kPorNames, {c.name}), ElementsAre(c.por)) << c.name;
    EXPECT_THAT(Legal(kDtaNames, {c.name}), ElementsAre(c.dta)) << c.name;
    EXPECT_THAT(Legal(kTransportNames, {c.name}), ElementsAre(c.transport)) << c.name;
  }
}

TEST(Names, AreMadeDifferentFromEachOther) {
  EXPECT_THAT(Legal(kSavNames, {"a", "A", "a", "a_2"}), ElementsAre("a", "A_3", "a_4", "a_2"));
  EXPECT_THAT(Legal(kDtaNames, {"a", "A", "a"}), ElementsAre("a", "A", "a_2"));
  EXPECT_THAT(Legal(kTransportNames, {"LONGNAME1", "LONGNAME2", "LONGNAME"}),
              ElementsAre("LONGNAM2", "LONGNAM3", "LONGNAME"));
}

TEST(Names, ManyEqualOnesStayWithinTheLength) {
  std::vector<std::string> names(1200, "temperature");
  names = Legal(kPorNames, names);
  for (const std::string& name : names) ASSERT_LE(name.size(), 8U);
  std::sort(names.begin(), names.end());
  EXPECT_EQ(std::unique(names.begin(), names.end()), names.end());
}

TEST(Names, ALongNameIsCutBetweenCharacters) {
  std::string name;
  for (int i = 0; i < 40; ++i) name += "ö";
  EXPECT_EQ(Legal(kSavNames, {name})[0].size(), 64U);
  name = std::string("a").append(name);
  EXPECT_EQ(Legal(kSavNames, {name})[0].size(), 63U);
}

}  // namespace
