// What the readers of the three program languages share: going through the tokens of a command.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "statrn32/ProgramReader.h"

namespace statrn32 {

// Goes through the tokens of a command; behind the last one stands the End token.
class CTokens {
 public:
  explicit CTokens(std::vector<PROGRAM_TOKEN> tokens) : tokens_(std::move(tokens)) {}
  const PROGRAM_TOKEN& Peek(std::size_t ahead = 0) const;
  PROGRAM_TOKEN Take();
  // Takes the token when it is that word (in upper case).
  bool TakeIf(std::string_view word);
  bool AtEnd() const { return Peek().kind == PROGRAM_TOKEN::End; }

 private:
  std::vector<PROGRAM_TOKEN> tokens_;
  std::size_t at_ = 0;
};

// A column, a width or a length: a whole number from 0 on, of at most a million or so.
bool ParseInt(std::string_view text, int* number);

// A numeric column of a list.
PROGRAM_COLUMN ColumnNamed(std::string name);

// "F8.2", "A12", "$CHAR12.", "12.2": what a format says of a column.
void UseFormat(std::string_view format, VARIABLE* variable);

// Value labels from here to the end of the command: a value, then its label.
void ReadValueLabels(CTokens* in, LABEL_SET* set);

}  // namespace statrn32
