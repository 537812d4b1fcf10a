// Reads the tables of a page.
#include <algorithm>
#include <charconv>
#include <cstring>
#include <map>
#include <set>

#include <libxml/HTMLparser.h>

#include "host/Text.h"
#include "statrn32/HtmlFiles.h"
#include "statrn32/InputFile.h"
#include "statrn32/NumberText.h"
#include "statrn32/SheetReader.h"
#include "statrn32/TextDecoder.h"

namespace statrn32 {
namespace {

bool IsElement(const xmlNode* node, const char* name) {
  return node->type == XML_ELEMENT_NODE &&
         EqualIgnoringCase(reinterpret_cast<const char*>(node->name), name);
}

std::string AttributeOf(xmlNode* node, const char* name) {
  xmlChar* const value = xmlGetProp(node, reinterpret_cast<const xmlChar*>(name));
  std::string text = value != nullptr ? reinterpret_cast<const char*>(value) : "";
  xmlFree(value);
  return text;
}

// Calls `visit` for the elements below `node` in their order; what it says false to is not entered.
template <typename VISIT>
void Walk(xmlNode* node, const VISIT& visit) {
  for (xmlNode* child = node->children; child != nullptr; child = child->next) {
    if (visit(child)) Walk(child, visit);
  }
}

// The text of a cell; runs of blanks are one, a line break too.
std::string TextOf(xmlNode* cell) {
  std::string text;
  Walk(cell, [&](xmlNode* node) {
    if (node->type == XML_TEXT_NODE && node->content != nullptr) {
      text += reinterpret_cast<const char*>(node->content);
    } else if (IsElement(node, "br") || IsElement(node, "p") || IsElement(node, "div")) {
      text += ' ';
    }
    return !IsElement(node, "table") && !IsElement(node, "script") && !IsElement(node, "style");
  });
  constexpr std::string_view kHardBlank = "\xC2\xA0";
  for (std::size_t at = 0; (at = text.find(kHardBlank, at)) != std::string::npos;) {
    text.replace(at, kHardBlank.size(), " ");
  }
  std::string tidy;
  for (const char c : text) {
    const bool blank = c == ' ' || c == '\n' || c == '\t' || c == '\r';
    if (!blank) tidy += c;
    if (blank && !tidy.empty() && tidy.back() != ' ') tidy += ' ';
  }
  return std::string(Trimmed(tidy));
}

std::uint32_t SpanOf(xmlNode* cell, const char* name) {
  constexpr std::uint32_t kMostSpan = 16384;
  const std::string text = AttributeOf(cell, name);
  std::uint32_t span = 1;
  std::from_chars(text.data(), text.data() + text.size(), span);
  return std::clamp<std::uint32_t>(span, 1, kMostSpan);
}

struct PAGE_CELL {
  std::uint32_t row;
  std::uint32_t column;
  std::string text;
  std::string exact;  // the number as the program that wrote the page knew it
  bool heading;
};

// Where each cell stands. A cell that spans rows covers its columns in the rows below: for each
// column the first row that is free again. False when cells span more than those of any
// sound table do.
bool FindCells(xmlNode* table, std::vector<PAGE_CELL>* cells) {
  constexpr std::uint64_t kMostPassedOver = 10'000'000;
  std::uint64_t passedOver = 0;
  std::map<std::uint32_t, std::uint32_t> freeAgain;
  std::uint32_t row = 0;
  std::uint32_t column = 0;
  const auto covered = [&](std::uint32_t c) {
    const auto entry = freeAgain.find(c);
    return entry != freeAgain.end() && entry->second > row;
  };
  bool inRow = false;
  Walk(table, [&](xmlNode* node) {
    if (IsElement(node, "table")) return false;
    if (IsElement(node, "tr")) {
      if (inRow) ++row;
      inRow = true;
      column = 0;
      return true;
    }
    if (!IsElement(node, "td") && !IsElement(node, "th")) return true;
    for (; passedOver < kMostPassedOver && covered(column); ++column) ++passedOver;
    if (passedOver == kMostPassedOver) return false;
    std::string exact = AttributeOf(node, "sdval");
    if (exact.empty()) exact = AttributeOf(node, "x:num");
    if (exact.empty()) exact = AttributeOf(node, "num");
    cells->push_back({row, column, TextOf(node), std::move(exact), IsElement(node, "th")});
    const std::uint32_t columns = SpanOf(node, "colspan");
    const std::uint32_t rows = SpanOf(node, "rowspan");
    if (rows > 1) {
      constexpr std::uint32_t kMostCovered = 1024;
      for (std::uint32_t i = 0; i < std::min(columns, kMostCovered); ++i) {
        freeAgain[column + i] = row + rows;
      }
    }
    column += columns;
    return false;
  });
  return passedOver < kMostPassedOver;
}

// The encoding that a page names in its head, or that its first bytes tell; empty when there is
// none.
std::string EncodingOf(std::string_view page) {
  constexpr std::size_t kHead = 8192;
  constexpr std::string_view kWord = "charset";
  if (page.substr(0, 2) == "\xFF\xFE" || page.substr(0, 2) == "\xFE\xFF") return "UTF-16";
  std::string head(page.substr(0, kHead));
  std::transform(head.begin(), head.end(), head.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  const std::size_t word = head.find(kWord);
  if (word == std::string::npos) return {};
  const std::size_t begin = head.find_first_not_of("= \t\"'", word + kWord.size());
  if (begin == std::string::npos) return {};
  return head.substr(begin, head.find_first_of(" \t\r\n\"';/>", begin) - begin);
}

class CHtmlWorkbook final : public CWorkbook {
 public:
  ~CHtmlWorkbook() override {
    if (page_ != nullptr) xmlFreeDoc(page_);
  }

  bool Open(const std::string& name, const READ_OPTIONS& options) override;
  std::vector<std::string> Sheets() const override { return names_; }
  std::size_t Preferred() const override { return preferred_; }
  bool Load(std::size_t sheet, CSheet* out) override;
  std::string GuessedEncoding() const override { return guessedEncoding_; }

 private:
  void Decode(const std::string& chosen, std::string* page);
  void ListTables();

  htmlDocPtr page_ = nullptr;
  std::vector<xmlNode*> tables_;
  std::vector<std::string> names_;
  std::size_t preferred_ = 0;
  std::string guessedEncoding_;
};

bool CHtmlWorkbook::Open(const std::string& name, const READ_OPTIONS& options) {
  constexpr std::int64_t kMostBytes = 256 << 20;
  CInputFile file;
  if (!file.Open(name)) return Fail("the file cannot be opened");
  if (file.Size() > kMostBytes) return Fail("the page has more than 256 MiB");
  std::string bytes(static_cast<std::size_t>(file.Size()), '\0');
  if (file.Read(bytes.data(), file.Size()) != file.Size()) return Fail("the file has changed");
  Decode(options.encoding, &bytes);
  constexpr int kOptions = HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING |
                           HTML_PARSE_NONET | HTML_PARSE_COMPACT;
  page_ = htmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr, "UTF-8", kOptions);
  if (page_ == nullptr) return Fail("the page cannot be read");
  ListTables();
  return !tables_.empty() || Fail("there is no table in this page");
}

// The parser ends at a byte that an encoding does not have, so the page becomes UTF-8 before. One
// that says it is UTF-8 and is not is taken for one that says nothing.
void CHtmlWorkbook::Decode(const std::string& chosen, std::string* page) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  std::string encoding = chosen.empty() ? EncodingOf(*page) : chosen;
  if (chosen.empty() && (encoding == "utf-8" || encoding == "utf8")) encoding.clear();
  CTextDecoder decoder;
  decoder.SetEncoding(encoding.c_str());
  std::string text;
  decoder.AppendWhole(*page, &text);
  guessedEncoding_ = decoder.GuessedEncoding();
  *page = text.substr(text.compare(0, kMark.size(), kMark) == 0 ? kMark.size() : 0);
}

// Named by their caption or their number.
void CHtmlWorkbook::ListTables() {
  Walk(reinterpret_cast<xmlNode*>(page_), [&](xmlNode* node) {
    if (IsElement(node, "table")) tables_.push_back(node);
    return true;
  });
  std::size_t largest = 0;
  std::set<std::string> taken;
  for (std::size_t i = 0; i < tables_.size(); ++i) {
    std::size_t cells = 0;
    std::string name;
    Walk(tables_[i], [&](xmlNode* node) {
      if (IsElement(node, "caption") && name.empty()) name = TextOf(node);
      if (IsElement(node, "td") || IsElement(node, "th")) ++cells;
      return !IsElement(node, "table");
    });
    if (name.empty() || !taken.insert(name).second) name = "table " + std::to_string(i + 1);
    names_.push_back(name);
    if (cells <= largest) continue;
    largest = cells;
    preferred_ = i;
  }
}

bool CHtmlWorkbook::Load(std::size_t sheet, CSheet* out) {
  std::vector<PAGE_CELL> cells;
  if (!FindCells(tables_[sheet], &cells)) {
    return Fail("the cells of \"" + names_[sheet] + "\" span too many rows");
  }
  std::set<std::uint32_t> commas;  // columns that write their decimals so
  for (const PAGE_CELL& cell : cells) {
    if (NeedsComma(cell.text)) commas.insert(cell.column);
  }
  for (const PAGE_CELL& cell : cells) {
    const bool comma = commas.count(cell.column) > 0;
    const NUMBER_STYLE style = comma ? NUMBER_STYLE::Comma : NUMBER_STYLE::Point;
    const ISO_MOMENT moment = ParseIsoMoment(cell.text);
    double number = 0;
    if (!cell.exact.empty() && ParseNumberText(cell.exact, NUMBER_STYLE::Point, &number)) {
      out->Number(cell.row, cell.column, number);
    } else if (moment.kind != DATE_KIND::None) {
      out->Number(cell.row, cell.column, moment.serial, moment.kind);
    } else if (!cell.heading && ParseNumberText(cell.text, style, &number)) {
      out->Number(cell.row, cell.column, number);
    } else {
      out->Text(cell.row, cell.column, cell.text);
    }
  }
  return true;
}

}  // namespace

std::unique_ptr<CReader> ReadHtml() {
  return std::make_unique<CSheetReader>(31, std::make_unique<CHtmlWorkbook>());
}

}  // namespace statrn32
