// The commands of the syntax: which word is read by which function.
#pragma once

#include <string_view>

#include "engine/syntax/Job.h"
#include "engine/syntax/Words.h"

// What a command is read with.
struct COMMANDCONTEXT {
  const SyntaxLine& line;
  CWords& words;
  CVariableNames& names;
  JOB& job;
};

// Reads the rest of a command's line into the job; what went wrong is noted in the words.
using CommandReader = void (*)(COMMANDCONTEXT&);

struct COMMAND {
  std::string_view word;
  CommandReader read;
  std::string_view singleCharacters;  // that are words of their own
};

// The procedures' command of this word, or null.
const COMMAND* FindProcedureCommand(std::string_view word);
