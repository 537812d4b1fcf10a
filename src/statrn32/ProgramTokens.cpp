#include "statrn32/ProgramTokens.h"

#include <algorithm>
#include <charconv>

#include "host/Text.h"
#include "host/statrn32.h"

namespace statrn32 {

const PROGRAM_TOKEN& CTokens::Peek(std::size_t ahead) const {
  return tokens_[std::min(at_ + ahead, tokens_.size() - 1)];
}

PROGRAM_TOKEN CTokens::Take() {
  PROGRAM_TOKEN token = Peek();
  if (at_ + 1 < tokens_.size()) ++at_;
  return token;
}

bool CTokens::TakeIf(std::string_view word) {
  if (!Peek().Is(word)) return false;
  Take();
  return true;
}

bool ParseInt(std::string_view text, int* number) {
  constexpr int kMost = 1 << 20;
  const auto [stop, failed] = std::from_chars(text.data(), text.data() + text.size(), *number);
  return failed == std::errc() && stop == text.data() + text.size() && *number >= 0 &&
         *number <= kMost;
}

PROGRAM_COLUMN ColumnNamed(std::string name) {
  PROGRAM_COLUMN column;
  column.variable.name = std::move(name);
  column.variable.type = ST_TYPE_NUMERIC;
  column.variable.width = 8;
  column.variable.decimals = 2;
  return column;
}

void UseFormat(std::string_view format, VARIABLE* variable) {
  const FORMAT_PARTS parts = SplitFormat(format);
  const bool text = parts.name.substr(0, 1) == "$" || EqualIgnoringCase(parts.name, "A");
  if (text) variable->type = ST_TYPE_STRING;
  if (parts.width > 0) variable->width = parts.width;
  variable->decimals = text ? 0 : std::max(0, parts.decimals);
}

void ReadValueLabels(CTokens* in, LABEL_SET* set) {
  while (!in->AtEnd() && !in->Peek().Is("/") && !in->Peek().Is(",")) {
    VALUE_LABEL label;
    const bool negative = in->TakeIf("-");
    const PROGRAM_TOKEN value = in->Take();
    in->TakeIf("=");
    const PROGRAM_TOKEN text = in->Take();
    label.isText = value.kind == PROGRAM_TOKEN::Text;
    label.text = value.text;
    label.label = text.text;
    const auto& digits = value.text;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), label.number);
    if (negative) label.number = -label.number;
    const bool number = parsed.ec == std::errc() && parsed.ptr == digits.data() + digits.size();
    if (text.kind == PROGRAM_TOKEN::Text && (label.isText || number)) set->push_back(label);
  }
}

}  // namespace statrn32
