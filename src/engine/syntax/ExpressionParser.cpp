#include <algorithm>
#include <optional>

#include "engine/syntax/Expression.h"
#include "engine/syntax/Words.h"
#include "host/Numbers.h"
#include "host/Text.h"

namespace {

constexpr int kDeepest = 100;  // nested parentheses, signs and powers
constexpr std::string_view kBlanks = " \t\r\v\f";
constexpr std::string_view kEndsOfName = " \t\r\v\f+-*/()";

bool BeginsNumber(char c) {
  return (c >= '0' && c <= '9') || c == '.';
}

}  // namespace

// Recursive descent; writes the steps in the order of evaluation. Stands at its end after a fault.
class CExpressionParser {
 public:
  CExpressionParser(std::string_view text, const CVariableNames& names, CExpression& expression)
      : rest_(text), names_(names), expression_(expression) {}

  bool Parse(CString& problem) {
    Sum();
    if (problem_.empty() && !AtEnd()) Expected("an operator (+ - * / **) or the end of the line");
    problem = problem_;
    return problem_.empty();
  }

  static std::vector<std::string_view> FunctionNames() {
    std::vector<std::string_view> names;
    for (const Function& function : kFunctions) names.push_back(function.name);
    return names;
  }

 private:
  using Operation = CExpression::Operation;

  struct Function {
    std::string_view name;
    Operation operation;
    bool hasArgument;
  };
  static constexpr Function kFunctions[] = {
      {"LOG", Operation::Log, true},        {"EXP", Operation::Exp, true},
      {"SQRT", Operation::Sqrt, true},      {"ABS", Operation::Abs, true},
      {"NORMAL", Operation::Normal, false}, {"UNIFORM", Operation::Uniform, false}};

  // Guards the stack of the program against deeply nested texts.
  class CLevel {
   public:
    explicit CLevel(CExpressionParser& parser) : parser_(parser) {
      if (++parser_.level_ > kDeepest) parser_.Fail("the expression is nested too deeply");
    }
    ~CLevel() { --parser_.level_; }
    CLevel(const CLevel&) = delete;
    CLevel& operator=(const CLevel&) = delete;

   private:
    CExpressionParser& parser_;
  };

  void SkipBlanks() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(kBlanks), rest_.size()));
  }
  bool AtEnd() {
    SkipBlanks();
    return rest_.empty();
  }
  bool Take(std::string_view token) {
    SkipBlanks();
    if (!rest_.starts_with(token)) return false;
    rest_.remove_prefix(token.size());
    return true;
  }
  bool TakeTimes() {
    SkipBlanks();
    return !rest_.starts_with("**") && Take("*");
  }
  void Fail(CString problem) {
    if (problem_.empty()) problem_ = std::move(problem);
    rest_ = {};
  }
  void Expected(std::string_view what) {
    SkipBlanks();
    Fail("expected " + CString(what) + " in the expression, found " + Shown(rest_));
  }

  void Sum() {
    const CLevel level(*this);
    Product();
    while (!AtEnd()) {
      if (Take("+")) {
        Product();
        Put({Operation::Add});
      } else if (Take("-")) {
        Product();
        Put({Operation::Subtract});
      } else {
        return;
      }
    }
  }

  void Product() {
    Sign();
    while (!AtEnd()) {
      if (TakeTimes()) {
        Sign();
        Put({Operation::Multiply});
      } else if (Take("/")) {
        Sign();
        Put({Operation::Divide});
      } else {
        return;
      }
    }
  }

  void Sign() {
    const CLevel level(*this);
    if (Take("-")) {
      Sign();
      Put({Operation::Negate});
    } else if (Take("+")) {
      Sign();
    } else {
      Power();
    }
  }

  void Power() {
    Value();
    if (Take("**")) {
      Sign();
      Put({Operation::Power});
    }
  }

  void Value() {
    if (Take("(")) {
      Sum();
      Close();
    } else if (!AtEnd() && BeginsNumber(rest_.front())) {
      Number();
    } else {
      Name();
    }
  }

  void Close() {
    if (!Take(")")) Expected("a closing parenthesis");
  }

  void Number() {
    const auto number = ParseNumber(rest_);
    if (!number) return Expected("a number");
    rest_.remove_prefix(number->length);
    Put({Operation::Constant, number->value});
  }

  void Name() {
    SkipBlanks();
    const std::string_view whole = rest_;
    const std::string_view name = rest_.substr(0, rest_.find_first_of(kEndsOfName));
    rest_.remove_prefix(name.size());
    if (!name.empty() && Take("(")) return Call(name, whole);
    const auto variable = name.empty() ? std::nullopt : names_.Find(name);
    if (!variable) {
      rest_ = whole;
      return Expected(name.empty() ? "a number, a variable's name, a function or ("
                                   : "the name of a variable");
    }
    auto& used = expression_.variables_;
    if (std::find(used.begin(), used.end(), *variable) == used.end()) used.push_back(*variable);
    Put({Operation::Variable, 0, *variable});
  }

  void Call(std::string_view name, std::string_view whole) {
    for (const Function& function : kFunctions) {
      if (!EqualIgnoringCase(name, function.name)) continue;
      if (function.hasArgument) Sum();
      Close();
      return Put({function.operation, 0, function.hasArgument ? 0 : calls_++});
    }
    rest_ = whole;
    Expected("LOG, EXP, SQRT, ABS, NORMAL or UNIFORM before (");
  }

  void Put(CExpression::Step step) {
    if (!problem_.empty()) return;
    if (step.operation <= Operation::Uniform) {
      expression_.depth_ = std::max(expression_.depth_, ++columns_);
    } else if (step.operation >= Operation::Add) {
      --columns_;
    }
    expression_.steps_.push_back(step);
  }

  std::string_view rest_;
  const CVariableNames& names_;
  CExpression& expression_;
  CString problem_;
  int level_ = 0;
  std::int32_t calls_ = 0;
  std::size_t columns_ = 0;  // on the stack now
};

bool CExpression::Parse(std::string_view text, const CVariableNames& names, CString& problem) {
  *this = CExpression();
  return CExpressionParser(text, names, *this).Parse(problem);
}

std::vector<std::string_view> ExpressionFunctions() {
  return CExpressionParser::FunctionNames();
}
