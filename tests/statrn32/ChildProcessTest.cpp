// What happens in a reader's own process stays there: faults, loops without end, memory without
// bounds.
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "statrn32/ChildProcess.h"
#include "statrn32/ChildReader.h"
#include "statrn32/StFiles.h"

using namespace statrn32;  // NOLINT: what is tested
using testing::HasSubstr;

namespace {

constexpr std::int64_t kMemory = std::int64_t{64} << 20;

TEST(ChildProcess, BytesArriveAndFaultsAreTold) {
  const struct {
    std::function<void(CPipeWriter*)> work;
    bool bytes;
    const char* end;
  } cases[] = {
      {[](CPipeWriter* out) { out->Write("ab", 2); }, true, ""},
      {[](CPipeWriter*) {}, false, ""},
      {[](CPipeWriter*) { std::raise(SIGSEGV); }, false, "stopped by a fault"},
      {[](CPipeWriter*) { throw 1; }, false, "stopped by a fault"},
      {[](CPipeWriter*) { throw std::bad_alloc(); }, false, "more memory"},
      {[](CPipeWriter*) {
         volatile bool goOn = true;
         while (goOn) continue;
       },
       false, "no end"},
      {[](CPipeWriter* out) {
         out->Write("ab", 2);
         std::raise(SIGBUS);
       },
       true, "stopped by a fault"},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    CChildProcess child;
    char two[2] = {};
    ASSERT_TRUE(child.Start(cases[i].work, kMemory, 1));
    EXPECT_EQ(child.Read(two, 2), cases[i].bytes) << i;
    if (cases[i].bytes) {
      EXPECT_EQ(std::string(two, 2), "ab");
    }
    char more = 0;
    EXPECT_FALSE(child.Read(&more, 1)) << i;
    EXPECT_THAT(child.End(), HasSubstr(cases[i].end)) << i;
  }
}

TEST(ChildProcess, AChildThatNobodyListensToEnds) {
  CChildProcess child;
  ASSERT_TRUE(child.Start(
      [](CPipeWriter* out) {
        while (out->Write("x", 1)) continue;
      },
      kMemory, 60));
  char byte = 0;
  ASSERT_TRUE(child.Read(&byte, 1));
  EXPECT_EQ(child.End(), "");
}

TEST(ChildProcess, FilesOfTheParentAreNotTheChilds) {
  const int mine = open("/dev/null", O_RDONLY);
  CChildProcess child;
  ASSERT_TRUE(child.Start(
      [mine](CPipeWriter* out) {
        const char closed = fcntl(mine, F_GETFD) < 0 || mine == 3 ? 1 : 0;
        out->Write(&closed, 1);
      },
      kMemory, 10));
  char closed = 0;
  ASSERT_TRUE(child.Read(&closed, 1));
  EXPECT_EQ(closed, 1);
  close(mine);
}

// A reader that goes wrong at one of its steps.
class CFaultyReader final : public CReader {
 public:
  enum STEP { AtOpen, AtDictionary, AtBlock, Texts, Never };
  explicit CFaultyReader(STEP step) : step_(step) {}

  bool Open(const std::string& name) override {
    if (step_ == AtOpen) std::abort();
    return name != "refuse" || Fail("refused");
  }
  bool ReadDictionary(DICTIONARY* out) override {
    if (step_ == AtDictionary) std::abort();
    VARIABLE variable;
    variable.name = "X";
    variable.type = ST_TYPE_STRING;
    variable.missing = {{-9, -1, "a", "b"}};
    out->variables.push_back(variable);
    return true;
  }
  std::string GuessedEncoding() const override { return block_.records > 0 ? "CP850" : ""; }
  const RECORD_BLOCK* NextBlock() override {
    if (block_.records > 0) {
      if (step_ == AtBlock) std::abort();
      return nullptr;
    }
    block_.Clear();
    block_.records = 1;
    block_.cells.resize(1);
    block_.status.resize(1);
    block_.cells[0].text = step_ == Texts ? 1000 : 1;
    block_.texts += std::string("text\0", 5);
    return &block_;
  }

 private:
  STEP step_;
  RECORD_BLOCK block_;
};

TEST(ChildReader, WhateverStepGoesWrongIsAnErrorThatNamesTheFile) {
  const struct {
    CFaultyReader::STEP step;
    int steps;  // that succeed: the opening, the dictionary, the block, the end
  } cases[] = {{CFaultyReader::AtOpen, 0},
               {CFaultyReader::AtDictionary, 1},
               {CFaultyReader::Texts, 2},
               {CFaultyReader::AtBlock, 3},
               {CFaultyReader::Never, 4}};
  for (const auto& c : cases) {
    const auto step = c.step;
    CChildReader reader([step] { return std::make_unique<CFaultyReader>(step); });
    DICTIONARY dictionary;
    int steps = 0;
    if (reader.Open("the file") && ++steps > 0 && reader.ReadDictionary(&dictionary)) {
      ++steps;
      const RECORD_BLOCK* const block = reader.NextBlock();
      if (block != nullptr) {
        ++steps;
        EXPECT_STREQ(block->texts.data() + block->cells[0].text, "text");
        EXPECT_EQ(reader.NextBlock(), nullptr);
        if (reader.Error().empty()) ++steps;
      }
    }
    EXPECT_EQ(steps, c.steps);
    EXPECT_THAT(reader.Error(), HasSubstr(c.steps == 4 ? "" : "the file: the file is damaged"));
  }
}

TEST(ChildReader, WhatTheReaderTellsArrives) {
  CChildReader reader([] { return std::make_unique<CFaultyReader>(CFaultyReader::Never); });
  DICTIONARY dictionary;
  ASSERT_TRUE(reader.Open("the file") && reader.ReadDictionary(&dictionary));
  ASSERT_EQ(dictionary.variables.size(), 1U);
  const VARIABLE& variable = dictionary.variables[0];
  ASSERT_EQ(variable.missing.size(), 1U);
  EXPECT_EQ(variable.missing[0].low, -9);
  EXPECT_EQ(variable.missing[0].high, -1);
  EXPECT_EQ(variable.missing[0].lowText + variable.missing[0].highText, "ab");
  EXPECT_EQ(reader.GuessedEncoding(), "");
  ASSERT_NE(reader.NextBlock(), nullptr);
  EXPECT_EQ(reader.GuessedEncoding(), "CP850");
}

TEST(ChildReader, InAChildWorksInPlace) {
  const pid_t here = getpid();
  // A child of the child would have another parent, and go wrong.
  const auto innermost = [here] {
    const bool inPlace = getppid() == here;
    return std::make_unique<CFaultyReader>(inPlace ? CFaultyReader::Never : CFaultyReader::AtOpen);
  };
  const auto inner = [innermost] { return std::make_unique<CChildReader>(innermost); };
  CChildReader reader(inner);
  DICTIONARY dictionary;
  ASSERT_TRUE(reader.Open("the file") && reader.ReadDictionary(&dictionary)) << reader.Error();
  EXPECT_EQ(dictionary.variables.size(), 1U);
  const RECORD_BLOCK* const block = reader.NextBlock();
  ASSERT_NE(block, nullptr);
  EXPECT_STREQ(block->texts.data() + block->cells[0].text, "text");
  EXPECT_EQ(reader.GuessedEncoding(), "CP850");
  EXPECT_EQ(reader.NextBlock(), nullptr);
  CChildReader refused(inner);
  EXPECT_FALSE(refused.Open("refuse"));
  EXPECT_EQ(refused.Error(), "refused");
}

TEST(ChildReader, TheReadersOwnErrorsArriveAsTheyAre) {
  CChildReader reader([] { return std::make_unique<CFaultyReader>(CFaultyReader::Never); });
  EXPECT_FALSE(reader.Open("refuse"));
  EXPECT_EQ(reader.Error(), "refused");
}

}  // namespace
