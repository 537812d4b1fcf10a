#include <cstdlib>
#include <random>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/EngineData.h"
#include "engine/ThreadRanks.h"

namespace {

using testing::HasSubstr;
using testing::Not;

class RanksTest : public EngineTest {
 protected:
  void SetUp() override {
    TORVIKSTRUCT data = Describe({"x1", "x2", "x3", "o1", "o2", "o3", "rare"});
    for (const std::size_t ordinal : {3, 4, 5}) data.variable[ordinal].type = kOrdinal;
    std::mt19937 random(5);
    std::normal_distribution<double> normal;
    std::vector<std::vector<double>> rows;
    for (int i = 0; i < 120; ++i) {
      const double common = normal(random);
      std::vector<double> row;
      for (int j = 0; j < 3; ++j) row.push_back(common + normal(random));
      for (int j = 0; j < 3; ++j) {
        row.push_back(std::floor(std::clamp(common + normal(random), -1.9, 1.9) + 2));
      }
      row.push_back(i == 9 ? 1 : 0);
      rows.push_back(std::move(row));
    }
    Data(data, rows);
  }

  void WriteSyntax(const std::string& lines) {
    WriteBytes(folder / "DATA.TRK", "SY='" + (folder / "DATA.VSF") + "'\n" + lines + "\n");
  }

  // The output and every file of the run.
  std::string Everything() const {
    std::string all = Output();
    for (const char* name :
         {"bm", "me", "sm", "ac", "ra", "ra_1.vsf", "ra_2.vsf", "ra_3.vsf", "ra_4.vsf"}) {
      if (!std::filesystem::exists(folder / name)) continue;
      all += "\n" + std::string(name) + "\n" + ReadBytes(folder / name);
    }
    return all;
  }
  void Clear() const {
    for (const char* name :
         {"bm", "me", "sm", "ac", "ra", "ra_1.vsf", "ra_2.vsf", "ra_3.vsf", "ra_4.vsf", "DATA.OUT"})
      std::filesystem::remove(folder / name);
  }

  std::string Lines(const char* lines) const {
    std::string text = lines;
    for (std::size_t at = 0; (at = text.find('@')) != std::string::npos;)
      text.replace(at, 1, folder / "");
    return text;
  }

  // Runs mpirun with these words behind its own options; the exit code. MPI keeps memory at its
  // end: the sanitizer looks for ours in runs without it.
  int MpiRun(const std::string& words) const {
    return std::system(
        ("ASAN_OPTIONS=detect_leaks=0 timeout 60 mpirun --oversubscribe --allow-run-as-root " +
         words + " 2>" + (folder / "stderr"))
            .c_str());
  }
};

// '@' stands for the test's folder. Two end with an error, one of them in a repetition.
const char* const kRuns[] = {
    "SE x1-x3 o1-o3\nOU MA=KM SM=@sm PV IX=4",
    "SE x1-x3 o1-o3\nOU MA=KM BS=50 BM=@bm ME=@me IX=4",
    "SE x1 rare\nOU MA=KM BS=40 BM=@bm IX=4",
    "SE x1-x3\nFA NF=1\nRG x1 ON x2 x3\nOU BS=41 IX=4",
    "NE u = NORMAL()\nSE x1 u\nCO u\nOU MA=CM SM=@sm ME=@me RP=5 IX=9",
    "NE u = NORMAL()\nSE x1 u\nOU MA=CM RA=@ra SM=@sm RP=3 IX=9",
    "SE x1 o1\nOU MA=KM BS=10 BM=@bm RP=4 IX=2",
    "NE u = NORMAL() + rare * 0\nRC x1 OLD=LO-HI NEW=3\nRG x1 ON x2\nOU RP=3 IX=1",
    "NE y = SQRT(x1)\nMC y x2 x3 IT=9 RP=4\nRG y ON x2\nOU RA=@ra.vsf IX=6",
    "NE y = SQRT(x1)\nMC y x2 o1 o2 IT=8 RP=2\nOU RA=@ra.vsf IX=6",
    "SE x1-x3 o1 o2\nCB x1\nCA x2\nOU MA=CM SM=@sm AC=@ac IX=4",
    "SE x1 rare\nOU BS=0",
};

TEST_F(RanksTest, AnyNumberGivesTheSameBytes) {
  for (const char* const run : kRuns) {
    WriteSyntax(Lines(run));
    Clear();
    const auto single = RunEngine(folder / "DATA.TRK", folder / "DATA.OUT", {2, nullptr, nullptr});
    const bool isError = std::string_view(run).find("BS=0") != std::string_view::npos ||
                         std::string_view(run).find("NEW=3") != std::string_view::npos;
    EXPECT_EQ(single, isError ? ERUNRESULT::Failed : ERUNRESULT::Done) << Output();
    const std::string expected = Everything();
    for (const int count : {2, 3}) {
      Clear();
      const std::size_t before = folder.FileCount();
      CThreadGroup group(count);
      group.Run([&](CRanks& ranks) {
        EXPECT_EQ(
            RunEngine(folder / "DATA.TRK", folder / "DATA.OUT", {1, nullptr, nullptr, &ranks}),
            single)
            << run;
      });
      EXPECT_EQ(Everything(), expected) << run;
      EXPECT_GT(folder.FileCount(), before);
    }
  }
}

TEST_F(RanksTest, OneThatEndsEndsAll) {
  WriteSyntax(Lines("SE x1 o1\nOU MA=KM BS=50 BM=@bm IX=4"));
  WriteBytes(folder / "OTHER.TRK", "SY='" + (folder / "none.VSF") + "'\nOU\n");
  CThreadGroup group(3);
  group.Run([&](CRanks& ranks) {
    const std::string syntax = folder / (ranks.Rank() == 1 ? "OTHER.TRK" : "DATA.TRK");
    EXPECT_EQ(RunEngine(syntax, folder / "DATA.OUT", {1, nullptr, nullptr, &ranks}),
              ERUNRESULT::Failed);
  });
  EXPECT_THAT(Output(), HasSubstr("another one ended"));
  EXPECT_FALSE(std::filesystem::exists(folder / "bm"));
}

// The same with the real launcher, where it is installed and the engine was built for it.
class MpiTest : public RanksTest {
 protected:
  void SetUp() override {
    if (std::system("command -v mpirun >/dev/null") != 0) GTEST_SKIP() << "mpirun is not installed";
    if (std::system(VEX_TORVIK " --version | grep -q '(MPI)'") != 0) {
      GTEST_SKIP() << "the engine was built without MPI";
    }
    RanksTest::SetUp();
  }
  std::string Engine(const char* syntax = "DATA.TRK") const {
    return std::string(VEX_TORVIK) + " " + (folder / syntax) + " " + (folder / "DATA.OUT");
  }
};

TEST_F(MpiTest, AnyNumberGivesTheSameBytes) {
  for (const std::size_t run : {1U, 4U, 7U, 8U, 10U}) {
    WriteSyntax(Lines(kRuns[run]));
    Clear();
    const bool done = RunEngine(folder / "DATA.TRK", folder / "DATA.OUT", {1, nullptr, nullptr}) ==
                      ERUNRESULT::Done;
    const std::string expected = Everything();
    for (const int count : {1, 2, 3}) {
      Clear();
      EXPECT_EQ(MpiRun("-n " + std::to_string(count) + " " + Engine()) == 0, done)
          << ReadBytes(folder / "stderr");
      EXPECT_EQ(Everything(), expected) << kRuns[run] << ", ranks: " << count;
    }
  }
}

TEST_F(MpiTest, AFailureOfOneIsTold) {
  WriteSyntax(Lines("SE x1 o1\nOU MA=KM BS=50 BM=@bm IX=4"));
  WriteBytes(folder / "OTHER.TRK", "SY='" + (folder / "none.VSF") + "'\nOU\n");
  EXPECT_NE(MpiRun("-n 1 " + Engine() + " : -n 1 " + Engine("OTHER.TRK")), 0);
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("process 2 of 2 failed"));
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("none.VSF"));
  EXPECT_FALSE(std::filesystem::exists(folder / "bm"));
}

TEST_F(MpiTest, StoppingTheLauncherOrKillingARankLeavesNoHalfFiles) {
  for (const char* const kill : {"kill -TERM $(cat @launcher)", "kill -KILL $(cat @second)"}) {
    WriteSyntax(Lines("SE o1-o3\nOU MA=KM BS=1500000 IX=4 BM=@bm"));
    Clear();
    std::filesystem::remove(folder / "launcher");
    std::filesystem::remove(folder / "second");
    std::filesystem::remove(folder / "stderr");
    const std::size_t before = folder.FileCount();
    // Each of the two writes its number down before it becomes the program. What tells its progress
    // is at work.
    const std::string untilAtWork =
        "while kill -0 $own && ! grep -q progress " + (folder / "stderr") + "; do sleep .1; done; ";
    // On a busy machine the processes need more than the second that the launcher grants them
    // between its SIGTERM and its SIGKILL.
    const std::string script =
        "sh -c 'echo $$ >" + (folder / "launcher") +
        "; exec timeout 60 mpirun --mca odls_base_sigkill_timeout 5 --oversubscribe "
        "--allow-run-as-root -n 1 " +
        Engine() + " : -n 1 sh -c \"echo \\$\\$ >" + (folder / "second") + "; exec " + Engine() +
        "\"' 2>" + (folder / "stderr") + " & own=$!; " + untilAtWork + Lines(kill) +
        "; wait $own; true";
    ASSERT_EQ(std::system(script.c_str()), 0);
    EXPECT_THAT(UnwrappedOutput(), HasSubstr("The run was interrupted")) << kill;
    EXPECT_FALSE(std::filesystem::exists(folder / "bm"));
    EXPECT_EQ(folder.FileCount(), before + 4);  // the output, two numbers, standard error
  }
}

}  // namespace
