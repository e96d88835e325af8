// Evaluation of a parsed expression on one row. MissingValue in gives
// MissingValue out; so does a value outside a function's domain, a division
// by zero, and any result that is not a finite number. Comparisons and the
// logical operators have their own rules, written at each.
#include <algorithm>
#include <cmath>

#include "expression.h"
#include "sheet_store.h"

namespace zvgrid::detail {
namespace {

double Checked(double value) {
  return std::isfinite(value) ? value : kMissing;
}

double Round(double x, double digits) {
  const double places = std::round(digits);
  if (places > 22) return x;  // beyond the exact powers of ten: nothing to round
  if (places >= 0) {
    const double scale = std::pow(10.0, places);
    const double scaled = x * scale;
    return std::isfinite(scaled) ? std::round(scaled) / scale : x;
  }
  if (places < -308) return 0.0;
  const double scale = std::pow(10.0, -places);
  return std::round(x / scale) * scale;
}

double Call(Function function, const std::vector<double>& a) {
  if (std::find(a.begin(), a.end(), kMissing) != a.end()) return kMissing;
  const double x = a[0];
  switch (function) {
    case Function::kLog:
      return x > 0 ? std::log(x) : kMissing;
    case Function::kLog10:
      return x > 0 ? std::log10(x) : kMissing;
    case Function::kExp:
      return std::exp(x);
    case Function::kSqrt:
      return x >= 0 ? std::sqrt(x) : kMissing;
    case Function::kAbs:
      return std::fabs(x);
    case Function::kInt:
      return std::floor(x);
    case Function::kRound:
      return a.size() > 1 ? Round(x, a[1]) : std::round(x);
    case Function::kMin:
      return *std::min_element(a.begin(), a.end());
    case Function::kMax:
      return *std::max_element(a.begin(), a.end());
    case Function::kSin:
      return std::sin(x);
    case Function::kCos:
      return std::cos(x);
    case Function::kTan:
      return std::tan(x);
    case Function::kAtan:
      return std::atan(x);
    case Function::kSign:
      return x > 0 ? 1.0 : (x < 0 ? -1.0 : 0.0);
    case Function::kMod:
      // The remainder takes the sign of the divisor, as in spreadsheets.
      return a[1] != 0 ? x - a[1] * std::floor(x / a[1]) : kMissing;
  }
  return kMissing;
}

// A comparison with a missing operand (MissingValue, or a blank text) is
// false, except that = holds when both are missing and <> when one is.
double Compare(NodeKind kind, bool missingLeft, bool missingRight, int order) {
  if (missingLeft || missingRight) {
    if (kind == NodeKind::kEqual) return missingLeft && missingRight ? 1.0 : 0.0;
    if (kind == NodeKind::kNotEqual) return missingLeft != missingRight ? 1.0 : 0.0;
    return 0.0;
  }
  bool holds = false;
  switch (kind) {
    case NodeKind::kEqual:
      holds = order == 0;
      break;
    case NodeKind::kNotEqual:
      holds = order != 0;
      break;
    case NodeKind::kLess:
      holds = order < 0;
      break;
    case NodeKind::kGreater:
      holds = order > 0;
      break;
    case NodeKind::kLessEqual:
      holds = order <= 0;
      break;
    case NodeKind::kGreaterEqual:
      holds = order >= 0;
      break;
    default:
      break;
  }
  return holds ? 1.0 : 0.0;
}

std::string_view NodeText(const Expression& e, int32_t index, int32_t row) {
  const Node& node = e.nodes[static_cast<size_t>(index)];
  if (node.kind == NodeKind::kText) return node.literal;
  const Column& column = Sheet().columns[static_cast<size_t>(node.column)];
  if (column.type != 'C' || row >= static_cast<int32_t>(column.texts.size())) return {};
  return column.texts[static_cast<size_t>(row)];
}

double NodeNumber(const Expression& e, int32_t index, int32_t row, const double* pair) {
  const Node& node = e.nodes[static_cast<size_t>(index)];
  const auto operand = [&](size_t i) { return NodeNumber(e, node.operands[i], row, pair); };
  switch (node.kind) {
    case NodeKind::kNumber:
      return node.number;
    case NodeKind::kText:
      return kMissing;
    case NodeKind::kColumn: {
      const Column& column = Sheet().columns[static_cast<size_t>(node.column)];
      if (column.type == 'C' || row >= static_cast<int32_t>(column.numbers.size())) return kMissing;
      return column.numbers[static_cast<size_t>(row)];
    }
    case NodeKind::kPairX:
      return pair != nullptr ? Checked(pair[0]) : kMissing;
    case NodeKind::kPairY:
      return pair != nullptr ? Checked(pair[1]) : kMissing;
    case NodeKind::kNegate: {
      const double x = operand(0);
      return x == kMissing ? kMissing : -x;
    }
    case NodeKind::kNot: {
      const double x = operand(0);
      return x == kMissing ? kMissing : (x == 0 ? 1.0 : 0.0);
    }
    case NodeKind::kAnd: {
      // Three-valued: a false side decides, else a missing side leaves it open.
      const double x = operand(0);
      const double y = operand(1);
      if (x == 0 || y == 0) return 0.0;
      return x == kMissing || y == kMissing ? kMissing : 1.0;
    }
    case NodeKind::kOr: {
      const double x = operand(0);
      const double y = operand(1);
      if ((x != 0 && x != kMissing) || (y != 0 && y != kMissing)) return 1.0;
      return x == kMissing || y == kMissing ? kMissing : 0.0;
    }
    case NodeKind::kEqual:
    case NodeKind::kNotEqual:
    case NodeKind::kLess:
    case NodeKind::kGreater:
    case NodeKind::kLessEqual:
    case NodeKind::kGreaterEqual: {
      if (e.nodes[static_cast<size_t>(node.operands[0])].text) {
        const std::string_view a = TrimBlanks(NodeText(e, node.operands[0], row));
        const std::string_view b = TrimBlanks(NodeText(e, node.operands[1], row));
        const int order = a.compare(b);
        return Compare(node.kind, a.empty(), b.empty(), (order > 0) - (order < 0));
      }
      const double x = operand(0);
      const double y = operand(1);
      return Compare(node.kind, x == kMissing, y == kMissing, (x > y) - (x < y));
    }
    case NodeKind::kCall: {
      std::vector<double> arguments;
      arguments.reserve(node.operands.size());
      for (size_t i = 0; i < node.operands.size(); ++i) arguments.push_back(operand(i));
      return Checked(Call(node.function, arguments));
    }
    default:
      break;
  }
  // The arithmetic operators.
  const double x = operand(0);
  const double y = operand(1);
  if (x == kMissing || y == kMissing) return kMissing;
  switch (node.kind) {
    case NodeKind::kAdd:
      return Checked(x + y);
    case NodeKind::kSubtract:
      return Checked(x - y);
    case NodeKind::kMultiply:
      return Checked(x * y);
    case NodeKind::kDivide:
      return y != 0 ? Checked(x / y) : kMissing;
    case NodeKind::kPower:
      return Checked(std::pow(x, y));
    default:
      return kMissing;
  }
}

}  // namespace

double EvaluateNumber(const Expression& expression, int32_t row, const double* pair) {
  if (expression.root < 0 || expression.text) return kMissing;
  return NodeNumber(expression, expression.root, row, pair);
}

std::string_view EvaluateText(const Expression& expression, int32_t row) {
  if (expression.root < 0 || !expression.text) return {};
  return NodeText(expression, expression.root, row);
}

}  // namespace zvgrid::detail
