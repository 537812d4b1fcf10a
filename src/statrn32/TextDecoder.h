// Text of a foreign file as UTF-8.
#pragma once

#include <atomic>
#include <iconv.h>
#include <string>
#include <string_view>

namespace statrn32 {

// Can texts of this encoding be read? Empty: yes, as they are guessed to be.
bool KnowsEncoding(const char* name);

// Turns a file's bytes into UTF-8. A byte that its encoding does not have becomes U+FFFD, a
// character cut off at the end is left out: one bad byte never costs a file. Without an encoding,
// valid UTF-8 is taken as such and anything else as Windows-1252.
class CTextDecoder {
 public:
  CTextDecoder() = default;
  ~CTextDecoder();
  CTextDecoder(const CTextDecoder&) = delete;
  CTextDecoder& operator=(const CTextDecoder&) = delete;

  // `name` as iconv knows it; null, empty or unknown: no encoding. `guess`: nobody said that it is
  // this one.
  void SetEncoding(const char* name, bool guess = false);
  // What the user chose; where that is nothing, the usual encoding of a format, as a guess.
  void SetEncoding(const std::string& chosen, const char* usual) {
    SetEncoding(chosen.empty() ? usual : chosen.c_str(), chosen.empty());
  }
  // Where no encoding was told and there was a text that another one would show differently: what
  // was taken, as iconv knows it; else empty. May be asked from another thread.
  std::string GuessedEncoding() const;

  // Appends the decoded text without its trailing blanks.
  void Append(std::string_view bytes, std::string* out);
  // The same with the blanks at the end.
  void AppendWhole(std::string_view text, std::string* out);
  std::string Decode(std::string_view bytes);

 private:
  void Convert(std::string_view bytes, std::string* out);
  void Close();

  iconv_t converter_ = nullptr;
  bool converts_ = false;  // `converter_` is open
  bool asciiBased_ = true;
  bool told_ = false;
  std::string name_;
  std::atomic<bool> guessed_{false};
};

}  // namespace statrn32
