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

void PutPoint(char mark, std::string& text) {
  if (mark == '.') return;
  for (char& c : text) c = c == mark ? '.' : c == '.' ? ';' : c;
}

double ConvertData(const std::string& text, double defaultValue) {
  const auto number = ParseDataNumber(text);
  return number ? number->value : defaultValue;
}
