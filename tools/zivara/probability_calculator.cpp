#include "probability_calculator.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "frame/host_records.h"
#include "stats/distributions.h"
#include "stats/special_functions.h"
#include "zivara_exit.h"

namespace {

constexpr int kExitNoResult = 3;

// Thrown for input the calculator refuses; the text says why.
struct Refused {
  std::string reason;
};

// Lower case without blanks and punctuation: "Student's t" -> "studentst".
std::string NameKey(std::string_view text) {
  std::string key;
  for (char c : text) {
    if (std::isalnum(static_cast<unsigned char>(c))) {
      key += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
  }
  return key;
}

bool IsHelp(const std::vector<std::string>& args) {
  return args.size() >= 2 && (args[1] == "--help" || args[1] == "-h" || args[1] == "help");
}

// A plain decimal, as the data sheet reads one: sign, digits with at most one
// point, an optional exponent. strtod alone would also take hex, "inf" and
// "nan", which no parameter or point of the module ever is.
double ParseArgument(const std::string& text) {
  size_t i = 0;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
  size_t digits = 0;
  while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) ++i, ++digits;
  if (i < text.size() && text[i] == '.') {
    ++i;
    while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) ++i, ++digits;
  }
  bool ok = digits > 0;
  if (ok && i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    ++i;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
    size_t exponent = 0;
    while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) ++i, ++exponent;
    ok = exponent > 0;
  }
  if (!ok || i != text.size()) throw Refused{"not a number: \"" + text + "\""};
  const double value = std::strtod(text.c_str(), nullptr);
  if (value - value != 0) throw Refused{"not a finite number: \"" + text + "\""};
  return value;
}

// Prints one value; false for a missing one.
bool PrintValue(std::ostream& out, double value) {
  if (value == zv::kMissingValue) {
    out << "missing\n";
  } else {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    out << text << '\n';
  }
  out.flush();  // a line already computed survives a later domain error
  return value != zv::kMissingValue;
}

// Names of the ids whose names the module takes from the string table.
constexpr std::string_view kTableNames[] = {"Exponential", "Extreme Value", "Lognormal", "Normal",
                                            "Weibull"};

std::string_view DistributionName(int32_t id) {
  return id < 5 ? kTableNames[id] : zv::DistributionLiteralName(id);
}

// Common short names besides the full ones.
struct Alias {
  std::string_view name;
  int32_t id;
};
constexpr Alias kAliases[] = {
    {"exp", zv::kDistExponential},     {"lnorm", zv::kDistLognormal},
    {"norm", zv::kDistNormal},         {"gaussian", zv::kDistNormal},
    {"pois", zv::kDistPoisson},        {"chisq", zv::kDistChiSquare},
    {"chi2", zv::kDistChiSquare},      {"binom", zv::kDistBinomial},
    {"logis", zv::kDistLogistic},      {"dunif", zv::kDistDiscreteUniform},
    {"geom", zv::kDistGeometric},      {"t", zv::kDistStudentT},
    {"student", zv::kDistStudentT},    {"studentt", zv::kDistStudentT},
    {"unif", zv::kDistUniform},        {"nbinom", zv::kDistNegativeBinomial},
    {"triangle", zv::kDistTriangular},
};

int32_t FindDistribution(const std::string& text) {
  if (!text.empty() && text.size() <= 2 && std::isdigit(static_cast<unsigned char>(text[0])) &&
      std::isdigit(static_cast<unsigned char>(text.back()))) {
    const int id = std::stoi(text);
    if (id < zv::kDistributionCount) return id;
  }
  const std::string key = NameKey(text);
  for (int32_t id = 0; id < zv::kDistributionCount; ++id) {
    if (!key.empty() && key == NameKey(DistributionName(id))) return id;
  }
  for (const Alias& alias : kAliases) {
    if (key == alias.name) return alias.id;
  }
  throw Refused{"unknown distribution: \"" + text + "\" (see zivara dist --help)"};
}

void DistHelp(std::ostream& out) {
  out << "usage: zivara dist NAME-OR-ID pdf|cdf|inv P0 [P1 [P2]] X...\n"
         "  pdf: density (probability for a count), cdf: P(X <= x), inv: the smallest x\n"
         "  with P(X <= x) >= p. Names in any case, blanks and punctuation ignored.\n\n";
  for (int32_t id = 0; id < zv::kDistributionCount; ++id) {
    char head[40];
    std::snprintf(head, sizeof head, "%2d  %-18s", id, std::string(DistributionName(id)).c_str());
    out << head;
    const zv::DistributionParameterInfo& info = zv::DistributionUserParameters(id);
    for (int32_t p = 0; p < info.count; ++p) {
      out << (p == 0 ? "" : ", ") << 'P' << p << ' ' << info.meaning[p];
    }
    std::string aliases;
    for (const Alias& alias : kAliases) {
      if (alias.id == id) aliases += (aliases.empty() ? "" : ", ") + std::string(alias.name);
    }
    if (!aliases.empty()) out << "  (also " << aliases << ')';
    out << '\n';
  }
  out << "\nThe Lognormal takes the mean and standard deviation of X itself, not of ln X.\n";
}

int DistCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  if (IsHelp(args)) {
    DistHelp(out);
    return zivara::kExitRan;
  }
  if (args.size() < 3) {
    throw Refused{"usage: zivara dist NAME-OR-ID pdf|cdf|inv P0 [P1 [P2]] X... (or --help)"};
  }
  const int32_t id = FindDistribution(args[1]);
  const std::string& operation = args[2];
  if (operation != "pdf" && operation != "cdf" && operation != "inv") {
    throw Refused{"unknown operation: \"" + operation + "\" (pdf, cdf or inv)"};
  }
  const size_t count = zv::DistributionUserParameters(id).count;
  if (args.size() < 3 + count + 1) {
    throw Refused{std::string(DistributionName(id)) + " takes " + std::to_string(count) +
                  (count == 1 ? " parameter" : " parameters") + " and at least one X"};
  }
  zv::DistributionParameters record{{0, 0, 0, 0}};
  for (size_t i = 0; i < count; ++i) record.p[i] = ParseArgument(args[3 + i]);
  std::vector<double> points;
  for (size_t i = 3 + count; i < args.size(); ++i) points.push_back(ParseArgument(args[i]));

  zv::PrepareDistributionParameters(id, record.p, 1);
  size_t missing = 0;
  for (double x : points) {
    double value;
    if (operation == "pdf") {
      value = zv::DistributionDensity(id, 0, record.p, x);
    } else if (operation == "cdf") {
      value = zv::DistributionCdf(id, 0, record.p, x);
    } else {
      value = zv::DistributionInverse(id, 0, record.p, x);
    }
    if (!PrintValue(out, value)) ++missing;
  }
  if (missing == 0) return zivara::kExitRan;
  err << "zivara: no value for " << missing << " of " << points.size()
      << (points.size() == 1 ? " point" : " points") << " (printed as missing)\n";
  return kExitNoResult;
}

struct Function {
  std::string_view name;
  std::string_view arguments;
  size_t arity;
  double (*evaluate)(const double* a);
};

constexpr Function kFunctions[] = {
    {"NormalCdf", "z", 1, [](const double* a) { return zv::NormalCdf(a[0]); }},
    {"NormalQuantile", "p", 1, [](const double* a) { return zv::NormalQuantile(a[0]); }},
    {"StudentCdf", "t df", 2, [](const double* a) { return zv::StudentCdf(a[0], a[1]); }},
    {"StudentQuantile", "p df", 2, [](const double* a) { return zv::StudentQuantile(a[0], a[1]); }},
    {"GammaFunction", "x", 1, [](const double* a) { return zv::GammaFunction(a[0]); }},
    {"LogGamma", "x", 1, [](const double* a) { return zv::LogGamma(a[0]); }},
    {"IncompleteBeta", "x a b", 3,
     [](const double* a) { return zv::IncompleteBeta(a[0], a[1], a[2]); }},
    {"ChiSquareCdf", "x df", 2, [](const double* a) { return zv::ChiSquareCdf(a[0], a[1]); }},
    {"ChiSquareQuantile", "p df", 2,
     [](const double* a) { return zv::ChiSquareQuantile(a[0], a[1]); }},
    {"FQuantile", "p df1 df2", 3, [](const double* a) { return zv::FQuantile(a[0], a[1], a[2]); }},
    {"BetaQuantile", "p a b", 3,
     [](const double* a) { return zv::BetaQuantile(a[0], a[1], a[2]); }},
};

int FnCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  if (IsHelp(args)) {
    out << "usage: zivara fn FUNCTION ARG...   (names in any case)\n\n";
    for (const Function& f : kFunctions) out << "  " << f.name << ' ' << f.arguments << '\n';
    return zivara::kExitRan;
  }
  if (args.size() < 2) throw Refused{"usage: zivara fn FUNCTION ARG... (or --help)"};
  for (const Function& f : kFunctions) {
    if (NameKey(args[1]) != NameKey(f.name)) continue;
    if (args.size() - 2 != f.arity) {
      throw Refused{std::string(f.name) + " takes " + std::to_string(f.arity) +
                    (f.arity == 1 ? " argument: " : " arguments: ") + std::string(f.arguments)};
    }
    double a[3] = {0, 0, 0};
    for (size_t i = 0; i < f.arity; ++i) a[i] = ParseArgument(args[2 + i]);
    if (PrintValue(out, f.evaluate(a))) return zivara::kExitRan;
    err << "zivara: no value (printed as missing)\n";
    return kExitNoResult;
  }
  throw Refused{"unknown function: \"" + args[1] + "\" (see zivara fn --help)"};
}

}  // namespace

int RunProbabilityCommand(const std::vector<std::string>& args, std::ostream& out,
                          std::ostream& err) {
  try {
    if (args.empty() || (args[0] != "dist" && args[0] != "fn")) {
      throw Refused{"usage: zivara dist ... or zivara fn ..."};
    }
    return args[0] == "dist" ? DistCommand(args, out, err) : FnCommand(args, out, err);
  } catch (const Refused& refused) {
    err << "zivara: " << refused.reason << '\n';
    return zivara::kExitRefused;
  } catch (const zv::SilentAbort&) {
    err << "zivara: domain error: an argument is outside the function's domain\n";
    return kExitNoResult;
  } catch (const std::exception& fault) {
    err << "zivara: internal fault: " << fault.what() << '\n';
    return zivara::kExitFault;
  }
}
