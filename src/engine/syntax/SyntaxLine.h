// The lines of a syntax file.
#pragma once

#include <string_view>
#include <vector>

#include "host/Types.h"

// A line that says something: without its comment, and without blanks behind it. Blanks in front
// stay, because one of the commands needs them.
struct SyntaxLine {
  int number = 0;  // in the file, counted from 1
  CString text;
};

// Cuts a syntax into its lines. A comment runs from "!" to the end of its line. In an SY line the
// file's name, which ends at the last quote, may hold a "!"; on an OU line a comment begins only
// where a word would begin, because file names stand there without quotes. Lines without anything
// else are left out.
std::vector<SyntaxLine> SplitSyntax(std::string_view syntax);

// Where the comment of a line begins; the line's size when it has none.
std::size_t CommentBegin(std::string_view line);

// The first word of a line: what stands before the first blank or "=".
std::string_view FirstWord(std::string_view line);
