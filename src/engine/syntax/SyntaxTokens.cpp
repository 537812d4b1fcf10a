#include "engine/syntax/SyntaxTokens.h"

#include <algorithm>

#include "engine/syntax/Commands.h"
#include "engine/syntax/Expression.h"
#include "engine/syntax/OutputLine.h"
#include "engine/syntax/SyntaxLine.h"
#include "host/Text.h"

namespace {

using Kind = SYNTAXTOKEN::Kind;

constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kOutput = "OU";

bool IsNumber(std::string_view word) {
  return !word.empty() && word.find_first_of("0123456789") != std::string_view::npos &&
         word.find_first_not_of("+-.0123456789eEdD") == std::string_view::npos;
}

// One pass over a line.
class CLineTokens {
 public:
  explicit CLineTokens(std::string_view line) : line_(line), end_(CommentBegin(line)) {}

  std::vector<SYNTAXTOKEN> Take() {
    SkipBlanks();
    if (!TakeHeader()) TakeCommand();
    if (end_ < line_.size()) tokens_.push_back({Kind::Comment, end_, line_.size() - end_});
    return std::move(tokens_);
  }

 private:
  void SkipBlanks() {
    while (at_ < end_ && kBlanks.find(line_[at_]) != std::string_view::npos) ++at_;
  }
  std::string_view Rest() const { return line_.substr(at_, end_ - at_); }
  // The next word, which ends at a blank or before one of `ends`.
  std::string_view Word(std::string_view ends = {}) const {
    const std::string_view rest = Rest();
    std::size_t size = 0;
    while (size < rest.size() && kBlanks.find(rest[size]) == std::string_view::npos &&
           ends.find(rest[size]) == std::string_view::npos) {
      ++size;
    }
    return rest.substr(0, size);
  }
  void Add(Kind kind, std::size_t size) {
    if (size > 0) tokens_.push_back({kind, at_, size});
    at_ += size;
  }

  // "RP=n SY='FILE'", in one line or in two.
  bool TakeHeader() {
    bool taken = false;
    if (BeginsWith(Rest(), "RP=")) {
      taken = true;
      Add(Kind::Keyword, 3);
      Add(Kind::Number, Word().size());
      SkipBlanks();
    }
    if (!BeginsWith(Rest(), "SY=")) return taken;
    Add(Kind::Keyword, 3);
    Add(Kind::Name, Rest().substr(0, Rest().find_last_not_of(kBlanks) + 1).size());
    return true;
  }

  void TakeCommand() {
    std::string_view word = Word("=");
    // RE is joined to the line behind SY, and begins behind a blank.
    const bool known = IsCommand(word);
    if (!known && at_ > 0 && BeginsWith(word, "RE") &&
        (word.size() == 2 || IsCommand(word.substr(2)))) {
      Add(Kind::Keyword, 2);
      word.remove_prefix(2);
    } else if (!known) {
      return Add(Kind::Unknown, word.size());
    }
    const COMMAND* const command = FindCommand(word);
    Add(Kind::Command, word.size());
    if (command == nullptr) return TakeOutputLine();
    if (EqualIgnoringCase(word, "NE")) return TakeExpression();
    TakeWords(command->options);
  }

  static bool IsCommand(std::string_view word) {
    return EqualIgnoringCase(word, kOutput) || FindCommand(word) != nullptr;
  }

  void TakeOutputLine() {
    for (SkipBlanks(); at_ < end_; SkipBlanks()) {
      const std::string_view word = Word();
      const std::size_t equals = word.find('=');
      if (!IsOutputKeyword(word)) {
        Add(Kind::Unknown, word.size());
      } else if (equals == std::string_view::npos) {
        Add(Kind::Keyword, word.size());
      } else {
        Add(Kind::Keyword, equals + 1);
        TakeOutputValue();
      }
    }
  }

  // Up to the next keyword: a file's name may hold blanks.
  void TakeOutputValue() {
    const std::size_t begin = at_;
    std::size_t last = at_ + Word().size();
    if (IsNumber(Word())) return Add(Kind::Number, Word().size());
    for (at_ = last; at_ < end_; last = at_) {
      SkipBlanks();
      if (at_ == end_ || IsOutputKeyword(Word())) break;
      at_ += Word().size();
    }
    at_ = begin;
    Add(Kind::Name, last - begin);
  }

  void TakeExpression() {
    const std::vector<std::string_view> functions = ExpressionFunctions();
    while (at_ < end_) {
      SkipBlanks();
      const std::string_view word = Word("+-*/()=");
      const auto isWord = [word](std::string_view name) { return EqualIgnoringCase(word, name); };
      if (std::any_of(functions.begin(), functions.end(), isWord)) {
        Add(Kind::Keyword, word.size());
      } else if (IsNumber(word)) {
        Add(Kind::Number, word.size());
      } else {
        at_ += std::max<std::size_t>(word.size(), at_ < end_ ? 1 : 0);
      }
    }
  }

  void TakeWords(std::string_view options) {
    for (SkipBlanks(); at_ < end_; SkipBlanks()) {
      const std::string_view word = Word("(),");
      const std::size_t keyword = KeywordSize(word, options);
      Add(Kind::Keyword, keyword);
      const std::string_view value = word.substr(keyword);
      if (IsNumber(value)) {
        Add(Kind::Number, value.size());
      } else {
        at_ += word.empty() ? 1 : value.size();
      }
    }
  }

  // How much of the front of `word` is one of the options.
  static std::size_t KeywordSize(std::string_view word, std::string_view options) {
    while (!options.empty()) {
      const std::size_t size = std::min(options.find(' '), options.size());
      const std::string_view option = options.substr(0, size);
      options.remove_prefix(std::min(size + 1, options.size()));
      const bool fits =
          option.ends_with('=') ? BeginsWith(word, option) : EqualIgnoringCase(word, option);
      if (fits) return size;
    }
    return 0;
  }

  std::string_view line_;
  std::size_t end_;  // where the comment begins
  std::size_t at_ = 0;
  std::vector<SYNTAXTOKEN> tokens_;
};

}  // namespace

std::vector<SYNTAXTOKEN> SyntaxTokens(std::string_view line) {
  return CLineTokens(line).Take();
}
