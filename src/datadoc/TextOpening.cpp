#include "datadoc/TextOpening.h"

#include <algorithm>

#include "datadoc/FieldText.h"
#include "datadoc/FormatStatement.h"
#include "datadoc/TextInput.h"
#include "vexutils/BlockIo.h"

namespace {

constexpr std::size_t kMostOfLine = 1'000'000;

bool IsNumber(const CString& word) {
  FieldState state = FieldState::Number;
  ReadField(word, 0, state);
  return state == FieldState::Number;
}

bool IsOnlyBlanks(const CString& text) {
  return std::all_of(text.begin(), text.end(), IsTextBlank);
}

// The first line that is not blank.
TEXTLINE FirstLine(int file) {
  const std::int64_t bytes = FileBytes(file);
  TEXTLINE line = ReadTextLine(file, 0);
  while (IsOnlyBlanks(line.text) && line.next < bytes) line = ReadTextLine(file, line.next);
  return line;
}

}  // namespace

TEXTFILELOOK LookAtTextFile(const CString& fileName) {
  TEXTFILELOOK look;
  CDescriptor file;
  if (!file.OpenForReading(fileName.c_str())) return look;
  look.readable = true;
  look.statement = BeginsFormat(ReadTextLine(file.Get(), 0).text);
  const std::vector<CString> words = WordsOf(FirstLine(file.Get()).text);
  const auto count = static_cast<std::int64_t>(words.size());
  look.proposal.variables =
      static_cast<std::int32_t>(std::clamp<std::int64_t>(count, 1, kMostTextVariables));
  look.proposal.namesOnTop = !words.empty() && std::none_of(words.begin(), words.end(), IsNumber);
  return look;
}

TEXTLINE ReadTextLine(int file, std::int64_t offset) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  CTextInput input(file, offset, kMostOfLine);
  TEXTLINE result;
  result.begin = offset;
  std::string_view line;
  if (input.NextLine(line)) {
    if (offset == 0 && line.starts_with(kByteOrderMark)) {
      line.remove_prefix(kByteOrderMark.size());
      result.begin = static_cast<std::int64_t>(kByteOrderMark.size());
    }
    result.text = line;
  }
  result.next = input.NextLineOffset();
  return result;
}

std::vector<CString> WordsOf(const CString& line) {
  std::vector<CString> words;
  auto at = line.begin();
  while ((at = std::find_if_not(at, line.end(), IsTextBlank)) != line.end()) {
    const auto end = std::find_if(at, line.end(), IsTextBlank);
    words.emplace_back(at, end);
    at = end;
  }
  return words;
}

CString NamesLine(const std::vector<CString>& names) {
  CString line;
  for (CString name : names) {
    if (name.empty()) name = "_";
    std::replace_if(name.begin(), name.end(), IsTextBlank, '_');
    line += name + ' ';
  }
  return line;
}
