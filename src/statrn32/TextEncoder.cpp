#include "statrn32/TextEncoder.h"

#include <array>
#include <cerrno>

namespace statrn32 {

CTextEncoder::CTextEncoder(const char* encoding) : converter_(iconv_open(encoding, "UTF-8")) {}

CTextEncoder::~CTextEncoder() {
  if (reinterpret_cast<std::intptr_t>(converter_) != -1) iconv_close(converter_);
}

std::string CTextEncoder::Encode(std::string_view utf8) {
  std::string bytes;
  if (reinterpret_cast<std::intptr_t>(converter_) == -1) return bytes;
  iconv(converter_, nullptr, nullptr, nullptr, nullptr);
  char* in = const_cast<char*>(utf8.data());  // iconv does not write to it
  std::size_t left = utf8.size();
  std::array<char, 512> buffer;
  while (left > 0) {
    char* to = buffer.data();
    std::size_t room = buffer.size();
    const std::size_t done = iconv(converter_, &in, &left, &to, &room);
    const int reason = errno;
    bytes.append(buffer.data(), buffer.size() - room);
    if (done != static_cast<std::size_t>(-1) || reason == E2BIG) continue;
    ++lost_;
    if (reason != EILSEQ) break;
    char question[] = "?";
    char* mark = question;
    std::size_t one = 1;
    to = buffer.data();
    room = buffer.size();
    iconv(converter_, &mark, &one, &to, &room);
    bytes.append(buffer.data(), buffer.size() - room);
    do {
      ++in, --left;
    } while (left > 0 && (static_cast<unsigned char>(*in) & 0xC0) == 0x80);
  }
  return bytes;
}

void CTextEncoder::Note(std::vector<std::string>* notes) const {
  if (lost_ == 0) return;
  notes->push_back("Letters that became a question mark: " + std::to_string(lost_) + ".");
}

}  // namespace statrn32
