#include "engine/screen/ThresholdFile.h"

#include <cerrno>
#include <cstring>
#include <optional>

#include "host/Numbers.h"
#include "host/Text.h"
#include "vexutils/BlockIo.h"

namespace {

struct Line {
  std::vector<double> thresholds;
  std::optional<CString> variable;
};

bool ParseLine(std::string_view text, Line& line) {
  const std::size_t comment = text.find('!');
  if (comment != std::string_view::npos) line.variable = CString(Trimmed(text.substr(comment + 1)));
  text = Trimmed(text.substr(0, comment));
  while (!text.empty()) {
    const auto number = ParseNumber(text);
    if (!number) return false;
    line.thresholds.push_back(number->value);
    text = Trimmed(text.substr(number->length));
  }
  return true;
}

bool ReadText(const CString& name, CString& text, CString& problem) {
  constexpr std::int64_t kLargest = std::int64_t{16} << 20;
  CDescriptor file;
  const bool opened = file.OpenForReading(name.c_str());
  const std::int64_t bytes = opened ? FileBytes(file.Get()) : -1;
  if (bytes > kLargest) {
    problem = name + " is too large for a file of thresholds";
    return false;
  }
  if (bytes >= 0) {
    text.resize(static_cast<std::size_t>(bytes));
    if (ReadAt(file.Get(), 0, text.data(), text.size()) == bytes) return true;
  }
  problem = "the file of the thresholds, " + name + ", cannot be read: " + std::strerror(errno);
  return false;
}

}  // namespace

void WriteThresholdLine(COutputFile& file, const CString& variable,
                        const std::vector<double>& thresholds) {
  CString line;
  for (const double threshold : thresholds) line += FormatShortest(threshold) + ' ';
  file.Write(line + "! " + variable + '\n');
}

bool ReadThresholds(const CString& name, const CString& variable, std::vector<double>& thresholds,
                    CString& problem) {
  CString text;
  if (!ReadText(name, text, problem)) return false;
  std::vector<Line> lines;
  std::string_view rest = text;
  for (int number = 1; !rest.empty(); ++number) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    Line line;
    if (!ParseLine(rest.substr(0, end), line)) {
      problem =
          "line " + std::to_string(number) + " of " + name + " holds something that is no number";
      return false;
    }
    if (!line.thresholds.empty()) lines.push_back(std::move(line));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  for (const Line& line : lines) {
    if (!line.variable || EqualIgnoringCase(*line.variable, variable)) {
      thresholds = line.thresholds;
      if (line.variable || lines.size() == 1) return true;
    }
  }
  problem = lines.empty()       ? name + " holds no thresholds"
            : lines[0].variable ? name + " holds no thresholds of variable " + variable
                                : name + " holds thresholds of several variables without names";
  return false;
}
