#include "engine/syntax/Expression.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace {

constexpr std::size_t kChunk = 512;  // cases at a time, so that the columns stay in the cache

// The finaliser of a well-known generator of 64-bit numbers: every bit of the input moves every bit
// of the output.
std::uint64_t Mix(std::uint64_t x) {
  x += 0x9E3779B97F4A7C15U;
  x = (x ^ (x >> 30U)) * 0xBF58476D1CE4E5B9U;
  x = (x ^ (x >> 27U)) * 0x94D049BB133111EBU;
  return x ^ (x >> 31U);
}

// Uniform on (0, 1), the ends left out.
double Unit(std::uint64_t bits) {
  return (static_cast<double>(bits >> 11U) + 0.5) * 0x1p-53;
}

class CRandom {
 public:
  CRandom(const RANDOMSTREAM& stream, std::int32_t call)
      : key_(Mix(Mix(Mix(Mix(stream.seed) ^ stream.repetition) ^ stream.line) ^
                 static_cast<std::uint64_t>(call))) {}

  double Uniform(std::int64_t caseNumber) const { return Unit(Bits(caseNumber, 0)); }
  double Normal(std::int64_t caseNumber) const {
    const double radius = std::sqrt(-2 * std::log(Unit(Bits(caseNumber, 0))));
    return radius * std::cos(2 * std::numbers::pi * Unit(Bits(caseNumber, 1)));
  }

 private:
  std::uint64_t Bits(std::int64_t caseNumber, std::uint64_t which) const {
    return Mix(Mix(key_ ^ static_cast<std::uint64_t>(caseNumber)) + which);
  }
  std::uint64_t key_;
};

// NaN in either operand gives NaN, also where pow alone would not (NaN ** 0).
double PowerOf(double base, double exponent) {
  if (std::isnan(base) || std::isnan(exponent)) return std::numeric_limits<double>::quiet_NaN();
  return std::pow(base, exponent);
}

template <typename Function>
void Change(double* column, std::size_t cases, Function function) {
  for (std::size_t i = 0; i < cases; ++i) column[i] = function(column[i]);
}

template <typename Function>
void Join(double* left, const double* right, std::size_t cases, Function function) {
  for (std::size_t i = 0; i < cases; ++i) left[i] = function(left[i], right[i]);
}

}  // namespace

bool CExpression::IsRandom() const {
  return std::any_of(steps_.begin(), steps_.end(), [](const Step& step) {
    return step.operation == Operation::Normal || step.operation == Operation::Uniform;
  });
}

void CExpression::EvaluateChunk(const EVALUATIONBLOCK& block, const RANDOMSTREAM& stream,
                                double* stack) const {
  double* top = stack;  // behind the last column
  for (const Step& step : steps_) {
    double* const last = top - kChunk;
    double* const before = last - kChunk;
    switch (step.operation) {
      case Operation::Constant:
        std::fill_n(top, block.cases, step.constant);
        break;
      case Operation::Variable:
        for (std::size_t i = 0; i < block.cases; ++i) {
          top[i] = block.cells[i * block.stride + static_cast<std::size_t>(step.variable)];
        }
        break;
      case Operation::Normal: {
        const CRandom random(stream, step.variable);
        for (std::size_t i = 0; i < block.cases; ++i) top[i] = random.Normal(block.numbers[i]);
        break;
      }
      case Operation::Uniform: {
        const CRandom random(stream, step.variable);
        for (std::size_t i = 0; i < block.cases; ++i) top[i] = random.Uniform(block.numbers[i]);
        break;
      }
      case Operation::Negate:
        Change(last, block.cases, [](double x) { return -x; });
        continue;
      case Operation::Log:
        Change(last, block.cases, [](double x) { return std::log(x); });
        continue;
      case Operation::Exp:
        Change(last, block.cases, [](double x) { return std::exp(x); });
        continue;
      case Operation::Sqrt:
        Change(last, block.cases, [](double x) { return std::sqrt(x); });
        continue;
      case Operation::Abs:
        Change(last, block.cases, [](double x) { return std::abs(x); });
        continue;
      case Operation::Add:
        Join(before, last, block.cases, [](double a, double b) { return a + b; });
        top = last;
        continue;
      case Operation::Subtract:
        Join(before, last, block.cases, [](double a, double b) { return a - b; });
        top = last;
        continue;
      case Operation::Multiply:
        Join(before, last, block.cases, [](double a, double b) { return a * b; });
        top = last;
        continue;
      case Operation::Divide:
        Join(before, last, block.cases, [](double a, double b) { return a / b; });
        top = last;
        continue;
      case Operation::Power:
        Join(before, last, block.cases, PowerOf);
        top = last;
        continue;
    }
    top += kChunk;
  }
}

std::int64_t CExpression::Evaluate(const EVALUATIONBLOCK& block, const RANDOMSTREAM& stream,
                                   double* out) const {
  std::vector<double> stack(depth_ * kChunk);
  std::int64_t undefined = 0;
  for (std::size_t first = 0; first < block.cases; first += kChunk) {
    const std::size_t cases = std::min(kChunk, block.cases - first);
    const double* const cells = block.cells + first * block.stride;
    EvaluateChunk({cells, block.stride, cases, block.numbers + first}, stream, stack.data());
    for (std::size_t i = 0; i < cases; ++i) {
      double result = stack[i];
      if (!std::isfinite(result)) {
        result = std::numeric_limits<double>::quiet_NaN();
        const double* const row = cells + i * block.stride;
        const bool missingIn = std::any_of(
            variables_.begin(), variables_.end(),
            [row](std::int32_t v) { return std::isnan(row[static_cast<std::size_t>(v)]); });
        undefined += missingIn ? 0 : 1;
      }
      out[first + i] = result;
    }
  }
  return undefined;
}
