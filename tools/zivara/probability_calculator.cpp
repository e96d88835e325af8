#include "probability_calculator.h"

#include <signal.h>
#include <unistd.h>

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "frame/host_records.h"
#include "stats/distributions.h"
#include "stats/special_functions.h"
#include "zivara_exit.h"

namespace {

constexpr int kExitDomainError = 3;
constexpr unsigned kTimeLimitSeconds = 10;

// Thrown for input the calculator refuses; the text says why.
struct Refused {
  std::string reason;
};

bool SameNameAnyCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(a[i])) !=
        std::tolower(static_cast<unsigned char>(b[i]))) {
      return false;
    }
  }
  return true;
}

// A whole argument in C syntax; infinities and NaN are refused, since no
// parameter or point of the module is ever one.
double ParseArgument(const std::string& text) {
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  if (text.empty() || end != text.c_str() + text.size() || std::isspace(text[0])) {
    throw Refused{"not a number: \"" + text + "\""};
  }
  if (!std::isfinite(value)) throw Refused{"not a finite number: \"" + text + "\""};
  return value;
}

void PrintValue(std::ostream& out, double value) {
  if (value == zv::kMissingValue) {
    out << "missing\n";
  } else {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    out << text << '\n';
  }
  out.flush();  // a line already computed survives a later stop
}

// Names of the ids whose names the module takes from the string table.
constexpr std::string_view kTableNames[] = {"Exponential", "Extreme Value", "Lognormal", "Normal",
                                            "Weibull"};

std::string_view DistributionName(int32_t id) {
  return id < 5 ? kTableNames[id] : zv::DistributionLiteralName(id);
}

// The parameters the user gives: p0 and p1, p0 alone, or p0 to p2.
int ParameterCount(int32_t id) {
  switch (id) {
    case zv::kDistExponential:
    case zv::kDistPoisson:
    case zv::kDistChiSquare:
    case zv::kDistBernoulli:
    case zv::kDistGeometric:
    case zv::kDistStudentT:
    case zv::kDistPareto:
      return 1;
    case zv::kDistWeibull:
    case zv::kDistTriangular:
      return 3;
    default:
      return 2;
  }
}

int32_t FindDistribution(const std::string& text) {
  if (!text.empty() && text.size() <= 2 &&
      std::isdigit(static_cast<unsigned char>(text[0])) &&
      std::isdigit(static_cast<unsigned char>(text.back()))) {
    const int id = std::stoi(text);
    if (id < zv::kDistributionCount) return id;
  }
  for (int32_t id = 0; id < zv::kDistributionCount; ++id) {
    if (SameNameAnyCase(text, DistributionName(id))) return id;
  }
  throw Refused{"unknown distribution: \"" + text + "\" (a name such as \"Student's t\" or an id 0 to 21)"};
}

int DistCommand(const std::vector<std::string>& args, std::ostream& out) {
  if (args.size() < 3) {
    throw Refused{"usage: zivara dist NAME-OR-ID pdf|cdf|inv P0 [P1 [P2]] X..."};
  }
  const int32_t id = FindDistribution(args[1]);
  const std::string& operation = args[2];
  if (operation != "pdf" && operation != "cdf" && operation != "inv") {
    throw Refused{"unknown operation: \"" + operation + "\" (pdf, cdf or inv)"};
  }
  const size_t count = ParameterCount(id);
  if (args.size() < 3 + count + 1) {
    throw Refused{std::string(DistributionName(id)) + " takes " + std::to_string(count) +
                  (count == 1 ? " parameter" : " parameters") + " and at least one X"};
  }
  zv::DistributionParameters record{{0, 0, 0, 0}};
  for (size_t i = 0; i < count; ++i) record.p[i] = ParseArgument(args[3 + i]);
  std::vector<double> points;
  for (size_t i = 3 + count; i < args.size(); ++i) points.push_back(ParseArgument(args[i]));

  zv::PrepareDistributionParameters(id, record.p, 1);
  for (double x : points) {
    double value;
    if (operation == "pdf") {
      value = zv::DistributionDensity(id, 0, record.p, x);
    } else if (operation == "cdf") {
      value = zv::DistributionCdf(id, 0, record.p, x);
    } else {
      value = zv::DistributionInverse(id, 0, record.p, x);
    }
    PrintValue(out, value);
  }
  return zivara::kExitRan;
}

struct Function {
  std::string_view name;
  size_t arity;
  double (*evaluate)(const double* a);
};

constexpr Function kFunctions[] = {
    {"NormalCdf", 1, [](const double* a) { return zv::NormalCdf(a[0]); }},
    {"NormalQuantile", 1, [](const double* a) { return zv::NormalQuantile(a[0]); }},
    {"StudentCdf", 2, [](const double* a) { return zv::StudentCdf(a[0], a[1]); }},
    {"StudentQuantile", 2, [](const double* a) { return zv::StudentQuantile(a[0], a[1]); }},
    {"GammaFunction", 1, [](const double* a) { return zv::GammaFunction(a[0]); }},
    {"LogGamma", 1, [](const double* a) { return zv::LogGamma(a[0]); }},
    {"IncompleteBeta", 3, [](const double* a) { return zv::IncompleteBeta(a[0], a[1], a[2]); }},
    {"ChiSquareCdf", 2, [](const double* a) { return zv::ChiSquareCdf(a[0], a[1]); }},
    {"ChiSquareQuantile", 2, [](const double* a) { return zv::ChiSquareQuantile(a[0], a[1]); }},
    {"FQuantile", 3, [](const double* a) { return zv::FQuantile(a[0], a[1], a[2]); }},
    {"BetaQuantile", 3, [](const double* a) { return zv::BetaQuantile(a[0], a[1], a[2]); }},
};

int FnCommand(const std::vector<std::string>& args, std::ostream& out) {
  if (args.size() < 2) throw Refused{"usage: zivara fn FUNCTION ARG..."};
  for (const Function& f : kFunctions) {
    if (!SameNameAnyCase(args[1], f.name)) continue;
    if (args.size() - 2 != f.arity) {
      throw Refused{std::string(f.name) + " takes " + std::to_string(f.arity) +
                    (f.arity == 1 ? " argument" : " arguments")};
    }
    double a[3] = {0, 0, 0};
    for (size_t i = 0; i < f.arity; ++i) a[i] = ParseArgument(args[2 + i]);
    PrintValue(out, f.evaluate(a));
    return zivara::kExitRan;
  }
  throw Refused{"unknown function: \"" + args[1] + "\""};
}

// Ends the process when a computation runs past the time limit. Only
// async-signal-safe calls in the handler.
extern "C" void StopUnfinished(int) {
  constexpr char kText[] = "zivara: the computation did not finish in time\n";
  ssize_t written = write(STDERR_FILENO, kText, sizeof kText - 1);
  (void)written;
  _exit(zivara::kExitFault);
}

class TimeLimit {
 public:
  explicit TimeLimit(unsigned seconds) {
    struct sigaction action {};
    action.sa_handler = StopUnfinished;
    sigemptyset(&action.sa_mask);
    sigaction(SIGALRM, &action, &previous_);
    alarm(seconds);
  }
  ~TimeLimit() {
    alarm(0);
    sigaction(SIGALRM, &previous_, nullptr);
  }
  TimeLimit(const TimeLimit&) = delete;
  TimeLimit& operator=(const TimeLimit&) = delete;

 private:
  struct sigaction previous_ {};
};

}  // namespace

int RunProbabilityCommand(const std::vector<std::string>& args, std::ostream& out,
                          std::ostream& err, unsigned timeLimitSeconds) {
  try {
    if (args.empty() || (args[0] != "dist" && args[0] != "fn")) {
      throw Refused{"usage: zivara dist ... or zivara fn ..."};
    }
    const TimeLimit limit(timeLimitSeconds);
    return args[0] == "dist" ? DistCommand(args, out) : FnCommand(args, out);
  } catch (const Refused& refused) {
    err << "zivara: " << refused.reason << '\n';
    return zivara::kExitRefused;
  } catch (const zv::SilentAbort&) {
    err << "domain error\n";
    return kExitDomainError;
  }
}

int RunProbabilityCommand(const std::vector<std::string>& args, std::ostream& out,
                          std::ostream& err) {
  return RunProbabilityCommand(args, out, err, kTimeLimitSeconds);
}
