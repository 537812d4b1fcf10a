#include "statrn32/TextDecoder.h"

#include <array>
#include <cerrno>
#include <cstdint>

#include "host/Text.h"

namespace statrn32 {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

bool IsAscii(std::string_view bytes) {
  unsigned char all = 0;
  for (const char c : bytes) all |= static_cast<unsigned char>(c);
  return all < 0x80;
}

std::string_view WithoutTrailingBlanks(std::string_view bytes) {
  const std::size_t nul = bytes.find('\0');
  if (nul != std::string_view::npos) bytes = bytes.substr(0, nul);
  while (!bytes.empty() && bytes.back() == ' ') bytes.remove_suffix(1);
  return bytes;
}

}  // namespace

bool KnowsEncoding(const char* name) {
  if (*name == '\0') return true;
  const iconv_t converter = iconv_open("UTF-8", name);
  const bool known = reinterpret_cast<std::intptr_t>(converter) != -1;
  if (known) iconv_close(converter);
  return known;
}

CTextDecoder::~CTextDecoder() {
  Close();
}

void CTextDecoder::Close() {
  if (converts_) iconv_close(converter_);
  converts_ = false;
}

void CTextDecoder::SetEncoding(const char* name, bool guess) {
  Close();
  asciiBased_ = true;
  told_ = false;
  if (name == nullptr || *name == '\0') return;
  converter_ = iconv_open("UTF-8", name);
  converts_ = reinterpret_cast<std::intptr_t>(converter_) != -1;
  told_ = converts_ && !guess;
  if (!converts_) return;
  name_ = name;
  // A few encodings (EBCDIC, the shift ones) give ASCII bytes another meaning.
  std::string probe;
  Convert("Az09~+", &probe);
  asciiBased_ = probe == "Az09~+";
}

void CTextDecoder::Append(std::string_view bytes, std::string* out) {
  AppendWhole(WithoutTrailingBlanks(bytes), out);
}

void CTextDecoder::AppendWhole(std::string_view text, std::string* out) {
  if ((asciiBased_ && IsAscii(text)) || (!converts_ && IsUtf8(text))) {
    out->append(text);
    return;
  }
  if (!told_) guessed_.store(true, std::memory_order_release);
  if (converts_) {
    Convert(text, out);
  } else {
    out->append(TextForDisplay(text));
  }
}

std::string CTextDecoder::GuessedEncoding() const {
  if (!guessed_.load(std::memory_order_acquire)) return {};
  return converts_ ? name_ : "CP1252";
}

std::string CTextDecoder::Decode(std::string_view bytes) {
  std::string text;
  Append(bytes, &text);
  return text;
}

void CTextDecoder::Convert(std::string_view bytes, std::string* out) {
  iconv(converter_, nullptr, nullptr, nullptr, nullptr);
  char* in = const_cast<char*>(bytes.data());  // iconv does not write to it
  std::size_t left = bytes.size();
  std::array<char, 512> buffer;
  while (left > 0) {
    char* to = buffer.data();
    std::size_t room = buffer.size();
    const std::size_t done = iconv(converter_, &in, &left, &to, &room);
    const int reason = errno;
    out->append(buffer.data(), buffer.size() - room);
    if (done != static_cast<std::size_t>(-1) || reason == E2BIG) continue;
    if (reason != EILSEQ) break;
    out->append(kReplacement);
    ++in, --left;
  }
}

}  // namespace statrn32
