// The pages of an Access database.
//
// Little-endian. A file is pages of 2,048 bytes (Jet 3, Access 95 and 97) or 4,096 bytes (Jet 4 and
// later); byte 0x14 of the first page is the version. From 0x18 on the first page is scrambled with
// RC4 and a fixed key; there stand the code page (0x3C) and the key of the other pages (0x3E),
// which is 0 where they are not scrambled. A data page begins with the byte 1, holds the page of
// its table's description at 4 and at 8 (Jet 3) or 12 the number of its rows, followed by their
// places; rows fill the page from its end. Pointers to a row are the row's number in the low byte
// and the page in the other three.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "statrn32/InputFile.h"

namespace statrn32 {

class CAccessPages {
 public:
  // `file` stays open as long as the pages are read. False with the reason in `error`.
  bool Open(CInputFile* file, std::string* error);

  // Two bytes for a character, more room in every description?
  bool IsJet4() const { return jet4_; }
  int CodePage() const { return codePage_; }
  std::size_t PageBytes() const { return pageBytes_; }
  std::uint32_t Pages() const { return pages_; }

  // False when there is no such page.
  bool Read(std::uint32_t page, std::string* out) const;

  // One row of a data page.
  struct ROW {
    std::string_view bytes;  // empty when the row lies outside the page
    bool deleted = false;
    bool pointer = false;  // the bytes are a pointer to the row's real place
  };
  std::size_t CountRows(std::string_view page) const;
  ROW RowOf(std::string_view page, std::size_t row) const;

  // The pages that a usage map names. The map is a row: the byte 0, the first page and a bit for
  // each page; or the byte 1 and the pages (which begin with 4 bytes) that hold the bits.
  std::vector<std::uint32_t> PagesOfMap(std::uint32_t pointer) const;

 private:
  bool ReadHeader(std::string* error);
  void AppendBits(std::string_view bits, std::uint64_t firstPage,
                  std::vector<std::uint32_t>* out) const;

  CInputFile* file_ = nullptr;
  bool jet4_ = false;
  int codePage_ = 0;
  std::uint32_t key_ = 0;
  std::size_t pageBytes_ = 0;
  std::uint32_t pages_ = 0;
};

}  // namespace statrn32
