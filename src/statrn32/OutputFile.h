// A file being written, with one large buffer.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace statrn32 {

// A failure leaves its reason in Reason(); later writes fail too.
class COutputFile {
 public:
  COutputFile() = default;
  ~COutputFile();
  COutputFile(const COutputFile&) = delete;
  COutputFile& operator=(const COutputFile&) = delete;

  // Creates or empties the file.
  bool Create(const std::string& name);
  bool Write(const void* data, std::size_t size);
  // Writes what is buffered and closes.
  bool Close();
  const std::string& Reason() const { return reason_; }

 private:
  bool Flush();
  bool Fail();

  int file_ = -1;
  std::unique_ptr<char[]> buffer_;
  std::size_t used_ = 0;
  std::string reason_;
};

}  // namespace statrn32
