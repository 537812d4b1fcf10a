#include "engine/syntax/SyntaxLine.h"

#include <algorithm>

#include "host/Text.h"

namespace {

constexpr char kComment = '!';

std::size_t FindSystemFileName(std::string_view line) {
  const std::size_t name = line.find("='");
  const std::size_t comment = line.find(kComment);
  if (name == std::string_view::npos || comment < name) return std::string_view::npos;
  const std::string_view before = Trimmed(line.substr(0, name));
  if (before.size() < 2 || !EqualIgnoringCase(before.substr(before.size() - 2), "SY")) {
    return std::string_view::npos;
  }
  return name;
}

std::size_t FindComment(std::string_view line) {
  if (FindSystemFileName(line) != std::string_view::npos) {
    return line.find(kComment, line.rfind('\''));
  }
  std::size_t comment = line.find(kComment);
  // The output line may be joined to RE.
  std::string_view command = FirstWord(line);
  if (command.size() == 4 && EqualIgnoringCase(command.substr(0, 2), "RE")) {
    command.remove_prefix(2);
  }
  if (!EqualIgnoringCase(command, "OU")) return comment;
  while (comment != std::string_view::npos && comment > 0 && line[comment - 1] != ' ' &&
         line[comment - 1] != '\t') {
    comment = line.find(kComment, comment + 1);
  }
  return comment;
}

std::string_view WithoutTail(std::string_view line) {
  const std::size_t last = line.find_last_not_of(" \t\r\n");
  return line.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

}  // namespace

std::string_view FirstWord(std::string_view line) {
  line = Trimmed(line);
  return line.substr(0, line.find_first_of(" \t="));
}

std::size_t CommentBegin(std::string_view line) {
  return std::min(FindComment(line), line.size());
}

std::vector<SyntaxLine> SplitSyntax(std::string_view syntax) {
  std::vector<SyntaxLine> lines;
  int number = 0;
  while (!syntax.empty()) {
    const std::size_t end = std::min(syntax.find('\n'), syntax.size());
    std::string_view line = syntax.substr(0, end);
    syntax.remove_prefix(std::min(end + 1, syntax.size()));
    ++number;
    line = WithoutTail(line.substr(0, FindComment(line)));
    if (!line.empty()) lines.push_back({number, CString(line)});
  }
  return lines;
}
