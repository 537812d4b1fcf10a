// The formats of the transfer library: one row each. docs/adding-a-format.md tells how a row is
// added.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

// Of the formats that count their records in 32 bits.
inline constexpr std::int64_t kMostRecords = std::numeric_limits<std::int32_t>::max();

// What a format that is written can hold. The length of its names stands in its NAME_RULES.
struct LIMITS {
  std::int64_t records = std::numeric_limits<std::int64_t>::max();
  std::int64_t variables = std::numeric_limits<std::int32_t>::max();
  std::size_t textBytes = std::numeric_limits<std::int32_t>::max();  // of one text; 0: no texts
  std::size_t labelBytes = 0;                                        // of a variable; 0: none
  std::size_t valueLabelBytes = 0;                                   // 0: none
  double largest = std::numeric_limits<double>::max();
  // Whatever else is lost on the way, for a person to read: of any data set, and of one that has
  // texts or labels.
  const char* remark = nullptr;
  const char* textRemark = nullptr;
};

// One row. What a row leaves out is null: a format without a signature has no `recognises`, one
// that is not written no `writer`.
struct FORMAT {
  std::int32_t code = -1;
  const char* name = nullptr;  // as the file-type lists show it
  bool (*recognises)(std::string_view first) = nullptr;
  std::unique_ptr<CReader> (*reader)() = nullptr;
  std::unique_ptr<CWriter> (*writer)() = nullptr;
  const NAME_RULES* names = nullptr;  // of a format that is written
  const LIMITS* limits = nullptr;     // of a format that is written
  // Of a compound file: the streams of which it has one, each closed by a NUL, the last by two.
  const char* streams = nullptr;
  const char* dates = nullptr;     // the kinds of dates that are read, for a person to read
  const char* variants = nullptr;  // which versions are read and written
  const char* notRead = nullptr;   // why it is not read and what serves; null: the usual advice
  const char* instead = nullptr;   // what to write instead of it; null: the usual advice
};

// How many first bytes `recognises` sees; fewer of a shorter file.
inline constexpr std::int64_t kFirstBytes = 1024;

std::span<const FORMAT> Formats();
// Null for a code without a row.
const FORMAT* FindFormat(std::int32_t code);
// The format that recognises the first bytes, or null.
const FORMAT* RecogniseFormat(std::string_view first);
// The same of a whole file, whose first bytes these are: compound files, which begin alike, are
// told apart by their streams.
bool FormatFits(const FORMAT& format, const std::string& name, std::string_view first);
const FORMAT* RecogniseFile(const std::string& name, std::string_view first);

// Why these first bytes are not read as that format, for a person to read; empty when they are.
std::string WhyNotRecognised(std::int32_t code, std::string_view first);

// Why a table does not fit into a file with these limits; empty when it does.
std::string WhyTooLarge(const LIMITS& limits, const DICTIONARY& dictionary, std::int64_t cases);

// What of a data set a file of the format cannot hold, one sentence a fact.
std::vector<std::string> LossesOf(const FORMAT& format, const DICTIONARY& dictionary,
                                  std::int64_t cases);

// The texts for a code that is not read or not written.
std::string CannotReadText(std::int32_t code);
std::string CannotWriteText(std::int32_t code);

}  // namespace statrn32
