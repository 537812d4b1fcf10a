// Compound files: a file system of storages and streams inside one file (.xls, .jnb).
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct _GsfInfile;
struct _GsfOutfile;
struct _GsfOutput;

namespace statrn32 {

inline constexpr std::string_view kCompoundMagic("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);

// Kept in memory while it is open. Damaged structures give errors or fewer streams.
class CCompoundFile {
 public:
  CCompoundFile() = default;
  ~CCompoundFile();
  CCompoundFile(const CCompoundFile&) = delete;
  CCompoundFile& operator=(const CCompoundFile&) = delete;

  bool Open(const std::string& name, std::string* error);
  // The names of the storages and streams in the storage called `path` ("" for the root, else names
  // with "/" between them).
  std::vector<std::string> Names(const std::string& path) const;
  // False when there is no stream of this name or it cannot be read.
  bool ReadStream(const std::string& path, std::string* out) const;

 private:
  std::string bytes_;
  struct _GsfInfile* root_ = nullptr;
};

// Writes a compound file with one stream, piece by piece.
class CCompoundWriter {
 public:
  CCompoundWriter() = default;
  ~CCompoundWriter();
  CCompoundWriter(const CCompoundWriter&) = delete;
  CCompoundWriter& operator=(const CCompoundWriter&) = delete;

  bool Create(const std::string& name, const char* stream, std::string* error);
  bool Write(std::string_view bytes);
  // Completes the file; harmless when called twice.
  bool Close();

 private:
  struct _GsfOutput* file_ = nullptr;
  struct _GsfOutfile* root_ = nullptr;
  struct _GsfOutput* stream_ = nullptr;
  bool failed_ = false;
};

}  // namespace statrn32
