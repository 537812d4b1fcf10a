// What the characters between the fields of a text file are.
#pragma once

namespace STUtils {

constexpr bool IsLineEnd(char c) {
  return c == '\n' || c == '\r';
}
constexpr bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\v' || c == '\f';
}
constexpr bool IsWhite(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

}  // namespace STUtils
