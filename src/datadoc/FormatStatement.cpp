#include "datadoc/FormatStatement.h"

#include <algorithm>

#include <boost/format.hpp>

#include "datadoc/DataDoc.h"

namespace {

constexpr std::int64_t kLargestNumber = 1'000'000'000;  // larger ones are taken for this

bool IsBlank(char c) {
  return static_cast<unsigned char>(c) <= ' ';
}

CString WithoutBlanks(std::string_view text) {
  CString result;
  std::copy_if(text.begin(), text.end(), std::back_inserter(result),
               [](char c) { return !IsBlank(c); });
  return result;
}

// An item between two separators; -1 for a number that is not there.
struct Item {
  std::string_view text;
  std::int64_t repeat = -1;
  char letter = 0;  // a capital; 0 for none
  std::int64_t width = -1;
  std::int64_t decimals = -1;
  bool whole = true;  // nothing follows that has no meaning

  bool Is(std::string_view letters) const {
    return letter != 0 && letters.find(letter) != std::string_view::npos;
  }
};

std::int64_t TakeNumber(std::string_view& text) {
  std::int64_t number = -1;
  while (!text.empty() && text.front() >= '0' && text.front() <= '9') {
    number =
        std::min(std::max<std::int64_t>(number, 0) * 10 + (text.front() - '0'), kLargestNumber);
    text.remove_prefix(1);
  }
  return number;
}

char TakeLetter(std::string_view& text) {
  if (text.empty()) return 0;
  const char upper = static_cast<char>(text.front() & ~0x20);
  if (upper < 'A' || upper > 'Z') return 0;
  text.remove_prefix(1);
  return upper;
}

Item ReadItem(std::string_view text) {
  Item item;
  item.text = text;
  item.repeat = TakeNumber(text);
  item.letter = TakeLetter(text);
  item.width = TakeNumber(text);
  if (!text.empty() && text.front() == '.') {
    text.remove_prefix(1);
    item.decimals = TakeNumber(text);
    // The width of an exponent ("E12.4E2") says nothing to a reader.
    if (item.Is("DEG") && !text.empty() && (text.front() & ~0x20) == 'E') {
      text.remove_prefix(1);
      TakeNumber(text);
    }
  }
  item.whole = text.empty();
  return item;
}

class FormatParser {
 public:
  FormatParser(std::string_view statement, std::size_t most) : text_(statement), most_(most) {}

  FORMATFIELDS Parse() {
    while (!text_.empty() && text_.front() == '(') text_.remove_prefix(1);
    while (result_.problem.empty() && result_.fields.size() < most_ && Step()) {
    }
    return std::move(result_);
  }

 private:
  bool Step() {
    if (text_.empty() || text_.front() == ')') return false;
    const char first = text_.front();
    if (first == ',' || first == '/') {
      if (first == '/') ++line_;
      text_.remove_prefix(1);
      return true;
    }
    const std::size_t end = std::min(text_.find_first_of(",/)"), text_.size());
    Take(ReadItem(text_.substr(0, end)));
    text_.remove_prefix(end);
    return true;
  }

  void Take(const Item& item) {
    if (item.letter == 0) return Fail(item, "cannot be read");
    if (!item.Is("DEFGIAXH")) return;
    if (!item.whole) return Fail(item, "cannot be read");
    if (item.repeat == 0) return Fail(item, "has a repeat count of 0");
    if (item.width == 0 || (item.width < 0 && !item.Is("X"))) {
      return Fail(item, "needs a width of 1 or more");
    }
    if (item.decimals > kMostDecimals) return Fail(item, "has too many decimals");
    if (item.Is("X"))
      return Advance(item, item.width < 0 ? std::max<std::int64_t>(item.repeat, 1) : item.width);
    if (item.Is("A")) return Advance(item, item.width);
    if (item.Is("H")) {
      column_ = 0;
      return Advance(item, item.width - 1);
    }
    AddFields(item);
  }

  void AddFields(const Item& item) {
    const std::int64_t repeat = item.repeat < 0 ? 1 : item.repeat;
    for (std::int64_t i = 0; i < repeat && result_.fields.size() < most_; ++i) {
      const std::int64_t first = column_;
      Advance(item, item.width);
      if (!result_.problem.empty()) return;
      result_.fields.push_back(
          {static_cast<std::int32_t>(first), static_cast<std::int32_t>(column_ - 1),
           static_cast<std::int32_t>(std::max<std::int64_t>(item.decimals, 0)), line_});
    }
  }

  void Advance(const Item& item, std::int64_t columns) {
    column_ += columns;
    if (column_ > kMostColumns) Fail(item, "reaches too far to the right");
  }

  void Fail(const Item& item, const char* what) {
    constexpr std::size_t kMostShown = 40;
    result_.problem = boost::str(boost::format("The item \"%1%\" of the format statement %2%.") %
                                 item.text.substr(0, kMostShown) % what);
  }

  std::string_view text_;
  std::size_t most_;
  std::int64_t column_ = 0;
  std::int32_t line_ = 0;
  FORMATFIELDS result_;
};

}  // namespace

FORMATFIELDS ParseFormat(std::string_view statement, std::size_t most) {
  const CString text = WithoutBlanks(statement);
  return FormatParser(text, most).Parse();
}

bool BeginsFormat(std::string_view line) {
  const auto first = std::find_if_not(line.begin(), line.end(), IsBlank);
  return first != line.end() && *first == '(';
}

int CDataDoc::GetRangeFromFormat(std::vector<RANGE_KTQ>& ranges) const {
  constexpr std::size_t kSpare = 10;
  const std::size_t size = static_cast<std::size_t>(data_.variables) + kSpare;
  FORMATFIELDS format = ParseFormat(extern_.formatStatement, size);
  const auto count = static_cast<int>(format.fields.size());
  ranges = std::move(format.fields);
  ranges.resize(size);
  return count;
}
