#include <charconv>
#include <cmath>
#include <limits>

#include "host/Text.h"
#include "statrn32/DumpFiles.h"
#include "statrn32/LineReader.h"

namespace statrn32 {
namespace {

enum class MODE { Unknown, Numbers, Whole, Texts, Parts, Structure };

constexpr struct {
  std::string_view name;
  MODE mode;
} kModes[] = {
    {"numeric", MODE::Numbers},     {"double", MODE::Numbers},   {"single", MODE::Numbers},
    {"integer", MODE::Whole},       {"logical", MODE::Whole},    {"character", MODE::Texts},
    {"name", MODE::Texts},          {"missing", MODE::Texts},    {"list", MODE::Parts},
    {"structure", MODE::Structure}, {"NULL", MODE::Parts},       {"call", MODE::Parts},
    {"function", MODE::Parts},      {"expression", MODE::Parts},
};

MODE ModeOf(std::string_view name) {
  for (const auto& mode : kModes) {
    if (mode.name == name) return mode.mode;
  }
  return MODE::Unknown;
}

bool ParseCount(std::string_view text, std::int64_t* count) {
  const auto [stop, failed] = std::from_chars(text.data(), text.data() + text.size(), *count);
  return failed == std::errc() && stop == text.data() + text.size() && *count >= 0;
}

// "N" and "NA" are missing, "T" and "F" are truth values.
bool ParseElement(std::string_view text, double* number) {
  text = Trimmed(text);
  *number = std::numeric_limits<double>::quiet_NaN();
  if (text == "N" || text == "NA" || text == "NaN") return true;
  const bool yes = text == "T" || text == "TRUE";
  if (yes || text == "F" || text == "FALSE") {
    *number = yes ? 1 : 0;
    return true;
  }
  const auto [stop, failed] = std::from_chars(text.data(), text.data() + text.size(), *number);
  return failed == std::errc() && stop == text.data() + text.size();
}

class CDumpParser {
 public:
  CDumpParser(CInputFile* file, CTextDecoder* decoder, DUMP_OBJECTS* out, std::string* error)
      : lines_(file), decoder_(decoder), out_(out), error_(error) {}

  bool Parse();

 private:
  static constexpr int kMostDepth = 32;
  bool Fail(const std::string& what);
  bool Next(const char* what);
  // What stands behind the name, which is the line at hand.
  bool ParseObject(DUMP_NODE* node, int depth);
  bool ParseNumbers(std::int64_t count, DUMP_NODE* node);
  bool ParseTexts(std::int64_t count, DUMP_NODE* node);

  CLineReader lines_;
  CTextDecoder* decoder_;
  DUMP_OBJECTS* out_;
  std::string* error_;
  std::string line_;
};

bool CDumpParser::Fail(const std::string& what) {
  *error_ = "line " + std::to_string(lines_.Number()) + ": " + what;
  return false;
}

bool CDumpParser::Next(const char* what) {
  return lines_.Next(&line_) || Fail(std::string("the file ends where ") + what + " was expected");
}

bool CDumpParser::Parse() {
  while (lines_.Next(&line_)) {
    if (Trimmed(line_).empty()) continue;
    if (!ParseObject(&out_->objects.emplace_back(), 0)) return false;
  }
  return true;
}

bool CDumpParser::ParseObject(DUMP_NODE* node, int depth) {
  std::int64_t count = 0;
  node->name = decoder_->Decode(line_);
  if (depth > kMostDepth) return Fail("more than 32 lists lie in each other");
  if (!Next("a mode")) return false;
  const MODE mode = ModeOf(Trimmed(line_));
  if (mode == MODE::Unknown) return Fail("the mode \"" + line_ + "\" is not read");
  if (!Next("a number of elements")) return false;
  if (!ParseCount(Trimmed(line_), &count)) return Fail("\"" + line_ + "\" is no count");
  node->structure = mode == MODE::Structure;
  node->whole = mode == MODE::Whole;
  if (mode == MODE::Texts) return ParseTexts(count, node);
  if (mode == MODE::Numbers || mode == MODE::Whole) return ParseNumbers(count, node);
  for (std::int64_t i = 0; i < count; ++i) {
    if (!Next("a part's name")) return false;
    if (!ParseObject(&node->parts.emplace_back(), depth + 1)) return false;
  }
  return true;
}

bool CDumpParser::ParseNumbers(std::int64_t count, DUMP_NODE* node) {
  node->kind = DUMP_NODE::Numbers;
  for (std::int64_t i = 0; i < count; ++i) {
    double number = 0;
    if (!Next("a number")) return false;
    if (!ParseElement(line_, &number)) return Fail("\"" + line_ + "\" is no number");
    node->numbers.push_back(number);
  }
  return true;
}

bool CDumpParser::ParseTexts(std::int64_t count, DUMP_NODE* node) {
  node->kind = DUMP_NODE::Texts;
  for (std::int64_t i = 0; i < count; ++i) {
    if (!Next("a text")) return false;
    if (line_ == "N") {
      node->texts.push_back(0);
      continue;
    }
    node->texts.push_back(out_->texts.size());
    decoder_->Append(line_, &out_->texts);
    out_->texts += '\0';
  }
  return true;
}

}  // namespace

std::size_t DUMP_NODE::Size() const {
  return kind == Numbers ? numbers.size() : kind == Texts ? texts.size() : parts.size();
}

const DUMP_NODE* DUMP_NODE::Find(std::string_view part) const {
  for (const DUMP_NODE& each : parts) {
    if (each.name == part) return &each;
  }
  return nullptr;
}

std::string_view DUMP_OBJECTS::TextOf(const DUMP_NODE& node, std::size_t index) const {
  if (node.kind != DUMP_NODE::Texts || index >= node.texts.size()) return {};
  return texts.data() + node.texts[index];
}

bool ParseDump(CInputFile* file, CTextDecoder* decoder, DUMP_OBJECTS* out, std::string* error) {
  return CDumpParser(file, decoder, out, error).Parse();
}

// A name, a mode, a count.
bool IsDump(std::string_view first) {
  const auto takeLine = [&first] {
    const std::size_t end = first.find('\n');
    const std::string_view line = first.substr(0, end);
    first = end == std::string_view::npos ? std::string_view() : first.substr(end + 1);
    return Trimmed(line);
  };
  const std::string_view name = takeLine();
  const MODE mode = ModeOf(takeLine());
  std::int64_t count = 0;
  return !name.empty() && mode != MODE::Unknown && ParseCount(takeLine(), &count);
}

}  // namespace statrn32
