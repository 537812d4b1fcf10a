// Expressions of NE lines: read once, evaluated on many cases at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "datadoc/VariableNames.h"
#include "host/Types.h"

// Which random numbers NORMAL() and UNIFORM() give: they depend on these, on the case's number and
// on the place of the call, and on nothing else, so that a case gets the same number in every pass.
struct RANDOMSTREAM {
  std::uint64_t seed = 0;
  std::uint64_t repetition = 0;
  std::uint64_t line = 0;
};

// The cases to evaluate on: rows of cells with missing values as NaN.
struct EVALUATIONBLOCK {
  const double* cells = nullptr;
  std::size_t stride = 0;  // cells from one case to the next
  std::size_t cases = 0;
  const std::int64_t* numbers = nullptr;  // the cases' numbers in the file, counted from 1
};

class CExpression {
 public:
  // Reads `text`. Returns false, with what was expected in `problem`, when it is no expression.
  //   sum     = product { ("+" | "-") product }
  //   product = sign { ("*" | "/") sign }
  //   sign    = [ "+" | "-" ] sign | power
  //   power   = value [ "**" sign ]
  //   value   = number | name | function "(" [ sum ] ")" | "(" sum ")"
  bool Parse(std::string_view text, const CVariableNames& names, CString& problem);

  // The variables that it uses, counted from 0, each once.
  const std::vector<std::int32_t>& Variables() const { return variables_; }

  // Does it draw random numbers?
  bool IsRandom() const;

  // Writes one value a case to `out`: NaN where a variable is missing or where the result is no
  // finite number. Returns how many of the second kind there are. May be called from several
  // threads.
  std::int64_t Evaluate(const EVALUATIONBLOCK& block, const RANDOMSTREAM& stream,
                        double* out) const;

 private:
  friend class CExpressionParser;

  enum class Operation {
    Constant,
    Variable,
    Normal,
    Uniform,  // put a column on the stack
    Negate,
    Log,
    Exp,
    Sqrt,
    Abs,  // change the last column
    Add,
    Subtract,
    Multiply,
    Divide,
    Power,  // join the last two columns
  };
  struct Step {
    Operation operation;
    double constant = 0;
    std::int32_t variable = 0;  // of Variable; the number of the call for Normal and Uniform
  };

  void EvaluateChunk(const EVALUATIONBLOCK& block, const RANDOMSTREAM& stream, double* stack) const;

  std::vector<Step> steps_;
  std::vector<std::int32_t> variables_;
  std::size_t depth_ = 0;  // columns on the stack at most
};

// The functions that an expression may call.
std::vector<std::string_view> ExpressionFunctions();
