#include <algorithm>
#include <cmath>

#include "host/Numbers.h"
#include "host/statrn32.h"
#include "statrn32/ExcelFiles.h"
#include "statrn32/FileWriter.h"
#include "statrn32/Formats.h"
#include "statrn32/OfficeFiles.h"
#include "statrn32/XmlText.h"
#include "statrn32/ZipFile.h"

namespace statrn32 {
namespace {

constexpr std::string_view kXmlHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

// What both packages share: the sheet's part is written row by row.
class COfficeWriter : public CFileWriter {
 protected:
  explicit COfficeWriter(std::int32_t code) : CFileWriter(code), package_(&File()) {}

  bool PutRecord(const std::vector<OUT_CELL>& cells) override {
    BeginRow();
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const bool text = Variables()[i].type == ST_TYPE_STRING;
      const bool nothing =
          cells[i].missing || (text ? cells[i].text.empty() : std::isnan(cells[i].number));
      if (nothing) {
        AppendEmpty();
      } else if (text) {
        AppendText(cells[i].text);
      } else {
        AppendNumber(FormatShortest(cells[i].number));
      }
    }
    EndRow();
    constexpr std::size_t kEnough = std::size_t{1} << 17;
    return rows_.size() < kEnough || Flush();
  }

  void PutNames() {
    BeginRow();
    for (const VARIABLE& variable : Variables()) AppendText(variable.name);
    EndRow();
  }

  bool Flush() {
    const bool written = package_.Write(rows_);
    rows_.clear();
    return Check(written);
  }
  bool Check(bool written) {
    return written || FailFile(File().Reason().empty() ? "the package would be larger than 4 GiB"
                                                       : File().Reason());
  }

  virtual void BeginRow() = 0;
  virtual void AppendEmpty() = 0;
  virtual void AppendText(std::string_view text) = 0;
  virtual void AppendNumber(std::string_view number) = 0;
  virtual void EndRow() = 0;

  CZipWriter package_;
  std::string rows_;
};

class CXlsxWriter final : public COfficeWriter {
 public:
  CXlsxWriter() : COfficeWriter(900) {}

 protected:
  bool PutHeader() override;
  bool PutEnd() override;
  void BeginRow() override {
    column_ = 0;
    rows_ += "<row r=\"" + std::to_string(++row_) + "\">";
  }
  void AppendEmpty() override { ++column_; }
  void AppendText(std::string_view text) override {
    AppendPlace();
    rows_ += " t=\"inlineStr\"><is><t xml:space=\"preserve\">";
    AppendXmlText(text, &rows_);
    rows_ += "</t></is></c>";
  }
  void AppendNumber(std::string_view number) override {
    AppendPlace();
    rows_.append("><v>").append(number).append("</v></c>");
  }
  void EndRow() override { rows_ += "</row>"; }

 private:
  void AppendPlace();

  std::int64_t row_ = 0;
  std::size_t column_ = 0;
};

void CXlsxWriter::AppendPlace() {
  std::string letters;
  for (std::size_t left = ++column_; left > 0; left = (left - 1) / 26) {
    letters.insert(letters.begin(), static_cast<char>('A' + (left - 1) % 26));
  }
  rows_.append("<c r=\"").append(letters).append(std::to_string(row_)).append("\"");
}

bool CXlsxWriter::PutHeader() {
  const std::string head(kXmlHead);
  const std::string main = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
  const std::string relations = "http://schemas.openxmlformats.org/package/2006/relationships";
  const std::string office = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
  const std::string type = "application/vnd.openxmlformats-officedocument.spreadsheetml.";
  const bool written =
      package_.AddPart(
          "[Content_Types].xml",
          head +
              "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
              "<Default Extension=\"rels\" "
              "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
              "<Override PartName=\"/xl/workbook.xml\" ContentType=\"" +
              type +
              "sheet.main+xml\"/><Override PartName=\"/xl/worksheets/sheet1.xml\" "
              "ContentType=\"" +
              type + "worksheet+xml\"/></Types>") &&
      package_.AddPart("_rels/.rels", head + "<Relationships xmlns=\"" + relations +
                                          "\"><Relationship Id=\"rId1\" Type=\"" + office +
                                          "/officeDocument\" Target=\"xl/workbook.xml\"/>"
                                          "</Relationships>") &&
      package_.AddPart("xl/workbook.xml",
                       head + "<workbook xmlns=\"" + main + "\" xmlns:r=\"" + office +
                           "\"><sheets><sheet name=\"Data\" sheetId=\"1\" r:id=\"rId1\"/>"
                           "</sheets></workbook>") &&
      package_.AddPart("xl/_rels/workbook.xml.rels",
                       head + "<Relationships xmlns=\"" + relations +
                           "\"><Relationship Id=\"rId1\" Type=\"" + office +
                           "/worksheet\" Target=\"worksheets/sheet1.xml\"/></Relationships>") &&
      package_.Begin("xl/worksheets/sheet1.xml");
  rows_ = head + "<worksheet xmlns=\"" + main + "\"><sheetData>";
  PutNames();
  return Check(written);
}

bool CXlsxWriter::PutEnd() {
  rows_ += "</sheetData></worksheet>";
  return Flush() && Check(package_.End() && package_.Finish());
}

class COdsWriter final : public COfficeWriter {
 public:
  COdsWriter() : COfficeWriter(901) {}

 protected:
  bool PutHeader() override;
  bool PutEnd() override;
  void BeginRow() override { rows_ += "<table:table-row>"; }
  void AppendEmpty() override { rows_ += "<table:table-cell/>"; }
  void AppendText(std::string_view text) override {
    rows_ += "<table:table-cell office:value-type=\"string\" office:string-value=\"";
    AppendXmlText(text, &rows_);
    rows_ += "\"><text:p>";
    AppendXmlText(text, &rows_);
    rows_ += "</text:p></table:table-cell>";
  }
  void AppendNumber(std::string_view number) override {
    rows_.append("<table:table-cell office:value-type=\"float\" office:value=\"").append(number);
    rows_.append("\"><text:p>").append(number).append("</text:p></table:table-cell>");
  }
  void EndRow() override { rows_ += "</table:table-row>\n"; }
};

bool COdsWriter::PutHeader() {
  constexpr std::string_view kType = "application/vnd.oasis.opendocument.spreadsheet";
  const std::string urn = "urn:oasis:names:tc:opendocument:xmlns:";
  const std::string manifest =
      std::string(kXmlHead) + "<manifest:manifest xmlns:manifest=\"" + urn +
      "manifest:1.0\" manifest:version=\"1.2\"><manifest:file-entry manifest:full-path=\"/\" "
      "manifest:media-type=\"" +
      std::string(kType) +
      "\"/><manifest:file-entry manifest:full-path=\"content.xml\" "
      "manifest:media-type=\"text/xml\"/></manifest:manifest>";
  const bool written = package_.Store("mimetype", kType) &&
                       package_.AddPart("META-INF/manifest.xml", manifest) &&
                       package_.Begin("content.xml");
  rows_ = std::string(kXmlHead) + "<office:document-content xmlns:office=\"" + urn +
          "office:1.0\" xmlns:table=\"" + urn + "table:1.0\" xmlns:text=\"" + urn +
          "text:1.0\" office:version=\"1.2\"><office:body><office:spreadsheet>"
          "<table:table table:name=\"Data\">\n";
  PutNames();
  return Check(written);
}

bool COdsWriter::PutEnd() {
  rows_ += "</table:table></office:spreadsheet></office:body></office:document-content>";
  return Flush() && Check(package_.End() && package_.Finish());
}

}  // namespace

constexpr LIMITS kXlsxLimits = {.records = 1'048'575,
                                .variables = 16384,
                                .textBytes = 32767,
                                .textRemark =
                                    "An empty text and a missing one are the same. Cases without "
                                    "any value at the end leave no trace."};
constexpr LIMITS kOdsLimits = {.records = 1'048'575,
                               .variables = 16384,
                               .textBytes = 32767,
                               .textRemark =
                                   "An empty text and a missing one are the same. Cases without "
                                   "any value at the end leave no trace."};

std::unique_ptr<CWriter> WriteXlsx() {
  return std::make_unique<CXlsxWriter>();
}
std::unique_ptr<CWriter> WriteOds() {
  return std::make_unique<COdsWriter>();
}

// Both are zip archives; the name of the first part tells them apart.
bool IsOds(std::string_view first) {
  constexpr std::string_view kFirst = "mimetypeapplication/vnd.oasis.opendocument.spreadsheet";
  return first.substr(0, 4) == "PK\3\4" && first.find(kFirst) == 30;
}
bool IsXlsx(std::string_view first) {
  if (first.substr(0, 4) != "PK\3\4" || first.size() < 38) return false;
  const std::string_view name = first.substr(30);
  for (const std::string_view part : {"[Content_Types].xml", "_rels/", "xl/", "docProps/"}) {
    if (name.substr(0, part.size()) == part) return true;
  }
  return false;
}

}  // namespace statrn32
