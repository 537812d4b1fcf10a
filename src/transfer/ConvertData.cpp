#include "transfer/ConvertData.h"

std::optional<ParsedNumber> ParseDataNumber(const std::string& text) {
  const auto number = ParseNumber(text);
  if (!number || number->length >= text.size()) return number;
  const char stop = text[number->length];
  if (stop != 'D' && stop != 'd') return number;
  std::string withExponent = text;
  withExponent[number->length] = 'E';
  const auto again = ParseNumber(withExponent);
  return again ? again : number;
}

double ConvertData(const std::string& text, double defaultValue) {
  const auto number = ParseDataNumber(text);
  return number ? number->value : defaultValue;
}
