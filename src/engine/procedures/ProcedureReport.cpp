#include "engine/procedures/ProcedureReport.h"

#include "datadoc/VariableNames.h"
#include "host/Text.h"

FAULT ProcedureFault(const PROCEDURE& procedure, CString cause, CString remedy) {
  return {procedure.line.number, CString(Trimmed(procedure.line.text)), std::move(cause),
          std::move(remedy)};
}

CString CountText(double count, const CString& what) {
  return CReport::Count(count) + ' ' + what + (count == 1 ? "" : "s");
}

CString CommaList(const std::vector<CString>& names) {
  CString text;
  for (const CString& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

CString NameList(const TORVIKSTRUCT& data, const VARIABLELIST& variables) {
  CString names;
  for (std::size_t i = 0; i < variables.size(); ++i) {
    if (i > 0) names += i + 1 < variables.size() ? ", " : " and ";
    names += ShownName(data, variables[i]);
  }
  return names;
}

CFactTable::CFactTable() {
  table_.columns = {{"", true}, {"", false}};
}

TABLE MatrixTable(const CReport& report, const std::vector<CString>& rows,
                  const std::vector<CString>& headings, const Eigen::MatrixXd& matrix) {
  TABLE table;
  table.narrowest = static_cast<std::size_t>(report.Numbers().width);
  table.columns.push_back({"", true});
  for (const CString& heading : headings) table.columns.push_back({heading, false});
  for (Eigen::Index i = 0; i < matrix.rows(); ++i) {
    std::vector<CString> row = {rows[static_cast<std::size_t>(i)]};
    for (Eigen::Index j = 0; j < matrix.cols(); ++j) row.push_back(report.Number(matrix(i, j)));
    table.rows.push_back(std::move(row));
  }
  return table;
}

TABLE TriangleTable(const CReport& report, const std::vector<CString>& names,
                    const Eigen::MatrixXd& matrix) {
  TABLE table = MatrixTable(report, names, names, matrix);
  for (std::size_t i = 0; i < table.rows.size(); ++i) table.rows[i].resize(i + 2);
  return table;
}

VARIABLELIST AddVariables(JOB& job, const CString& prefix, std::size_t count) {
  CString used = prefix;
  CVariableNames names(job.data);
  const auto taken = [&] {
    for (std::size_t i = 1; i <= count; ++i) {
      if (names.Find(used + std::to_string(i))) return true;
    }
    return false;
  };
  while (taken()) used += '_';
  VARIABLELIST added;
  for (std::size_t i = 1; i <= count; ++i) {
    job.data.ResizeArrays(static_cast<std::size_t>(job.data.variables) + 1);
    VARSTRUCT& variable = job.data.variable[static_cast<std::size_t>(job.data.variables)];
    variable = VARSTRUCT();
    variable.name = used + std::to_string(i);
    variable.type = kContinuous;
    added.push_back(job.data.variables++);
  }
  job.added.insert(job.added.end(), added.begin(), added.end());
  return added;
}
