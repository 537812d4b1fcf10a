// A text file as a stream of UTF-8, read in blocks. Its last line always has an end.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

#include "host/NumberScan.h"
#include "transfer/TextEncoding.h"
#include "vexutils/BlockIo.h"

namespace STUtils {

// What is read is the file as it was when it was opened; HasChanged() tells afterwards whether it
// still is. Nothing is allocated but the buffer, which grows only with what the caller has not yet
// used.
class CTextSource {
 public:
  // Opens the file and detects its encoding. False with the reason in Error().
  bool Open(const std::string& name);
  bool IsOpen() const { return file_.IsOpen(); }
  const std::string& Error() const { return error_; }

  TextEncoding Encoding() const { return encoding_; }
  // From the next Rewind on.
  void SetEncoding(TextEncoding encoding) { encoding_ = encoding; }

  // Back to the first character. Text behind it is read by More().
  void Rewind();

  // The text between `from` (not before what was returned for earlier calls) and the new end: the
  // text from `from` on is kept and more is put behind it. False when there was no more, or reading
  // failed (then Error() is not empty). Pointers into the text are valid until the next call.
  bool More(const char* from);
  const char* Begin() const { return buffer_.data() + kNumberScanPadding; }
  const char* End() const { return Begin() + used_; }
  // Is there nothing behind End()?
  bool AtEnd() const { return offset_ >= size_; }

  // The part of the file that has been read, 0 to 1.
  double Fraction() const;
  // Has the file got another size or time of change since it was opened?
  bool HasChanged() const;

 private:
  bool ReadPlain();
  bool ReadConverted();
  void EndText();
  void Reserve(std::size_t bytes);
  char* Text() { return buffer_.data() + kNumberScanPadding; }

  CDescriptor file_;
  std::string error_;
  TextEncoding encoding_ = TextEncoding::Utf8;
  std::int64_t size_ = 0;
  std::timespec changed_{};
  std::int64_t offset_ = 0;   // of the next byte to read
  std::vector<char> buffer_;  // `used_` bytes of text amid room that number scanning may touch
  std::size_t used_ = 0;
  std::string raw_;        // bytes of the file that are no whole character yet
  std::string converted_;  // of one block
};

}  // namespace STUtils
