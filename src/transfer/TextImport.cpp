#include "transfer/TextImport.h"

#include <algorithm>
#include <cstring>

#include "host/NumberScan.h"
#include "host/Text.h"
#include "host/statrn32.h"
#include "transfer/ConvertData.h"
#include "transfer/FileTypes.h"
#include "transfer/TextCharacters.h"

namespace STUtils {
namespace {

// Longer fields are no missing-value strings and need not be kept for the comparison.
constexpr std::size_t kLongestCompared = 4096;

}  // namespace

template <typename CharT>
bool basic_text_import_t<CharT>::Open(const string& name, std::int32_t fileType) {
  name_ = name;
  this->type = fileType;
  error_.clear();
  if (!source_.Open(name)) {
    error_ = name + ": " + source_.Error();
    return false;
  }
  Rewind();
  return true;
}

template <typename CharT>
bool basic_text_import_t<CharT>::Configure(const TextSettings& settings) {
  if (IsFailed()) return false;
  settings_ = settings;
  if (settings.encoding) source_.SetEncoding(*settings.encoding);
  mark_ = settings.decimalMark;
  missing_.SetDecimalMark(mark_);
  this->delimiter = settings.delimiter;
  layout_ = this->type == SPACE_TEXT_FILE_TYPE   ? Layout::Free
            : this->type == FIRST_TEXT_FILE_TYPE ? Layout::CommaOrBlanks
                                                 : Layout::Delimited;
  separator_ = settings.delimiter != 0 && layout_ == Layout::Delimited ? settings.delimiter
                                                                       : this->Separator();
  if (layout_ == Layout::CommaOrBlanks && mark_ == ',') separator_ = ' ';
  if (layout_ != Layout::Delimited) return true;
  if (separator_ == 0) return Fail(0, "the delimiter of this file type is not known");
  if (separator_ == mark_) return Fail(0, "the decimal mark is also the delimiter");
  if (!CanDelimit(separator_)) {
    return Fail(0, string("fields cannot be delimited by \"") + separator_ + '"');
  }
  return true;
}

template <typename CharT>
void basic_text_import_t<CharT>::SetMissingStrings(CMissingStrings missing) {
  missing_ = std::move(missing);
  missing_.SetDecimalMark(mark_);
}

template <typename CharT>
bool basic_text_import_t<CharT>::Fail(std::int64_t line, const string& what) {
  error_ = name_ + (line > 0 ? ", line " + std::to_string(line) : string()) + ": " + what;
  return false;
}

// --- The text at hand: whole lines from at_ to limit_ ---

template <typename CharT>
void basic_text_import_t<CharT>::Rewind() {
  source_.Rewind();
  at_ = limit_ = source_.Begin();
  line_ = recordLine_ = 1;
}

// The last line end behind which everything is known: a CR at the end of a block may be the first
// half of a CR LF.
template <typename CharT>
void basic_text_import_t<CharT>::FindLimit() {
  const CharT* end = source_.End();
  if (source_.AtEnd()) {
    limit_ = end;
    return;
  }
  limit_ = at_;
  const auto size = static_cast<std::size_t>(end - at_);
  if (size == 0) return;
  if (const void* const feed = memrchr(at_, '\n', size)) {
    limit_ = static_cast<const CharT*>(feed) + 1;
    return;
  }
  if (const void* const back = memrchr(at_, '\r', size - 1)) {
    limit_ = static_cast<const CharT*>(back) + 1;
  }
}

// Reads on until there is one more whole line than before. Everything from at_ on is kept, at
// another place.
template <typename CharT>
bool basic_text_import_t<CharT>::NeedMore() {
  const auto held = limit_ - at_;
  for (;;) {
    const bool more = source_.More(at_);
    at_ = source_.Begin();
    if (!more) {
      limit_ = at_ + held;
      if (!source_.Error().empty()) Fail(0, source_.Error());
      return false;
    }
    FindLimit();
    // A record that goes on behind a block is read again from its start: each time with twice as
    // much.
    const auto now = limit_ - at_;
    if (now > held && (now >= 2 * held || source_.AtEnd())) return true;
    if (static_cast<std::size_t>(source_.End() - at_) > kMostRecordBytes) {
      limit_ = at_ + held;
      return Fail(
          line_,
          quoteLine_ > 0
              ? "a quote that opens in line " + std::to_string(quoteLine_) +
                    " does not close within " + std::to_string(kMostRecordBytes >> 20) + " MiB"
              : "the line is longer than " + std::to_string(kMostRecordBytes >> 20) + " MiB");
    }
  }
}

template <typename CharT>
const CharT* basic_text_import_t<CharT>::SkipLineEnd(const CharT* at) {
  ++line_;
  return at + (at[0] == '\r' && at[1] == '\n' ? 2 : 1);
}

template <typename CharT>
const CharT* basic_text_import_t<CharT>::SkipBlanks(const CharT* at) const {
  while (IsBlank(*at) && !(layout_ == Layout::Delimited && *at == separator_)) ++at;
  return at;
}

// Blanks and line ends, up to the limit.
template <typename CharT>
const CharT* basic_text_import_t<CharT>::SkipWhite(const CharT* at) {
  while (at < limit_ && IsWhite(*at)) at = IsLineEnd(*at) ? SkipLineEnd(at) : at + 1;
  return at;
}

// To the next line with content. False at the end.
template <typename CharT>
bool basic_text_import_t<CharT>::SkipBlankLines() {
  for (;;) {
    if (at_ == limit_ && !NeedMore()) return false;
    const CharT* const at = SkipBlanks(at_);
    if (!IsLineEnd(*at)) return true;
    at_ = SkipLineEnd(at);
    recordLine_ = line_;
  }
}

// --- Fields ---

template <typename CharT>
bool basic_text_import_t<CharT>::IsFieldEnd(CharT c) const {
  if (IsLineEnd(c)) return true;
  switch (layout_) {
    case Layout::Delimited:
      return c == separator_;
    case Layout::CommaOrBlanks:
      return IsBlank(c) || (c == ',' && mark_ != ',');
    case Layout::Free:
      break;
  }
  return IsWhite(c);
}

// The character that ends the field whose text ended before `at`. Between commas or blanks a comma
// takes the blanks around it with it; otherwise the last blank stands for all.
template <typename CharT>
const CharT* basic_text_import_t<CharT>::EndOfField(const CharT* at) const {
  if (layout_ != Layout::CommaOrBlanks) return SkipBlanks(at);
  const CharT* next = at;
  while (IsBlank(*next)) ++next;
  const bool comma = *next == ',' && mark_ != ',';
  return comma || IsLineEnd(*next) || next == at ? next : next - 1;
}

// Reads the field that begins at `at` and returns what ends it; null when it does not end before
// the limit. The text has no blanks around it and is valid until the next field is read.
template <typename CharT>
const CharT* basic_text_import_t<CharT>::ReadField(const CharT* at, std::string_view& text) {
  at = SkipBlanks(at);
  return *at == '"' ? ReadQuotedField(at, text) : ReadPlainField(at, text);
}

template <typename CharT>
const CharT* basic_text_import_t<CharT>::ReadPlainField(const CharT* at, std::string_view& text) {
  const CharT* const begin = at;
  while (!IsFieldEnd(*at)) ++at;
  text = Trimmed({begin, static_cast<std::size_t>(at - begin)});
  return EndOfField(at);
}

template <typename CharT>
const CharT* basic_text_import_t<CharT>::ReadQuotedField(const CharT* at, std::string_view& text) {
  std::int64_t lines = 0;
  unquoted_.clear();
  for (++at;; ++at) {
    if (at >= limit_) {
      quoteLine_ = line_;
      return nullptr;
    }
    const bool escaped = *at == '\\' && (at[1] == '"' || at[1] == '\\');
    const bool doubled = *at == '"' && at[1] == '"';
    if (escaped || doubled) {
      ++at;
    } else if (*at == '"') {
      break;
    }
    if (IsLineEnd(*at) && (*at == '\n' || at[1] != '\n')) ++lines;
    unquoted_ += *at;
  }
  line_ += lines;
  // What stands behind the quotes belongs to the field.
  const CharT* const rest = ++at;
  while (!IsFieldEnd(*at)) ++at;
  unquoted_ += Trimmed({rest, static_cast<std::size_t>(at - rest)});
  text = Trimmed(unquoted_);
  return EndOfField(at);
}

template <typename CharT>
bool basic_text_import_t<CharT>::ReadFirstLine(std::vector<string>& fields) {
  fields.clear();
  if (IsFailed()) return false;
  Rewind();
  if (!SkipBlankLines()) return IsFailed() ? false : Fail(0, "there is no line with content");
  for (bool whole = false; !whole;) {
    line_ = recordLine_;
    fields.clear();
    quoteLine_ = 0;
    const CharT* at = at_;
    for (;;) {
      if (layout_ != Layout::Delimited) at = SkipBlanks(at);
      if (layout_ == Layout::Free && IsLineEnd(*at)) break;
      std::string_view text;
      at = ReadField(at, text);
      if (at == nullptr) break;
      if (fields.size() == kMostVariables) {
        return Fail(line_, "more than " + std::to_string(kMostVariables) + " fields");
      }
      fields.emplace_back(text);
      if (IsLineEnd(*at)) break;
      if (layout_ != Layout::Free) ++at;
    }
    whole = at != nullptr;
    if (whole) {
      at_ = SkipLineEnd(at);
    } else if (!NeedMore()) {
      return IsFailed() ? false : Fail(quoteLine_, "a quote opens here and does not close");
    }
  }
  return true;
}

// --- Records ---

template <typename CharT>
void basic_text_import_t<CharT>::SetVariables(const variables_t& variables) {
  columns_.clear();
  for (const auto& variable : variables) {
    columns_.push_back(!variable.selected                ? Column::Skipped
                       : variable.type == ST_TYPE_STRING ? Column::Text
                                                         : Column::Number);
  }
  FindNumbers();
}

template <typename CharT>
void basic_text_import_t<CharT>::SetTextColumns(std::size_t count) {
  columns_.assign(count, Column::Text);
  FindNumbers();
}

template <typename CharT>
void basic_text_import_t<CharT>::FindNumbers() {
  selected_ = 0;
  numbersFrom_.assign(columns_.size(), 0);
  for (std::size_t i = columns_.size(); i-- > 0;) {
    if (columns_[i] != Column::Skipped) ++selected_;
    if (columns_[i] != Column::Number) continue;
    numbersFrom_[i] = 1 + (i + 1 < columns_.size() ? numbersFrom_[i + 1] : 0);
  }
}

template <typename CharT>
bool basic_text_import_t<CharT>::StartRecords() {
  unreadable_.assign(columns_.size(), {});
  fieldsLeft_ = 0;
  std::vector<string> names;
  if (hasNames_) return ReadFirstLine(names);
  if (IsFailed()) return false;
  Rewind();
  SkipBlankLines();
  return !IsFailed();
}

template <typename CharT>
void basic_text_import_t<CharT>::StartRecord() {
  recordLine_ = line_;
  unreadableNow_.clear();
  quoteLine_ = 0;
}

// Makes the text reach further, so that the record can be read again. False where it does not.
template <typename CharT>
bool basic_text_import_t<CharT>::ReadOn() {
  line_ = recordLine_;
  if (NeedMore()) return true;
  if (!IsFailed() && quoteLine_ > 0) Fail(quoteLine_, "a quote opens here and does not close");
  return false;
}

template <typename CharT>
bool basic_text_import_t<CharT>::ReadRecord(values_t& values) {
  if (columns_.empty()) return false;
  return ReadWhole([&] { return layout_ == Layout::Free ? ReadFree(values) : ReadLine(values); });
}

template <typename CharT>
auto basic_text_import_t<CharT>::ReadLine(values_t& values) -> Outcome {
  const CharT* at = at_;
  const CharT separator = separator_;
  const std::size_t count = columns_.size();
  if (IsWhite(*at)) {
    const bool blankLinesCount = count == 1 && layout_ == Layout::Delimited;
    if (!blankLinesCount) {
      if (!SkipBlankLines()) return Outcome::End;
      at = at_;
    }
  }
  if (layout_ == Layout::CommaOrBlanks) at = SkipBlanks(at);
  for (std::size_t i = 0; i < count; ++i) {
    basic_variable_data_t<CharT>& value = values[i];
    double number = 0;
    const CharT* end = nullptr;
    if (columns_[i] == Column::Number) {
      // One digit: the answers of a questionnaire.
      const auto digit = static_cast<unsigned>(*at - '0');
      if (digit < 10 && at[1] == separator) {
        value.value = digit;
        value.missing = false;
        if (!value.text.empty()) value.text.clear();
        at += 2;
        if (layout_ == Layout::CommaOrBlanks) at = SkipBlanks(at);
        continue;
      }
      if (IsBlank(*at)) at = SkipBlanks(at);
      end = ScanNumber(at, mark_, number);
      if (end != nullptr && IsBlank(*end)) end = EndOfField(end);
    }
    if (end != nullptr && (*end == separator || IsLineEnd(*end))) {
      value.value = number;
      value.missing = false;
      if (!value.text.empty()) value.text.clear();
      at = end;
    } else {
      at = ReadOther(at, i, value);
      if (at == nullptr) return Outcome::NeedsMore;
    }
    if (!IsLineEnd(*at)) {
      ++at;
      if (layout_ == Layout::CommaOrBlanks) at = SkipBlanks(at);
      continue;
    }
    for (++i; i < count; ++i) Convert(i, {}, values[i]);
    at_ = SkipLineEnd(at);
    return Outcome::Read;
  }
  return SkipFurtherFields(at);
}

// Behind the delimiter of the last column: a delimiter too many at the end of lines is common, a
// field too many means that something else is wrong with the line.
template <typename CharT>
auto basic_text_import_t<CharT>::SkipFurtherFields(const CharT* at) -> Outcome {
  for (;;) {
    std::string_view text;
    const CharT* const end = ReadField(at, text);
    if (end == nullptr) return Outcome::NeedsMore;
    if (!text.empty()) {
      Fail(line_, "there are more than the " + std::to_string(columns_.size()) +
                      " fields that the first line has; the next one is \"" + CutText(text, 40) +
                      "\"");
      return Outcome::End;
    }
    at = end;
    if (IsLineEnd(*at)) break;
    ++at;
  }
  at_ = SkipLineEnd(at);
  return Outcome::Read;
}

template <typename CharT>
auto basic_text_import_t<CharT>::ReadFree(values_t& values) -> Outcome {
  const CharT* at = at_;
  const std::size_t count = columns_.size();
  for (std::size_t i = 0; i < count; ++i) {
    at = SkipWhite(at);
    if (i == 0) {
      at_ = at;
      recordLine_ = line_;
    }
    if (at == limit_) {
      if (i == 0 || !source_.AtEnd()) return Outcome::NeedsMore;
      fieldsLeft_ = i;
      return Outcome::End;
    }
    basic_variable_data_t<CharT>& value = values[i];
    double number = 0;
    const CharT* end = nullptr;
    if (columns_[i] == Column::Number) end = ScanNumber(at, mark_, number);
    if (end != nullptr && IsWhite(*end)) {
      value.value = number;
      value.missing = false;
      if (!value.text.empty()) value.text.clear();
      at = end;
    } else {
      at = ReadOther(at, i, value);
      if (at == nullptr) return Outcome::NeedsMore;
    }
  }
  at_ = at;
  return Outcome::Read;
}

// A field that is no plain number, or whose column is not one of numbers.
template <typename CharT>
const CharT* basic_text_import_t<CharT>::ReadOther(const CharT* at, std::size_t column,
                                                   basic_variable_data_t<CharT>& value) {
  std::string_view text;
  const CharT* const end = ReadField(at, text);
  if (end != nullptr) Convert(column, text, value);
  return end;
}

template <typename CharT>
void basic_text_import_t<CharT>::Convert(std::size_t column, std::string_view text,
                                         basic_variable_data_t<CharT>& value) {
  value.value = 0;
  value.missing = text.empty();
  value.text.clear();
  if (columns_[column] == Column::Text) value.text = text;
  if (columns_[column] != Column::Number || text.empty()) return;
  if (text.size() <= kLongestCompared) value.text = text;
  bool whole = false;
  const auto number = Number(text, whole);
  // A text that means missing may begin with a number: "-1.#IND".
  const bool meansMissing = !whole && missing_.HasText(text);
  value.value = meansMissing ? 0 : number.value_or(0);
  value.missing = meansMissing || !number;
  if (!whole && !meansMissing) unreadableNow_.push_back(column);
}

// The number at the start of a text. Where the decimal mark is a comma, a point ends it.
template <typename CharT>
std::optional<double> basic_text_import_t<CharT>::Number(std::string_view text, bool& whole) const {
  numberText_ = text.substr(0, kLongestCompared);
  PutPoint(mark_, numberText_);
  const auto number = ParseDataNumber(numberText_);
  whole = number && number->length == text.size();
  return number ? std::optional(number->value) : std::nullopt;
}

template <typename CharT>
bool basic_text_import_t<CharT>::IsNumber(std::string_view trimmed) const {
  bool whole = false;
  return Number(trimmed, whole) && whole;
}

template <typename CharT>
bool basic_text_import_t<CharT>::IsMissingText(std::string_view trimmed) const {
  if (missing_.HasText(trimmed)) return true;
  bool whole = false;
  const auto number = Number(trimmed, whole);
  return number && missing_.HasNumber(*number);
}

template <typename CharT>
void basic_text_import_t<CharT>::Count() {
  for (const std::size_t column : unreadableNow_) {
    UnreadableFields& fields = unreadable_[column];
    if (++fields.count == 1) fields.firstLine = recordLine_;
  }
}

template class basic_text_import_t<char>;

}  // namespace STUtils
