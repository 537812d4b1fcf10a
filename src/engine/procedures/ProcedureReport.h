// What the procedures' sections share: faults, tables of estimates, new variables.
#pragma once

#include <vector>

#include <Eigen/Core>

#include "engine/run/EngineRun.h"
#include "engine/screen/Variables.h"
#include "engine/stats/Status.h"

FAULT ProcedureFault(const PROCEDURE& procedure, CString cause, CString remedy);

// "1 factor", "2 factors"
CString CountText(double count, const CString& what);

// "x1, x2, x3"
CString CommaList(const std::vector<CString>& names);

// "x1, x2 and x3"
CString NameList(const TORVIKSTRUCT& data, const VARIABLELIST& variables);

// Rows "what   value" without headings.
class CFactTable {
 public:
  CFactTable();
  explicit CFactTable(TABLE rows) : table_(std::move(rows)) {}  // of two columns
  void Add(const CString& what, const CString& value) { table_.rows.push_back({what, value}); }
  void Write(CReport& report) const { report.Table(table_); }

 private:
  TABLE table_;
};

// A matrix with a row a variable; `headings` name its columns.
TABLE MatrixTable(const CReport& report, const std::vector<CString>& rows,
                  const std::vector<CString>& headings, const Eigen::MatrixXd& matrix);
// Its lower triangle.
TABLE TriangleTable(const CReport& report, const std::vector<CString>& names,
                    const Eigen::MatrixXd& matrix);

// Makes continuous variables behind the others, saved by RA: prefix1, prefix2 ... ; a name that is
// taken gets an underscore behind its prefix.
VARIABLELIST AddVariables(JOB& job, const CString& prefix, std::size_t count);
