#include "statrn32/FileWriter.h"

#include <algorithm>
#include <cmath>

#include "host/Numbers.h"
#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/Formats.h"

namespace statrn32 {

CFileWriter::CFileWriter(std::int32_t code) : limits_(FindFormat(code)->limits) {}

bool CFileWriter::Begin(const std::string& name, const DICTIONARY& dictionary, std::int64_t cases) {
  name_ = name;
  dictionary_ = dictionary;
  cases_ = cases;
  CutLabels();
  return CheckLimits() && Create() && PutHeader();
}

void CFileWriter::CutLabels() {
  for (VARIABLE& variable : dictionary_.variables) {
    variable.label = CutText(variable.label, limits_->labelBytes);
  }
  if (limits_->valueLabelBytes == 0) {
    for (VARIABLE& variable : dictionary_.variables) variable.labelSet = -1;
  }
  for (LABEL_SET& set : dictionary_.labelSets) {
    for (VALUE_LABEL& label : set) label.label = CutText(label.label, limits_->valueLabelBytes);
  }
}

// A table that does not fit is refused, never cut.
bool CFileWriter::CheckLimits() {
  const std::string why = WhyTooLarge(*limits_, dictionary_, cases_);
  return why.empty() || FailFile(why);
}

bool CFileWriter::Create() {
  return file_.Create(name_) || FailFile("cannot be created: " + file_.Reason());
}

bool CFileWriter::WriteRecord(const std::vector<OUT_CELL>& cells) {
  if (!Error().empty()) return false;
  if (written_ >= cases_) {
    return FailFile("more records than the " + std::to_string(cases_) + " announced");
  }
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (!cells[i].missing && !CheckCell(cells[i], i)) return false;
  }
  if (!PutRecord(cells)) return false;
  ++written_;
  return true;
}

bool CFileWriter::CheckCell(const OUT_CELL& cell, std::size_t variable) {
  const VARIABLE& column = Variables()[variable];
  if (column.type != ST_TYPE_STRING) {
    if (!(std::fabs(cell.number) > limits_->largest) || std::isnan(cell.number)) return true;
    return FailFile("the value " + FormatShortest(cell.number) + " of " + Place(variable) +
                    " is too large for this file type");
  }
  const auto bytes = static_cast<std::size_t>(std::max(1, column.width));
  if (cell.text.size() <= bytes) return true;
  return FailFile("the text of " + Place(variable) + " is longer than the " +
                  std::to_string(bytes) + " bytes announced");
}

std::string CFileWriter::Place(std::size_t variable) const {
  return "the variable " + Variables()[variable].name + " in record " +
         std::to_string(written_ + 1);
}

bool CFileWriter::Finish() {
  if (Error().empty() && written_ != cases_) {
    FailFile(std::to_string(written_) + " records were written where " + std::to_string(cases_) +
             " were announced");
  }
  if (Error().empty()) PutEnd();
  if (!Close() && Error().empty()) FailFile("cannot be completed");
  return Error().empty();
}

bool CFileWriter::Close() {
  return file_.Close() || FailFile(file_.Reason());
}

bool CFileWriter::Put(std::string_view bytes) {
  return file_.Write(bytes.data(), bytes.size()) || FailFile(file_.Reason());
}

}  // namespace statrn32
