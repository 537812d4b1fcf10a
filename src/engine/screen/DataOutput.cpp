#include "engine/screen/DataOutput.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>

#include "datadoc/VsfLayout.h"
#include "engine/screen/Faults.h"
#include "host/Numbers.h"
#include "host/Text.h"

namespace {

std::vector<std::int32_t> SavedVariables(const JOB& job) {
  if (!job.selected.empty()) {
    std::vector<std::int32_t> variables = job.selected;
    variables.insert(variables.end(), job.added.begin(), job.added.end());
    return variables;
  }
  std::vector<std::int32_t> variables;
  for (std::int32_t i = 0; i < job.data.variables; ++i) {
    if (!job.selection.Drops(i)) variables.push_back(i);
  }
  return variables;
}

// Where variable `number`, counted from 1, has gone, counted from 1; 0 when it is not saved.
std::int32_t NewNumber(const std::vector<std::int32_t>& variables, std::int32_t number) {
  for (std::size_t j = 0; j < variables.size(); ++j) {
    if (variables[j] == number - 1) return static_cast<std::int32_t>(j) + 1;
  }
  return 0;
}

TORVIKSTRUCT SavedDescription(const JOB& job, const std::vector<std::int32_t>& variables) {
  TORVIKSTRUCT data = job.data;
  data.ResizeArrays(0);
  data.ResizeArrays(variables.size());
  data.variables = static_cast<std::int32_t>(variables.size());
  data.weightVariable = NewNumber(variables, job.data.weightVariable);
  data.groupVariable = NewNumber(variables, job.data.groupVariable);
  for (std::size_t j = 0; j < variables.size(); ++j) {
    const auto from = static_cast<std::size_t>(variables[j]);
    data.variable[j] = job.data.variable[from];
    for (std::size_t k = 0; k < kCategorySlots; ++k) {
      data.categoryLabels[j * kCategorySlots + k] =
          job.data.categoryLabels[from * kCategorySlots + k];
      data.categoryValues[j * kCategorySlots + k] =
          job.data.categoryValues[from * kCategorySlots + k];
    }
  }
  return data;
}

// A blank has to stand between two numbers.
bool AppendCell(double value, const OUTPUTLINE& output, CString& line) {
  const CString text =
      FormatFixed(value, static_cast<int>(output.width), static_cast<int>(output.decimals));
  line += text;
  return text.size() <= static_cast<std::size_t>(output.width) &&
         (text.size() == 1 || text.front() == ' ' || line.size() == text.size());
}

class CDataWriter {
 public:
  CDataWriter(ENGINERUN& run, COutputFile& file)
      : run_(run),
        file_(file),
        variables_(SavedVariables(run.job)),
        asSystemFile_(
            EqualIgnoringCase(std::filesystem::path(file.Name()).extension().string(), ".VSF")) {}

  bool Write(FAULT& fault) {
    std::vector<CASECOLUMN> columns;
    columns.reserve(variables_.size());
    for (const std::int32_t variable : variables_) columns.push_back({variable, {}});
    TORVIKSTRUCT data = SavedDescription(run_.job, variables_);
    const int kind = data.format == kOldFormat && NamesFit(data) ? kOldFormat : kNewFormat;
    if (asSystemFile_ && run_.repetition == 0) {
      file_.Write(EncodeVsfDescription(data, kind, VsfFiller::Spaces));
    }
    CCaseSource source(run_.file, run_.job, run_.seed, run_.repetition, run_.threads);
    source.SetColumns(std::move(columns));
    source.IgnoreWeights();
    if (!run_.Pass(
            source, [this](const CASEBLOCK& block) { Add(block.cells); }, fault))
      return false;
    const std::int64_t records = source.Counts().used * (run_.repetition + 1);
    if (records > std::numeric_limits<std::int32_t>::max()) {
      problem_ = "the data of all repetitions have more cases than a system data file can hold";
    }
    if (!problem_.empty()) {
      fault = OutputFault(run_, problem_,
                          "Give larger fields with WI= and ND=, or a file name that ends in .VSF.");
      return false;
    }
    if (asSystemFile_) {
      data.records = static_cast<std::int32_t>(records);
      const CString description = EncodeVsfDescription(data, kind, VsfFiller::Spaces);
      file_.WriteAtStart(description.data(), description.size());
    }
    file_.Flush();
    return true;
  }

 private:
  static bool NamesFit(const TORVIKSTRUCT& data) {
    constexpr std::size_t kOldNameBytes = 8;
    for (const VARSTRUCT& variable : data.variable) {
      if (variable.name.size() > kOldNameBytes) return false;
    }
    return true;
  }

  void Add(const stats::CaseBlock& block) {
    const std::size_t count = variables_.size();
    row_.resize(count);
    for (std::int64_t i = 0; i < block.cases; ++i) {
      const double* const cells = block.cells + i * block.stride;
      for (std::size_t j = 0; j < count; ++j) {
        row_[j] = std::isnan(cells[j]) ? kMissingCode : cells[j];
      }
      if (asSystemFile_) {
        file_.Write(row_.data(), count * sizeof(double));
      } else {
        AddText();
      }
    }
  }

  void AddText() {
    CString line;
    for (std::size_t j = 0; j < row_.size(); ++j) {
      if (AppendCell(row_[j], run_.job.output, line) || !problem_.empty()) continue;
      const auto variable = static_cast<std::size_t>(variables_[j]);
      problem_ = "the value " + FormatShortest(row_[j]) + " of variable " +
                 TextForDisplay(run_.job.data.variable[variable].name) +
                 " does not fit into a field of width " + std::to_string(run_.job.output.width) +
                 " with " + std::to_string(run_.job.output.decimals) + " decimals (RA)";
    }
    file_.Write(line + '\n');
  }

  ENGINERUN& run_;
  COutputFile& file_;
  std::vector<std::int32_t> variables_;
  bool asSystemFile_;
  std::vector<double> row_;
  CString problem_;
};

}  // namespace

std::vector<CString> SavedFileNames(const JOB& job) {
  std::int64_t dataSets = 1;
  for (const PROCEDURE& procedure : job.procedures) {
    const auto* const imputation = std::get_if<MULTIPLEIMPUTATION>(&procedure.what);
    if (imputation != nullptr) dataSets = std::max(dataSets, imputation->dataSets);
  }
  const CString& name = job.output.dataFile;
  if (dataSets == 1 || name.empty()) return {name};
  const std::size_t dot = name.size() - std::filesystem::path(name).extension().string().size();
  std::vector<CString> names;
  for (std::int64_t i = 1; i <= dataSets; ++i)
    names.push_back(name.substr(0, dot) + '_' + std::to_string(i) + name.substr(dot));
  return names;
}

bool SaveData(ENGINERUN& run, FAULT& fault) {
  COutputFile* const file = run.files.Find("RA", run.dataSet);
  return file == nullptr || CDataWriter(run, *file).Write(fault);
}
