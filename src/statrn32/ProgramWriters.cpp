#include <algorithm>
#include <cmath>

#include "host/Numbers.h"
#include "host/statrn32.h"
#include "statrn32/FileWriter.h"
#include "statrn32/Formats.h"
#include "statrn32/ProgramFiles.h"

namespace statrn32 {
namespace {

bool IsText(const VARIABLE& variable) {
  return variable.type == ST_TYPE_STRING;
}

std::string BytesOf(const VARIABLE& variable) {
  return std::to_string(std::max(1, variable.width));
}

// In the marks given, which stand twice inside.
std::string Quoted(std::string_view text, char mark) {
  std::string quoted(1, mark);
  for (char c : text) {
    if (c == '\n' || c == '\r') c = ' ';
    quoted.append(c == mark ? 2 : 1, c);
  }
  return quoted + mark;
}

// Programs differ in their commands; the data are lines with a separator in all of them.
class CProgramWriter : public CFileWriter {
 protected:
  explicit CProgramWriter(std::int32_t code, char separator)
      : CFileWriter(code), separator_(separator) {}

  bool PutRecord(const std::vector<OUT_CELL>& cells) override {
    line_.clear();
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const bool text = IsText(Variables()[i]);
      if (i > 0) line_ += separator_;
      if (text) {
        line_ += TextOf(cells[i].missing ? std::string() : cells[i].text);
      } else if (cells[i].missing || std::isnan(cells[i].number)) {
        line_ += '.';
      } else {
        line_ += FormatShortest(cells[i].number);
      }
    }
    return Put(line_ += '\n');
  }
  virtual std::string TextOf(const std::string& text) const { return Quoted(text, '"'); }

  const LABEL_SET* LabelsOf(const VARIABLE& variable) const {
    return variable.labelSet < 0 || IsText(variable)
               ? nullptr
               : &Dictionary().labelSets[static_cast<std::size_t>(variable.labelSet)];
  }

 private:
  char separator_;
  std::string line_;
};

class CSpssProgramWriter final : public CProgramWriter {
 public:
  CSpssProgramWriter() : CProgramWriter(39, ' ') {}

 protected:
  bool PutHeader() override {
    std::string text = "SET DECIMAL=DOT.\nDATA LIST LIST NOTABLE /";
    for (const VARIABLE& v : Variables()) {
      text += "\n  " + v.name + (IsText(v) ? " (A" + BytesOf(v) + ")" : " (" + FormatOf(v) + ")");
    }
    text += "\n.\n";
    for (const VARIABLE& v : Variables()) {
      if (!v.label.empty()) {
        text += "VARIABLE LABELS " + v.name + " " + Quoted(v.label, '\'') + ".\n";
      }
      const LABEL_SET* const labels = LabelsOf(v);
      if (labels == nullptr) continue;
      text += "VALUE LABELS " + v.name;
      for (const VALUE_LABEL& label : *labels) {
        text += "\n  " + FormatShortest(label.number) + " " + Quoted(label.label, '\'');
      }
      text += ".\n";
    }
    return Put(text + "BEGIN DATA\n");
  }
  bool PutEnd() override { return Put("END DATA.\n"); }
  // Not every program that reads these takes a mark that stands twice. Separators that are named
  // would make the marks part of the texts.
  std::string TextOf(const std::string& text) const override {
    return Quoted(text, text.find('"') == std::string::npos ? '"' : '\'');
  }

 private:
  static std::string FormatOf(const VARIABLE& variable) {
    const int width = std::clamp(variable.width, 1, 40);
    const int decimals = std::clamp(variable.decimals, 0, std::min(16, width - 1));
    return "F" + std::to_string(width) + (decimals > 0 ? "." + std::to_string(decimals) : "");
  }
};

class CSasProgramWriter final : public CProgramWriter {
 public:
  CSasProgramWriter() : CProgramWriter(40, ',') {}

 protected:
  bool PutHeader() override {
    std::string text = "OPTIONS VALIDVARNAME=V7;\n";
    std::string formats;
    std::size_t number = 0;
    for (const VARIABLE& v : Variables()) {
      const LABEL_SET* const labels = LabelsOf(v);
      if (labels == nullptr) continue;
      const std::string name = "LAB" + std::to_string(++number) + "F";
      text += number == 1 ? "PROC FORMAT;\n" : "";
      text += "  VALUE " + name;
      for (const VALUE_LABEL& label : *labels) {
        text += "\n    " + FormatShortest(label.number) + "=" + Quoted(label.label, '\'');
      }
      text += ";\n";
      formats += "  FORMAT " + v.name + " " + name + ".;\n";
    }
    if (number > 0) text += "RUN;\n";
    text += "DATA DATA;\n  INFILE DATALINES DLM=',' DSD TRUNCOVER LRECL=32767;\n";
    std::string input = "  INPUT";
    for (const VARIABLE& v : Variables()) {
      text += "  LENGTH " + v.name + (IsText(v) ? " $" + BytesOf(v) : " 8") + ";\n";
      input += "\n    " + v.name + (IsText(v) ? " $" : "");
    }
    text += input + ";\n" + formats;
    for (const VARIABLE& v : Variables()) {
      if (!v.label.empty()) text += "  LABEL " + v.name + "=" + Quoted(v.label, '\'') + ";\n";
    }
    return Put(text + "DATALINES4;\n");
  }
  bool PutEnd() override { return Put(";;;;\nRUN;\n"); }
};

class CStataProgramWriter final : public CProgramWriter {
 public:
  CStataProgramWriter() : CProgramWriter(41, ' ') {}

 protected:
  bool PutHeader() override {
    std::string text = "clear\ninput";
    for (const VARIABLE& v : Variables()) {
      text += (IsText(v) ? " str" + BytesOf(v) + " " : " double ") + v.name;
    }
    return Put(text + "\n");
  }
  bool PutEnd() override {
    std::string text = "end\n";
    std::size_t number = 0;
    for (const VARIABLE& v : Variables()) {
      if (!v.label.empty()) text += "label variable " + v.name + " " + Marked(v.label) + "\n";
      const LABEL_SET* const labels = LabelsOf(v);
      if (labels == nullptr) continue;
      const std::string name = "labels" + std::to_string(++number);
      for (const VALUE_LABEL& label : *labels) {
        if (label.number != std::trunc(label.number)) continue;
        text += "label define " + name + " " + FormatShortest(label.number) + " " +
                Marked(label.label) + ", modify\n";
      }
      text += "label values " + v.name + " " + name + "\n";
    }
    return Put(text);
  }
  std::string TextOf(const std::string& text) const override { return Marked(text); }

 private:
  // A text with quotation marks inside stands in compound ones.
  static std::string Marked(std::string text) {
    for (char& c : text) {
      if (c == '\n' || c == '\r') c = ' ';
    }
    return text.find('"') == std::string::npos ? "\"" + text + "\"" : "`\"" + text + "\"'";
  }
};

constexpr std::string_view kSasReserved[] = {
    "_N_", "_ERROR_", "_NUMERIC_", "_CHARACTER_", "_ALL_", "_INFILE_", "_MSG_", "_CMD_", "_IORC_"};

}  // namespace

constexpr NAME_RULES kSasProgramNames = {32, "_", "_", true, false, false, kSasReserved};
constexpr LIMITS kSpssProgramLimits = {.textBytes = 255,
                                       .labelBytes = 255,
                                       .valueLabelBytes = 120,
                                       .largest = 1.797e308,
                                       .textRemark = "Line ends inside texts become blanks."};
constexpr LIMITS kSasProgramLimits = {.variables = 1200,  // of 25 characters in a line of 32767
                                      .textBytes = 200,
                                      .labelBytes = 256,
                                      .valueLabelBytes = 32767,
                                      .largest = 1.797e308,
                                      .textRemark = "Line ends inside texts become blanks."};
constexpr LIMITS kStataProgramLimits = {.variables = 32767,
                                        .textBytes = 2045,
                                        .labelBytes = 80,
                                        .valueLabelBytes = 32000,
                                        .largest = 8.98e307,
                                        .textRemark = "Line ends inside texts become blanks."};

std::unique_ptr<CWriter> WriteSpssProgram() {
  return std::make_unique<CSpssProgramWriter>();
}
std::unique_ptr<CWriter> WriteSasProgram() {
  return std::make_unique<CSasProgramWriter>();
}
std::unique_ptr<CWriter> WriteStataProgram() {
  return std::make_unique<CStataProgramWriter>();
}

}  // namespace statrn32
