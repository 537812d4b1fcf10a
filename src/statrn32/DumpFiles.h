// Objects of S as text, which its functions data.dump and data.restore write and read.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "statrn32/InputFile.h"
#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/TextDecoder.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

bool IsDump(std::string_view first);
std::unique_ptr<CReader> ReadDump();
// A data frame.
std::unique_ptr<CWriter> WriteDump();
extern const NAME_RULES kDumpNames;
extern const LIMITS kDumpLimits;

// An object: a vector of numbers or texts, or parts with names. A structure is a list whose part
// ".Data" holds the values; its other parts are attributes.
struct DUMP_NODE {
  enum KIND { Numbers, Texts, Parts } kind = Parts;
  std::string name;
  bool structure = false;
  bool whole = false;                // numbers of the modes integer and logical
  std::vector<double> numbers;       // NaN: missing
  std::vector<std::uint64_t> texts;  // where each begins in the texts; 0: missing
  std::vector<DUMP_NODE> parts;

  std::size_t Size() const;
  // The part of that name; null when there is none.
  const DUMP_NODE* Find(std::string_view part) const;
};

// All objects of a file; their texts, each ended by a NUL, stand behind each other.
struct DUMP_OBJECTS {
  std::vector<DUMP_NODE> objects;
  std::string texts = std::string(1, '\0');

  std::string_view TextOf(const DUMP_NODE& node, std::size_t index) const;
};

// The layout: a line with the name, one with the mode, one with the number of elements; then these,
// a line each, or the parts in the same way. A missing element is "N". False with what is wrong.
bool ParseDump(CInputFile* file, CTextDecoder* decoder, DUMP_OBJECTS* out, std::string* error);

}  // namespace statrn32
