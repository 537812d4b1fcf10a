#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>

#include "engine/syntax/Syntax.h"
#include "engine/syntax/Words.h"
#include "host/Text.h"

namespace {

constexpr std::string_view kRepetitions = "RP=";
constexpr std::string_view kSystemFile = "SY=";
constexpr std::string_view kRewind = "RE";
constexpr std::int64_t kMostRepetitions = std::numeric_limits<std::int32_t>::max();

FAULT LineFault(const SyntaxLine& line, CString cause) {
  return {line.number, CString(Trimmed(line.text)), std::move(cause), {}};
}

// Takes "RP=n" from the front of `text` when it is there.
bool TakeRepetitions(const SyntaxLine& line, std::string_view& text, std::int64_t& repetitions,
                     FAULT& fault) {
  if (!BeginsWith(text, kRepetitions)) return true;
  text.remove_prefix(kRepetitions.size());
  const auto result = std::from_chars(text.data(), text.data() + text.size(), repetitions);
  const auto length = static_cast<std::size_t>(result.ptr - text.data());
  const bool whole = length == text.size() || text[length] == ' ' || text[length] == '\t';
  if (result.ec != std::errc() || !whole || repetitions < 1 || repetitions > kMostRepetitions) {
    fault = LineFault(line, "expected a whole number from 1 to " +
                                std::to_string(kMostRepetitions) + " after RP=, found " +
                                Shown(text.substr(0, text.find_first_of(" \t"))));
    return false;
  }
  text = Trimmed(text.substr(length));
  return true;
}

bool ReadSystemFile(const SyntaxLine& line, std::string_view text, JOBHEADER& header,
                    FAULT& fault) {
  text.remove_prefix(kSystemFile.size());
  const std::size_t last = text.rfind('\'');
  if (!text.starts_with('\'') || last == 0) {
    fault =
        LineFault(line, "expected the data file's name in quotes after SY=, found " + Shown(text));
  } else if (last != text.size() - 1) {
    fault = LineFault(line, "expected nothing behind the data file's name, found " +
                                Shown(Trimmed(text.substr(last + 1))));
  } else if (last == 1) {
    fault = LineFault(line, "expected the data file's name between the quotes, found none");
  }
  if (fault) return false;
  header.dataFile = text.substr(1, last - 1);
  header.line = line;
  return true;
}

// RE stands behind a blank on the line after SY, and the first command follows at once.
void TakeRewind(std::vector<SyntaxLine>& lines, JOBHEADER& header) {
  if (lines.empty() || lines.front().number != header.line.number + 1) return;
  CString& text = lines.front().text;
  if (!text.starts_with(' ') || !BeginsWith(Trimmed(text), kRewind)) return;
  header.rewind = true;
  text.erase(0, text.find_first_not_of(' ') + kRewind.size());
  if (Trimmed(text).empty()) lines.erase(lines.begin());
}

}  // namespace

bool ParseHeader(std::vector<SyntaxLine>& lines, JOBHEADER& header, FAULT& fault) {
  header = JOBHEADER();
  fault = FAULT();
  std::size_t next = 0;
  for (; next < lines.size() && header.dataFile.empty(); ++next) {
    const SyntaxLine& line = lines[next];
    std::string_view text = Trimmed(line.text);
    if (!TakeRepetitions(line, text, header.repetitions, fault)) return false;
    if (text.empty()) continue;
    if (!BeginsWith(text, kSystemFile)) {
      fault = LineFault(
          line, "expected SY='FILE' before the first command, found " + Shown(FirstWord(text)));
      return false;
    }
    if (!ReadSystemFile(line, text, header, fault)) return false;
  }
  lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(next));
  if (header.dataFile.empty()) {
    fault.cause = "the syntax names no data file";
    fault.remedy = "Begin the syntax with a line SY='FILE' that names the system data file.";
    return false;
  }
  TakeRewind(lines, header);
  return true;
}
