// The sheet's expression language: parsing into a tree of nodes, checked for
// names, types, argument counts and nesting, and evaluation row by row.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zvgrid::detail {

inline constexpr int32_t kMaxExpressionLength = 127;
inline constexpr int32_t kMaxNesting = 32;  // parentheses, calls and prefix operators
// The literals that stand for the first and second value of a pair formula.
inline constexpr double kPairMarkX = 1.2345e40;
inline constexpr double kPairMarkY = 1.2345e41;

enum class Function : uint8_t {
  kLog,
  kLog10,
  kExp,
  kSqrt,
  kAbs,
  kInt,
  kRound,
  kMin,
  kMax,
  kSin,
  kCos,
  kTan,
  kAtan,
  kSign,
  kMod,
};

enum class NodeKind : uint8_t {
  kNumber,
  kText,
  kColumn,
  kPairX,
  kPairY,
  kNegate,
  kNot,
  kAdd,
  kSubtract,
  kMultiply,
  kDivide,
  kPower,
  kEqual,
  kNotEqual,
  kLess,
  kGreater,
  kLessEqual,
  kGreaterEqual,
  kAnd,
  kOr,
  kCall,
};

struct Node {
  NodeKind kind = NodeKind::kNumber;
  bool text = false;     // gives a text on each row
  int32_t position = 0;  // first character, from 1
  double number = 0.0;   // kNumber
  std::string literal;   // kText
  int32_t column = -1;   // kColumn: index in the sheet
  Function function = Function::kLog;
  std::vector<int32_t> operands;
};

struct Expression {
  std::vector<Node> nodes;
  int32_t root = -1;
  bool text = false;
  int32_t width = 1;         // characters per row of a text expression
  int32_t namedColumn = -1;  // the column that the expression merely names
  int32_t rows = 0;
};

// kSheet: names are columns of the sheet. kPair: no columns; the two mark
// literals stand for the values of the pair, and the result is a number.
enum class ExpressionMode { kSheet, kPair };

struct ExpressionFault {
  std::string what;
  int32_t position = 0;  // character from 1; 0 when the fault is the whole text
};

bool CompileExpression(std::string_view text, ExpressionMode mode, Expression* expression,
                       ExpressionFault* fault);
// The words shown to the user.
std::string FaultMessage(const ExpressionFault& fault);

// The value on a row (from 0). Past a column's end its cells are missing.
double EvaluateNumber(const Expression& expression, int32_t row, const double* pair);
std::string_view EvaluateText(const Expression& expression, int32_t row);

}  // namespace zvgrid::detail
