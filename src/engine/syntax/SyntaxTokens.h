// What the parts of a syntax line are, for showing it. The words are those that the commands' own
// tables know.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

struct SYNTAXTOKEN {
  enum class Kind { Comment, Command, Keyword, Name, Number, Unknown };
  Kind kind;
  std::size_t begin;  // in bytes
  std::size_t size;
};

// The parts that have a meaning of their own, from the left; what lies between them are variables
// and punctuation. A line whose command is not known has its first word as Unknown. Names are those
// of files. `line` has no line end.
std::vector<SYNTAXTOKEN> SyntaxTokens(std::string_view line);
