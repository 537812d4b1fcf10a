// The commands of the syntax: which word is read by which function.
#pragma once

#include <span>
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
  // The words that the line may hold beside its variables, blanks between them; "NF=" stands for a
  // word that begins so.
  std::string_view options = {};
  std::string_view form = {};  // of the line, for messages
};

// The commands that prepare the data.
std::span<const COMMAND> DataCommands();
std::span<const COMMAND> ProcedureCommandTable();
// A command of either table by its word in any case, or null. OU is none of them.
const COMMAND* FindCommand(std::string_view word);
