// Text as it stands in XML and HTML.
#pragma once

#include <string>
#include <string_view>

namespace statrn32 {

// Appends UTF-8 with the marks & < > and " written out. Control characters, which XML does not
// have, become blanks.
inline void AppendXmlText(std::string_view text, std::string* out) {
  for (const char c : text) {
    switch (c) {
      case '&':
        *out += "&amp;";
        break;
      case '<':
        *out += "&lt;";
        break;
      case '>':
        *out += "&gt;";
        break;
      case '"':
        *out += "&quot;";
        break;
      default: {
        const auto byte = static_cast<unsigned char>(c);
        const bool control = byte < 0x20 && c != '\n' && c != '\t';
        *out += control ? ' ' : c;
      }
    }
  }
}

}  // namespace statrn32
