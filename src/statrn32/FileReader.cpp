#include "statrn32/FileReader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "host/statrn32.h"
#include "statrn32/Formats.h"

namespace statrn32 {

bool CFileReader::Open(const std::string& name) {
  name_ = name;
  if (!input_.Open(name)) return FailFile(std::strerror(errno));
  std::array<char, kFirstBytes> first;
  const std::int64_t got = input_.Read(first.data(), kFirstBytes);
  if (got < 0) return FailFile(std::strerror(errno));
  const std::string why = WhyNotRecognised(code_, {first.data(), static_cast<std::size_t>(got)});
  if (!why.empty()) return FailFile(why);
  input_.Seek(0);
  return LookInside();
}

bool CFileReader::ReadDictionary(DICTIONARY* out) {
  if (!ReadHeader(out)) return false;
  variables_ = out->variables.size();
  return true;
}

const RECORD_BLOCK* CFileReader::NextBlock() {
  if (!Error().empty() || variables_ == 0) return nullptr;
  const std::size_t records = std::max<std::size_t>(1, kValuesAtOnce / variables_);
  CBlockFiller filler(&block_, variables_, records);
  FillBlock(&filler);
  return block_.records > 0 ? &block_ : nullptr;
}

DATE_KIND CFileReader::DateKindOf(std::int32_t display) const {
  switch (display) {
    case ST_DISPLAY_DATE:
      return dates_.date;
    case ST_DISPLAY_DATETIME:
      return dates_.moment;
    case ST_DISPLAY_TIME:
      return dates_.time;
    default:
      return DATE_KIND::None;
  }
}

bool CFileReader::ReadExactly(void* data, std::int64_t size, const char* within) {
  const std::int64_t place = input_.Position();
  const std::int64_t got = input_.Read(data, size);
  if (got == size) return true;
  if (got < 0) return FailFile(std::strerror(errno));
  return FailFile("the file ends at byte " + std::to_string(place + got) + ", within " + within);
}

bool CFileReader::ReadWhole(std::string* out, std::int64_t most) {
  if (input_.Size() > most) {
    return FailFile("the file has " + std::to_string(input_.Size()) + " bytes; at most " +
                    std::to_string(most) + " are read of this file type");
  }
  out->resize(static_cast<std::size_t>(input_.Size()));
  input_.Seek(0);
  const std::int64_t got = input_.Read(out->data(), static_cast<std::int64_t>(out->size()));
  if (got < 0) return FailFile(std::strerror(errno));
  out->resize(static_cast<std::size_t>(got));
  return true;
}

}  // namespace statrn32
