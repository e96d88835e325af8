// Recursive descent over the tokens of an expression, lowest precedence
// first:  |   &   NOT   = <> < > <= >=   + -   * /   unary - +   ^ (right)
// Every fault is raised at the leftmost token that shows it, so the message
// points at the first thing wrong.
#include <algorithm>
#include <cctype>
#include <set>

#include "expression.h"
#include "number_text.h"
#include "sheet_store.h"

namespace zvgrid::detail {
namespace {

enum class Tok : uint8_t { kNumber, kName, kQuoted, kOperator, kOpen, kClose, kComma, kEnd, kBad };

struct Token {
  Tok kind = Tok::kEnd;
  std::string_view text;  // as written, quotes included
  int32_t position = 0;
  double number = 0.0;
  std::string fault;  // kBad
};

bool NameStart(unsigned char c) {
  return std::isalpha(c) || c == '_' || c == '#' || c >= 0x80;
}

bool NamePart(unsigned char c) {
  return NameStart(c) || std::isdigit(c) || c == '@' || c == '$' || c == '%' || c == '?' ||
         c == '.';
}

std::string Quote(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

// The whole text as tokens; a token that cannot be read ends the list as kBad.
std::vector<Token> Tokenize(std::string_view text) {
  std::vector<Token> tokens;
  size_t at = 0;
  for (;;) {
    while (at < text.size() &&
           (text[at] == ' ' || text[at] == '\t' || text[at] == '\r' || text[at] == '\n')) {
      ++at;
    }
    Token token;
    token.position = static_cast<int32_t>(at) + 1;
    if (at >= text.size()) {
      tokens.push_back(token);
      return tokens;
    }
    const auto c = static_cast<unsigned char>(text[at]);
    size_t end = at + 1;
    if (const size_t digits = ScanNumber(text.substr(at)); digits > 0) {
      end = at + digits;
      token.kind = Tok::kNumber;
      if (!NumberValue(text.substr(at, digits), &token.number)) {
        token.kind = Tok::kBad;
        token.fault = "the number " + std::string(text.substr(at, digits)) + " is too large";
      }
    } else if (NameStart(c)) {
      while (end < text.size() && NamePart(static_cast<unsigned char>(text[end]))) ++end;
      token.kind = Tok::kName;
    } else if (c == '"' || c == '\'') {
      end = text.find(static_cast<char>(c), at + 1);
      if (end == std::string_view::npos) {
        token.kind = Tok::kBad;
        token.fault = "this quote is not closed";
        end = text.size();
      } else {
        ++end;
        token.kind = Tok::kQuoted;
      }
    } else if (c == '(') {
      token.kind = Tok::kOpen;
    } else if (c == ')') {
      token.kind = Tok::kClose;
    } else if (c == ',') {
      token.kind = Tok::kComma;
    } else if (c == '<' && at + 1 < text.size() && (text[at + 1] == '=' || text[at + 1] == '>')) {
      end = at + 2;
      token.kind = Tok::kOperator;
    } else if (c == '>' && at + 1 < text.size() && text[at + 1] == '=') {
      end = at + 2;
      token.kind = Tok::kOperator;
    } else if (std::string_view("+-*/^=<>&|").find(static_cast<char>(c)) !=
               std::string_view::npos) {
      token.kind = Tok::kOperator;
    } else {
      token.kind = Tok::kBad;
      token.fault =
          std::isprint(c)
              ? "the character \"" + std::string(1, static_cast<char>(c)) + "\" is not allowed"
              : "the character with code " + std::to_string(c) + " is not allowed";
    }
    token.text = text.substr(at, end - at);
    tokens.push_back(token);
    if (token.kind == Tok::kBad) return tokens;
    at = end;
  }
}

struct FunctionEntry {
  std::string_view name;
  Function function;
  int32_t least;
  int32_t most;  // -1: no limit
};

constexpr FunctionEntry kFunctions[] = {
    {"LOG", Function::kLog, 1, 1},     {"LOG10", Function::kLog10, 1, 1},
    {"EXP", Function::kExp, 1, 1},     {"SQRT", Function::kSqrt, 1, 1},
    {"ABS", Function::kAbs, 1, 1},     {"INT", Function::kInt, 1, 1},
    {"ROUND", Function::kRound, 1, 2}, {"MIN", Function::kMin, 1, -1},
    {"MAX", Function::kMax, 1, -1},    {"SIN", Function::kSin, 1, 1},
    {"COS", Function::kCos, 1, 1},     {"TAN", Function::kTan, 1, 1},
    {"ATAN", Function::kAtan, 1, 1},   {"SIGN", Function::kSign, 1, 1},
    {"MOD", Function::kMod, 2, 2},
};

const FunctionEntry* FindFunction(std::string_view name) {
  for (const FunctionEntry& entry : kFunctions) {
    if (EqualNoCase(entry.name, name)) return &entry;
  }
  return nullptr;
}

std::string ArgumentRule(const FunctionEntry& entry) {
  std::string name(entry.name);
  if (entry.most < 0) return name + " takes at least " + std::to_string(entry.least) + " argument";
  if (entry.least == entry.most) {
    return name + " takes " + std::to_string(entry.least) +
           (entry.least == 1 ? " argument" : " arguments");
  }
  return name + " takes " + std::to_string(entry.least) + " or " + std::to_string(entry.most) +
         " arguments";
}

struct Fault {
  std::string what;
  int32_t position;
};

class Parser {
 public:
  Parser(std::string_view text, ExpressionMode mode, Expression* out)
      : tokens_(Tokenize(text)),
        mode_(mode),
        out_(out),
        length_(static_cast<int32_t>(text.size())) {}

  void Run() {
    out_->root = ParseOr();
    const Token& token = Peek();
    if (token.kind == Tok::kClose) {
      throw Fault{"there is a \")\" without a matching \"(\"", token.position};
    }
    if (token.kind != Tok::kEnd) ThrowOperatorMissing(token);
  }

  const std::set<int32_t>& columns() const { return columns_; }

 private:
  // Raises the fault of a token that could not be read as soon as the parse
  // reaches it.
  const Token& Peek() const {
    const Token& token = tokens_[next_];
    if (token.kind == Tok::kBad) throw Fault{token.fault, token.position};
    return token;
  }
  const Token& Take() {
    const Token& token = Peek();
    if (token.kind != Tok::kEnd) ++next_;
    return token;
  }
  bool PeekOperator(std::string_view op) const {
    const Token& token = Peek();
    return token.kind == Tok::kOperator && token.text == op;
  }

  [[noreturn]] void ThrowOperatorMissing(const Token& token) const {
    throw Fault{"an operator is missing before " + Quote(token.text), token.position};
  }

  struct Nesting {
    Nesting(Parser* parser, int32_t position) : parser_(parser) {
      if (++parser_->depth_ > kMaxNesting) {
        throw Fault{"the expression is nested too deeply", position};
      }
    }
    ~Nesting() { --parser_->depth_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;
    Parser* parser_;
  };

  int32_t Add(Node node) {
    out_->nodes.push_back(std::move(node));
    return static_cast<int32_t>(out_->nodes.size()) - 1;
  }
  const Node& At(int32_t index) const { return out_->nodes[static_cast<size_t>(index)]; }

  int32_t Combine(NodeKind kind, std::vector<int32_t> operands, int32_t position) {
    Node node;
    node.kind = kind;
    node.position = position;
    node.operands = std::move(operands);
    return Add(std::move(node));
  }

  void RequireNumber(int32_t index) const {
    const Node& node = At(index);
    if (!node.text) return;
    if (node.kind == NodeKind::kColumn) {
      throw Fault{"the column " + Quote(Sheet().columns[static_cast<size_t>(node.column)].name) +
                      " holds text, not numbers",
                  node.position};
    }
    throw Fault{Quote(node.literal) + " is a text, not a number", node.position};
  }

  int32_t ParseOr() {
    int32_t left = ParseAnd();
    while (PeekOperator("|")) {
      Take();
      const int32_t right = ParseAnd();
      RequireNumber(left);
      RequireNumber(right);
      left = Combine(NodeKind::kOr, {left, right}, At(left).position);
    }
    return left;
  }

  int32_t ParseAnd() {
    int32_t left = ParseNot();
    while (PeekOperator("&")) {
      Take();
      const int32_t right = ParseNot();
      RequireNumber(left);
      RequireNumber(right);
      left = Combine(NodeKind::kAnd, {left, right}, At(left).position);
    }
    return left;
  }

  static bool IsNot(const Token& token) {
    return token.kind == Tok::kName && EqualNoCase(token.text, "NOT");
  }

  int32_t ParseNot() {
    if (IsNot(Peek())) {
      const Token& token = Take();
      Nesting nesting(this, token.position);
      const int32_t operand = ParseNot();
      RequireNumber(operand);
      return Combine(NodeKind::kNot, {operand}, token.position);
    }
    return ParseComparison();
  }

  int32_t ParseComparison() {
    static constexpr std::pair<std::string_view, NodeKind> kComparisons[] = {
        {"=", NodeKind::kEqual},   {"<>", NodeKind::kNotEqual},  {"<", NodeKind::kLess},
        {">", NodeKind::kGreater}, {"<=", NodeKind::kLessEqual}, {">=", NodeKind::kGreaterEqual},
    };
    int32_t left = ParseSum();
    for (;;) {
      const Token& token = Peek();
      if (token.kind != Tok::kOperator) return left;
      const auto found = std::find_if(std::begin(kComparisons), std::end(kComparisons),
                                      [&](const auto& entry) { return entry.first == token.text; });
      if (found == std::end(kComparisons)) return left;
      Take();
      const int32_t right = ParseSum();
      if (At(left).text != At(right).text) {
        throw Fault{"a text cannot be compared with a number", token.position};
      }
      left = Combine(found->second, {left, right}, At(left).position);
    }
  }

  int32_t ParseSum() {
    int32_t left = ParseTerm();
    while (PeekOperator("+") || PeekOperator("-")) {
      const bool add = Take().text == "+";
      const int32_t right = ParseTerm();
      RequireNumber(left);
      RequireNumber(right);
      left = Combine(add ? NodeKind::kAdd : NodeKind::kSubtract, {left, right}, At(left).position);
    }
    return left;
  }

  int32_t ParseTerm() {
    int32_t left = ParseUnary();
    while (PeekOperator("*") || PeekOperator("/")) {
      const bool multiply = Take().text == "*";
      const int32_t right = ParseUnary();
      RequireNumber(left);
      RequireNumber(right);
      left = Combine(multiply ? NodeKind::kMultiply : NodeKind::kDivide, {left, right},
                     At(left).position);
    }
    return left;
  }

  int32_t ParseUnary() {
    if (PeekOperator("-") || PeekOperator("+")) {
      const Token& token = Take();
      Nesting nesting(this, token.position);
      const int32_t operand = ParseUnary();
      RequireNumber(operand);
      if (token.text == "+") return operand;
      return Combine(NodeKind::kNegate, {operand}, token.position);
    }
    return ParsePower();
  }

  int32_t ParsePower() {
    const int32_t base = ParsePrimary();
    if (!PeekOperator("^")) return base;
    const Token& token = Take();
    Nesting nesting(this, token.position);
    const int32_t exponent = ParseUnary();  // right to left: 2^3^2 is 2^9, 2^-1 is allowed
    RequireNumber(base);
    RequireNumber(exponent);
    return Combine(NodeKind::kPower, {base, exponent}, At(base).position);
  }

  int32_t ParsePrimary() {
    const Token& token = Peek();
    switch (token.kind) {
      case Tok::kNumber: {
        Take();
        Node node;
        node.position = token.position;
        node.number = token.number;
        if (mode_ == ExpressionMode::kPair && token.number == kPairMarkX) {
          node.kind = NodeKind::kPairX;
        } else if (mode_ == ExpressionMode::kPair && token.number == kPairMarkY) {
          node.kind = NodeKind::kPairY;
        }
        return Add(std::move(node));
      }
      case Tok::kQuoted: {
        Take();
        const std::string_view inside = token.text.substr(1, token.text.size() - 2);
        const int32_t column = mode_ == ExpressionMode::kSheet ? FindColumn(inside) : -1;
        if (column >= 0) return ColumnNode(column, token.position);
        Node node;
        node.kind = NodeKind::kText;
        node.text = true;
        node.position = token.position;
        node.literal.assign(inside);
        return Add(std::move(node));
      }
      case Tok::kName:
        return ParseName();
      case Tok::kOpen: {
        Take();
        Nesting nesting(this, token.position);
        const int32_t inner = ParseOr();
        ExpectClose(token);
        return inner;
      }
      case Tok::kEnd:
        throw Fault{"a value is missing at the end", length_ + 1};
      default:
        throw Fault{"a value is missing before " + Quote(token.text), token.position};
    }
  }

  void ExpectClose(const Token& open) {
    const Token& token = Peek();
    if (token.kind == Tok::kClose) {
      Take();
      return;
    }
    if (token.kind == Tok::kEnd) throw Fault{"this parenthesis is not closed", open.position};
    ThrowOperatorMissing(token);
  }

  int32_t ColumnNode(int32_t column, int32_t position) {
    const Column& sheetColumn = Sheet().columns[static_cast<size_t>(column)];
    Node node;
    node.kind = NodeKind::kColumn;
    node.column = column;
    node.text = sheetColumn.type == 'C';
    node.position = position;
    columns_.insert(column);
    return Add(std::move(node));
  }

  int32_t ParseName() {
    const Token& name = Take();
    if (IsNot(name))
      throw Fault{"NOT must begin a condition; put it in parentheses", name.position};
    if (Peek().kind == Tok::kOpen) return ParseCall(name);
    if (mode_ == ExpressionMode::kPair) {
      throw Fault{Quote(name.text) + " is not a number or a function", name.position};
    }
    const int32_t column = FindColumn(name.text);
    if (column < 0) throw Fault{"no column is named " + Quote(name.text), name.position};
    return ColumnNode(column, name.position);
  }

  int32_t ParseCall(const Token& name) {
    const FunctionEntry* entry = FindFunction(name.text);
    if (entry == nullptr) {
      if (mode_ == ExpressionMode::kSheet && FindColumn(name.text) >= 0) {
        throw Fault{Quote(name.text) + " is a column, not a function", name.position};
      }
      throw Fault{"there is no function named " + Quote(name.text), name.position};
    }
    const Token& open = Take();
    Nesting nesting(this, open.position);
    std::vector<int32_t> arguments;
    if (Peek().kind == Tok::kClose) {
      Take();
    } else {
      for (;;) {
        const int32_t argument = ParseOr();
        RequireNumber(argument);
        arguments.push_back(argument);
        if (Peek().kind == Tok::kComma) {
          Take();
          continue;
        }
        ExpectClose(open);
        break;
      }
    }
    const auto count = static_cast<int32_t>(arguments.size());
    if (count < entry->least || (entry->most >= 0 && count > entry->most)) {
      throw Fault{ArgumentRule(*entry), name.position};
    }
    const int32_t call = Combine(NodeKind::kCall, std::move(arguments), name.position);
    out_->nodes[static_cast<size_t>(call)].function = entry->function;
    return call;
  }

  std::vector<Token> tokens_;
  size_t next_ = 0;
  ExpressionMode mode_;
  Expression* out_;
  int32_t length_;
  int32_t depth_ = 0;
  std::set<int32_t> columns_;
};

}  // namespace

bool CompileExpression(std::string_view text, ExpressionMode mode, Expression* expression,
                       ExpressionFault* fault) {
  *expression = Expression();
  if (TrimBlanks(text).empty()) {
    *fault = {"The expression is empty.", 0};
    return false;
  }
  if (text.size() > static_cast<size_t>(kMaxExpressionLength)) {
    *fault = {"The expression is longer than 127 characters.", 0};
    return false;
  }
  Parser parser(text, mode, expression);
  try {
    parser.Run();
  } catch (const Fault& caught) {
    *fault = {caught.what, caught.position};
    *expression = Expression();
    return false;
  }
  const Node& root = expression->nodes[static_cast<size_t>(expression->root)];
  if (mode == ExpressionMode::kPair && root.text) {
    *fault = {"a formula of two values gives a number, not a text", root.position};
    *expression = Expression();
    return false;
  }
  expression->text = root.text;
  if (root.kind == NodeKind::kColumn) expression->namedColumn = root.column;
  if (root.text) {
    expression->width =
        root.kind == NodeKind::kColumn
            ? Sheet().columns[static_cast<size_t>(root.column)].width
            : std::clamp(static_cast<int32_t>(root.literal.size()), 1, kMaxCellLength);
  }
  // Columns of different lengths: the longest counts. An expression of
  // constants is as long as the select, or the sheet when none was set.
  if (parser.columns().empty()) {
    expression->rows = Sheet().selectLength > 0 ? Sheet().selectLength : RowCount();
  }
  for (int32_t column : parser.columns()) {
    expression->rows =
        std::max(expression->rows, ColumnLength(Sheet().columns[static_cast<size_t>(column)]));
  }
  return true;
}

std::string FaultMessage(const ExpressionFault& fault) {
  if (fault.position <= 0) return fault.what;
  return "Error in the expression at character " + std::to_string(fault.position) + ": " +
         fault.what + ".";
}

}  // namespace zvgrid::detail
