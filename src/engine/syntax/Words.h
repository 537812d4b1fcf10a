// Reads one line of the syntax word by word.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "datadoc/VariableNames.h"
#include "engine/Fault.h"
#include "engine/syntax/SyntaxLine.h"

// Reads from the front. At the first fault the reader turns bad and stands at its end from then on;
// what it hands out after that means nothing, so a command asks Ok() once, when it is done.
class CWords {
 public:
  // The words are separated by blanks; each of the characters `single` is a word of its own. The
  // command's own word is left out. Line and names must outlive the reader.
  CWords(const SyntaxLine& line, const CVariableNames& names, std::string_view single = {});

  bool Ok() const { return !fault_; }
  const FAULT& Fault() const { return fault_; }
  bool AtEnd() const { return bad_ || next_ == words_.size(); }
  // The next word, empty at the end.
  std::string_view Peek() const { return AtEnd() ? std::string_view() : words_[next_]; }

  // Passes over the next word.
  void Skip() {
    if (!AtEnd()) ++next_;
  }

  // Notes a fault: "expected `what`, found ..." with the next word.
  bool Expected(std::string_view what);
  // Notes a fault in words of its own.
  bool Fail(CString cause, CString remedy = {});

  // Takes the next word when it is `keyword` in any case, sets `flag` then.
  bool TakeFlag(std::string_view keyword, bool& flag);
  bool TakeKeyword(std::string_view keyword);
  // Takes "KEY=value" with a value within the bounds (both included); `key` is given with its "=".
  // True when the key was there, also when its value was not in order.
  bool TakeWhole(std::string_view key, std::int64_t low, std::int64_t high, std::int64_t& value);
  bool TakeReal(std::string_view key, double low, double high, double& value);

  // Takes variables up to the end or the first of the words `stops`; a stop that ends in "=" stands
  // for every word that begins so. At least `fewest`, none twice. `what` names the list in the
  // message.
  std::vector<std::int32_t> TakeVariables(std::string_view what,
                                          std::initializer_list<std::string_view> stops = {},
                                          std::size_t fewest = 1);
  // Takes exactly one variable.
  std::int32_t TakeVariable(std::string_view what);
  // Notes a fault unless the line ends here.
  bool TakeEnd(std::string_view what);

 private:
  std::string_view TakeValue(std::string_view key);

  const SyntaxLine& line_;
  const CVariableNames& names_;
  std::vector<std::string_view> words_;
  std::size_t next_ = 0;
  bool bad_ = false;
  FAULT fault_;
};

// Does the word begin with `prefix`, in any case?
bool BeginsWith(std::string_view word, std::string_view prefix);

// A word in quotes as messages show it, cut where it is very long; "the end of the line" for none.
CString Shown(std::string_view word);
