#include <cmath>

#include "host/Numbers.h"
#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/FileWriter.h"
#include "statrn32/Formats.h"
#include "statrn32/HtmlFiles.h"
#include "statrn32/XmlText.h"

namespace statrn32 {
namespace {

class CHtmlWriter final : public CFileWriter {
 public:
  CHtmlWriter() : CFileWriter(31) {}

 protected:
  bool PutHeader() override {
    line_ =
        "<!DOCTYPE html>\n<html>\n<head><meta charset=\"utf-8\"><title>Data</title></head>\n"
        "<body>\n<table>\n<thead><tr>";
    for (const VARIABLE& variable : Variables()) {
      line_ += "<th>";
      AppendXmlText(variable.name, &line_);
      line_ += "</th>";
    }
    return Put(line_ + "</tr></thead>\n<tbody>\n");
  }

  // A missing value is an empty cell.
  bool PutRecord(const std::vector<OUT_CELL>& cells) override {
    line_ = "<tr>";
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const bool text = Variables()[i].type == ST_TYPE_STRING;
      line_ += "<td>";
      if (!cells[i].missing && text) {
        AppendXmlText(cells[i].text, &line_);
      } else if (!cells[i].missing && !std::isnan(cells[i].number)) {
        line_ += FormatShortest(cells[i].number);
      }
      line_ += "</td>";
    }
    return Put(line_ += "</tr>\n");
  }

  bool PutEnd() override { return Put("</tbody>\n</table>\n</body>\n</html>\n"); }

 private:
  std::string line_;
};

}  // namespace

constexpr LIMITS kHtmlLimits = {
    .textRemark =
        "An empty text and a missing one are the same; runs of blanks become one. Cases without "
        "any value at the end leave no trace."};

// A page may begin with blanks, remarks and declarations.
bool IsHtml(std::string_view first) {
  std::string lower(first);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  std::string_view text = Trimmed(lower);
  if (text.substr(0, 3) == "\xEF\xBB\xBF") text = Trimmed(text.substr(3));
  if (text.empty() || text.front() != '<') return false;
  for (const std::string_view mark : {"<!doctype html", "<html", "<table", "<head", "<body"}) {
    if (text.substr(0, mark.size()) == mark) return true;
  }
  return text.substr(0, 4) == "<!--" && text.find("<html") != std::string_view::npos;
}

std::unique_ptr<CWriter> WriteHtml() {
  return std::make_unique<CHtmlWriter>();
}

}  // namespace statrn32
