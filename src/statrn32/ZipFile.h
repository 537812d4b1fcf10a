// Zip archives: the packages of .xlsx and .ods files.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "statrn32/OutputFile.h"

struct z_stream_s;
struct zip;

namespace statrn32 {

class CZipFile {
 public:
  CZipFile() = default;
  ~CZipFile();
  CZipFile(const CZipFile&) = delete;
  CZipFile& operator=(const CZipFile&) = delete;

  bool Open(const std::string& name, std::string* error);
  bool Has(const std::string& part) const;

  // Takes up to `size` bytes; returns their number, 0 at the end, -1 on failure.
  using READ = std::function<int(char*, int)>;
  // Hands the unpacked bytes of a part to `use` as it asks for them. False when there is no such
  // part, or when it unpacks to much more than its size in the archive.
  bool ReadPart(const std::string& part, const std::function<bool(const READ&)>& use) const;

 private:
  struct zip* archive_ = nullptr;
};

// Writes an archive from front to end; parts are packed as they come.
class CZipWriter {
 public:
  explicit CZipWriter(COutputFile* file) : file_(file) {}
  ~CZipWriter();
  CZipWriter(const CZipWriter&) = delete;
  CZipWriter& operator=(const CZipWriter&) = delete;

  // A part as it stands, not packed.
  bool Store(const std::string& name, std::string_view bytes);
  bool Begin(const std::string& name);
  bool Write(std::string_view bytes);
  bool End();
  bool AddPart(const std::string& name, std::string_view bytes) {
    return Begin(name) && Write(bytes) && End();
  }
  // The directory behind the parts. Fails when the archive has more than 4 GiB.
  bool Finish();

 private:
  struct PART {
    std::string name;
    std::uint64_t begin = 0;
    std::uint32_t crc = 0;
    std::uint64_t packed = 0;
    std::uint64_t size = 0;
    bool stored = false;
  };

  bool PutHeader(const PART& part);
  bool Pack(std::string_view bytes, bool last);
  bool Put(std::string_view bytes);

  COutputFile* file_;
  std::uint64_t position_ = 0;
  std::vector<PART> parts_;
  z_stream_s* packer_ = nullptr;
};

}  // namespace statrn32
