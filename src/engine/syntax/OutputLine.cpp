#include "engine/syntax/OutputLine.h"

#include <array>
#include <charconv>
#include <limits>
#include <string_view>

#include "engine/syntax/Words.h"
#include "host/Text.h"

namespace {

struct FlagKeyword {
  std::string_view word;
  bool OUTPUTLINE::*flag;
  bool value;
};
constexpr FlagKeyword kFlags[] = {{"PA", &OUTPUTLINE::printCovariances, true},
                                  {"PV", &OUTPUTLINE::printVariances, true},
                                  {"PK", &OUTPUTLINE::pk, true},
                                  {"WP", &OUTPUTLINE::wide, true},
                                  {"BT", &OUTPUTLINE::bivariateTables, true},
                                  {"XT", &OUTPUTLINE::bivariateTests, false},
                                  {"XM", &OUTPUTLINE::multivariateTests, false}};

struct FileKeyword {
  std::string_view key;
  CString OUTPUTLINE::*file;
};
constexpr FileKeyword kFiles[] = {
    {"SM=", &OUTPUTLINE::momentFile},       {"RA=", &OUTPUTLINE::dataFile},
    {"ME=", &OUTPUTLINE::meansFile},        {"SD=", &OUTPUTLINE::deviationsFile},
    {"AC=", &OUTPUTLINE::covarianceFile},   {"AV=", &OUTPUTLINE::varianceFile},
    {"BM=", &OUTPUTLINE::sampleMomentFile}, {"TH=", &OUTPUTLINE::thresholdFile}};

constexpr std::int64_t kMostRepetitions = std::numeric_limits<std::int32_t>::max();

struct NumberKeyword {
  std::string_view key;
  std::int64_t OUTPUTLINE::*number;
  std::int64_t low;
  std::int64_t high;
};
constexpr NumberKeyword kNumbers[] = {{"WI=", &OUTPUTLINE::width, 1, 32},
                                      {"ND=", &OUTPUTLINE::decimals, 0, 8},
                                      {"RP=", &OUTPUTLINE::repetitions, 1, kMostRepetitions},
                                      {"BS=", &OUTPUTLINE::samples, 1, kMostRepetitions},
                                      {"SF=", &OUTPUTLINE::sampleFraction, 1, 100}};

struct MomentKeyword {
  std::string_view word;
  MOMENTS moments;
};
constexpr MomentKeyword kMoments[] = {{"CM", MOMENTS::Covariances},
                                      {"KM", MOMENTS::Correlations},
                                      {"AM", MOMENTS::Augmented},
                                      {"MM", MOMENTS::AboutZero}};

constexpr std::string_view kBlanks = " \t";

std::string_view Word(std::string_view text) {
  return text.substr(0, text.find_first_of(kBlanks));
}

bool IsKeyword(std::string_view word) {
  for (const FlagKeyword& flag : kFlags) {
    if (EqualIgnoringCase(word, flag.word)) return true;
  }
  for (const FileKeyword& file : kFiles) {
    if (BeginsWith(word, file.key)) return true;
  }
  for (const NumberKeyword& number : kNumbers) {
    if (BeginsWith(word, number.key)) return true;
  }
  return BeginsWith(word, "MA=") || BeginsWith(word, "IX=");
}

// One pass over the line, from the front.
class COutputLineReader {
 public:
  COutputLineReader(const SyntaxLine& line, OUTPUTLINE& output, FAULT& fault)
      : line_(line), rest_(Trimmed(line.text)), output_(output), fault_(fault) {
    output_ = OUTPUTLINE();
    output_.line = line;
    rest_.remove_prefix(FirstWord(rest_).size());
  }

  bool Read() {
    for (rest_ = Trimmed(rest_); !rest_.empty(); rest_ = Trimmed(rest_)) {
      if (!(ReadFlag() || ReadFile() || ReadNumber() || ReadMoments() || ReadSeed())) {
        return Fail(
            "expected a keyword of the output line (MA SM RA WI ND ME SD IX RP AC PA AV PV "
            "PK WP BT XT XM BS SF BM TH), found " +
            Shown(Word(rest_)));
      }
      if (fault_) return false;
    }
    return true;
  }

 private:
  // Always false.
  bool Fail(CString cause) {
    fault_ = {line_.number, CString(Trimmed(line_.text)), std::move(cause), {}};
    return false;
  }

  std::string_view TakeValue(std::string_view key) {
    const std::string_view value = Word(rest_.substr(key.size()));
    rest_.remove_prefix(key.size() + value.size());
    return value;
  }

  bool ReadFlag() {
    const std::string_view word = Word(rest_);
    for (const FlagKeyword& flag : kFlags) {
      if (!EqualIgnoringCase(word, flag.word)) continue;
      output_.*flag.flag = flag.value;
      rest_.remove_prefix(word.size());
      return true;
    }
    return false;
  }

  // A name runs to the next blank that is followed by a keyword, or to the end.
  std::size_t NameEnd(std::size_t begin) const {
    for (std::size_t blank = rest_.find_first_of(kBlanks, begin); blank != std::string_view::npos;
         blank = rest_.find_first_of(kBlanks, blank + 1)) {
      if (IsKeyword(Word(rest_.substr(blank + 1)))) return blank;
    }
    return rest_.size();
  }

  bool ReadFile() {
    for (const FileKeyword& file : kFiles) {
      if (!BeginsWith(rest_, file.key)) continue;
      const std::size_t end = NameEnd(file.key.size());
      const std::string_view name = Trimmed(rest_.substr(file.key.size(), end - file.key.size()));
      rest_.remove_prefix(end);
      if (name.empty()) Fail("expected a file name after " + CString(file.key) + ", found none");
      output_.*file.file = name;
      return true;
    }
    return false;
  }

  void ReadWhole(std::string_view key, std::int64_t low, std::int64_t high, std::int64_t& number) {
    const std::string_view text = TakeValue(key);
    std::int64_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || value < low ||
        value > high) {
      Fail("expected a whole number from " + std::to_string(low) + " to " + std::to_string(high) +
           " after " + CString(key) + ", found " + Shown(text));
      fault_.remedy = "Give " + CString(key) + " such a number, or leave it out.";
      return;
    }
    number = value;
  }

  bool ReadNumber() {
    for (const NumberKeyword& number : kNumbers) {
      if (!BeginsWith(rest_, number.key)) continue;
      ReadWhole(number.key, number.low, number.high, output_.*number.number);
      output_.fieldsGiven = output_.fieldsGiven || number.key == "WI=" || number.key == "ND=";
      return true;
    }
    return false;
  }

  bool ReadMoments() {
    constexpr std::string_view kKey = "MA=";
    if (!BeginsWith(rest_, kKey)) return false;
    const std::string_view word = TakeValue(kKey);
    for (const MomentKeyword& moments : kMoments) {
      if (!EqualIgnoringCase(word, moments.word)) continue;
      output_.moments = moments.moments;
      return true;
    }
    Fail("expected CM, KM, AM or MM after MA=, found " + Shown(word));
    return true;
  }

  bool ReadSeed() {
    constexpr std::string_view kKey = "IX=";
    if (!BeginsWith(rest_, kKey)) return false;
    std::int64_t seed = 0;
    ReadWhole(kKey, std::numeric_limits<std::int32_t>::min(),
              std::numeric_limits<std::int32_t>::max(), seed);
    output_.seed = seed;
    return true;
  }

  const SyntaxLine& line_;
  std::string_view rest_;
  OUTPUTLINE& output_;
  FAULT& fault_;
};

}  // namespace

bool IsOutputKeyword(std::string_view word) {
  return IsKeyword(word);
}

bool ParseOutputLine(const SyntaxLine& line, OUTPUTLINE& output, FAULT& fault) {
  fault = FAULT();
  return COutputLineReader(line, output, fault).Read();
}
