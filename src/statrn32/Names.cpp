#include "statrn32/Names.h"

#include <algorithm>
#include <set>

#include "host/Text.h"

namespace statrn32 {
namespace {

bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
bool IsAscii(char c) {
  return static_cast<unsigned char>(c) < 0x80;
}
char Upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

std::string UpperText(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), Upper);
  return upper;
}

std::string Key(const NAME_RULES& rules, const std::string& name) {
  return rules.caseMatters ? name : UpperText(name);
}

bool IsReserved(const NAME_RULES& rules, const std::string& name) {
  const std::string key = Key(rules, name);
  if (std::find(rules.reserved.begin(), rules.reserved.end(), key) != rules.reserved.end()) {
    return true;
  }
  return rules.strNumbers && key.size() > 3 && key.compare(0, 3, "str") == 0 &&
         std::all_of(key.begin() + 3, key.end(), IsDigit);
}

bool IsLegal(const NAME_RULES& rules, char c, bool first) {
  if (IsLetter(c) || (!IsAscii(c) && !rules.plain)) return true;
  if (first) return rules.alsoFirst.find(c) != std::string_view::npos;
  return IsDigit(c) || rules.alsoLater.find(c) != std::string_view::npos;
}

std::string LegalName(const NAME_RULES& rules, std::string_view old) {
  std::string name = IsUtf8(old) ? std::string(old) : TextForDisplay(old);
  if (rules.plain) name = ToAscii(name);
  if (rules.upper) name = UpperText(name);
  for (char& c : name) {
    if (!IsLegal(rules, c, false)) c = '_';
  }
  if (name.empty()) name = "VAR";
  if (!IsLegal(rules, name[0], true)) name.insert(name.begin(), 'V');
  name = CutText(name, rules.bytes);
  while (name.size() > 1 && name.back() == '.') name.pop_back();
  if (IsReserved(rules, name)) name = CutText(name, rules.bytes - 1) + "_";
  return name;
}

// `name` with a number behind it that is not yet taken.
std::string NumberedName(const NAME_RULES& rules, const std::string& name,
                         const std::set<std::string>& taken) {
  for (int number = 2;; ++number) {
    std::string suffix = std::to_string(number);
    if (rules.bytes > 8) suffix.insert(suffix.begin(), '_');
    std::string candidate = CutText(name, rules.bytes - suffix.size()) + suffix;
    if (taken.count(Key(rules, candidate)) == 0 && !IsReserved(rules, candidate)) return candidate;
  }
}

// The letters of Latin-1 from U+00C0 on.
constexpr std::string_view kLatinLetters =
    "AAAAAAACEEEEIIIIDNOOOOOxOUUUUYTsaaaaaaaceeeeiiiidnooooo/ouuuuyty";

char AsciiOf(unsigned first, unsigned second) {
  const unsigned codePoint = (first & 0x1F) << 6 | (second & 0x3F);
  if (codePoint == 0xA0) return ' ';
  return codePoint >= 0xC0 && codePoint <= 0xFF ? kLatinLetters[codePoint - 0xC0] : '?';
}

}  // namespace

std::string ToAscii(std::string_view utf8) {
  std::string ascii;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto byte = static_cast<unsigned char>(utf8[i]);
    if (byte < 0x80) {
      ascii += utf8[i];
    } else if ((byte & 0xC0) == 0x80) {
      continue;  // the rest of a character already written
    } else if ((byte & 0xE0) == 0xC0 && i + 1 < utf8.size()) {
      ascii += AsciiOf(byte, static_cast<unsigned char>(utf8[i + 1]));
    } else {
      ascii += '?';
    }
  }
  return ascii;
}

std::vector<std::pair<std::string, std::string>> MakeLegalNames(const NAME_RULES& rules,
                                                                std::vector<std::string>* names) {
  // Names that are legal as they stand keep them, whichever comes first.
  std::vector<std::pair<std::string, std::string>> changed;
  std::set<std::string> taken;
  std::vector<bool> kept(names->size());
  for (std::size_t i = 0; i < names->size(); ++i) {
    const std::string& name = (*names)[i];
    kept[i] = LegalName(rules, name) == name && taken.insert(Key(rules, name)).second;
  }
  for (std::size_t i = 0; i < names->size(); ++i) {
    if (kept[i]) continue;
    std::string legal = LegalName(rules, (*names)[i]);
    if (taken.count(Key(rules, legal)) != 0) legal = NumberedName(rules, legal, taken);
    taken.insert(Key(rules, legal));
    changed.emplace_back((*names)[i], legal);
    (*names)[i] = legal;
  }
  return changed;
}

}  // namespace statrn32
