// The formats of the transfer library: one row each. docs/adding-a-format.md tells how a row is
// added.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct FORMAT {
  std::int32_t code;
  const char* name;                            // as the file-type lists show it
  bool (*recognises)(std::string_view first);  // null: has no signature
  std::unique_ptr<CReader> (*reader)();        // null: is not read
  std::unique_ptr<CWriter> (*writer)();        // null: is not written
  const NAME_RULES* names;                     // of a format that is written
  const char* instead;  // what to write instead of it; null for the usual advice
};

// How many first bytes `recognises` sees; fewer of a shorter file.
inline constexpr std::int64_t kFirstBytes = 1024;

std::span<const FORMAT> Formats();
// Null for a code without a row.
const FORMAT* FindFormat(std::int32_t code);
// The format that recognises the first bytes, or null.
const FORMAT* RecogniseFormat(std::string_view first);

// Why these first bytes are not read as that format, for a person to read; empty when they are.
std::string WhyNotRecognised(std::int32_t code, std::string_view first);

// The texts for a code that is not read or not written.
std::string CannotReadText(std::int32_t code);
std::string CannotWriteText(std::int32_t code);

}  // namespace statrn32
