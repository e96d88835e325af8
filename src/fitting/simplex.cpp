#include "fitting/simplex.h"

#include <cmath>
#include <cstring>

#include "frame/missing_value.h"
#include "frame/module_state.h"
#include "services/work_blocks.h"
#include "stats/distributions.h"
#include "stats/guarded_math.h"

namespace zv {

namespace {

// The fitted parameter record of the fitting and Weibull states; the search
// reads the Binomial's trials and the Negative Binomial's successes from it.
ZV_FAMILY_ARRAY(kStateParameters, double, 4, 0x20E0);

constexpr double kPenalty = 999999999.9;
constexpr int32_t kMaxEvaluations = 5000;
constexpr double kTolerance = 0.000001;
constexpr int32_t kMaxDimension = 3;

bool OutsideParameterSpace(int32_t id, const double* p) {
  switch (id) {
    case kDistExponential:
    case kDistPoisson:
    case kDistPareto:
      return p[0] <= 0.0;
    case kDistExtremeValue:
    case kDistNormal:
    case kDistLaplace:
    case kDistLogistic:
      return p[1] <= 0.0;
    case kDistLognormal:
    case kDistWeibull:
    case kDistBeta:
    case kDistErlang:
    case kDistGamma:
      return p[0] <= 0.0 || p[1] <= 0.0;
    case kDistChiSquare:
    case kDistStudentT:
      return p[0] < 1.0;
    case kDistBernoulli:
    case kDistBinomial:
      return p[0] < 0.0 || p[0] > 1.0;
    case kDistF:
      return p[0] < 1.0 || p[1] < 1.0;
    case kDistDiscreteUniform:
      return p[1] < p[0];
    case kDistGeometric:
    case kDistNegativeBinomial:
      return p[0] <= 0.0 || p[0] > 1.0;
    case kDistTriangular:
      return p[1] < p[0] || p[2] < p[1] || p[2] == p[0];
    case kDistUniform:
      return p[1] <= p[0];
    default:
      return false;
  }
}

// The likelihood term of one row: density (or mass), cumulative, or survivor
// probability.
double RowLikelihood(int32_t id, const double* local, double x, const double* censor, int32_t row,
                     bool discrete) {
  if (censor == nullptr || censor[row] == 0.0) return DistributionDensity(id, 0, local, x);
  if (censor[row] < 0.0) return DistributionCdf(id, 0, local, x);
  return 1.0 - DistributionCdf(id, 0, local, discrete ? x - 0.5 : x);
}

}  // namespace

int32_t SimplexDimension(int32_t id) {
  switch (id) {
    case kDistExponential:
    case kDistPoisson:
    case kDistChiSquare:
    case kDistBernoulli:
    case kDistBinomial:
    case kDistGeometric:
    case kDistStudentT:
    case kDistPareto:
    case kDistNegativeBinomial:
      return 1;
    case kDistTriangular:
      return 3;
    default:
      return 2;
  }
}

bool SimplexIsDiscrete(int32_t id) {
  switch (id) {
    case kDistPoisson:
    case kDistBernoulli:
    case kDistBinomial:
    case kDistDiscreteUniform:
    case kDistGeometric:
    case kDistNegativeBinomial:
      return true;
    default:
      return false;
  }
}

double NegativeLogLikelihood(int32_t id, const double* record, const double* values,
                             const double* censor, int32_t count, double* workspace, int32_t slot,
                             bool discrete) {
  double local[kParametersPerRecord];
  std::memcpy(local, record, sizeof local);
  if ((id == kDistBinomial || id == kDistNegativeBinomial) && slot >= 0 && slot < kSlotCount &&
      gStates[slot] != nullptr) {
    local[1] = Get(*gStates[slot], kStateParameters, 1);
  }
  if (id == kDistWeibull) local[2] = 0.0;
  const double penalty = static_cast<double>(count) * kPenalty;
  if (OutsideParameterSpace(id, local)) return penalty;

  // The search visits points that nobody chose, some on the edge of where a
  // distribution is defined (a Binomial probability of exactly 1): a point
  // where a guarded function refuses is outside the parameter space too.
  try {
    PrepareDistributionParameters(id, local, 1);
    double sum = 0.0;
    for (int32_t i = 0; i < count; ++i) {
      workspace[i] = kMissingValue;
      const double x = values[i];
      if (x == kMissingValue || (censor != nullptr && censor[i] == kMissingValue)) continue;
      const double v = RowLikelihood(id, local, x, censor, i, discrete);
      workspace[i] = v;
      sum += v <= 0.0 ? kPenalty : -std::log(v);
    }
    return sum;
  } catch (const SilentAbort&) {
    return penalty;
  }
}

namespace {

// The working simplex of one search: ndim + 1 points with their values, and
// the column sums that the trial step moves along (Numerical Recipes' psum).
struct Simplex {
  int32_t id;
  int32_t ndim;
  double start[kParametersPerRecord];  // supplies the coordinates the search does not move
  double p[kMaxDimension + 1][kMaxDimension];
  double y[kMaxDimension + 1];
  double psum[kMaxDimension];
  const double* values;
  const double* censor;
  int32_t count;
  double* workspace;
  int32_t slot;
  bool discrete;
  int32_t evaluations;
};

double Evaluate(const Simplex& s, const double* point) {
  double record[kParametersPerRecord];
  std::memcpy(record, s.start, sizeof record);
  for (int32_t j = 0; j < s.ndim; ++j) record[j] = point[j];
  return NegativeLogLikelihood(s.id, record, s.values, s.censor, s.count, s.workspace, s.slot,
                               s.discrete);
}

void SumColumns(Simplex& s) {
  for (int32_t j = 0; j < s.ndim; ++j) {
    s.psum[j] = 0.0;
    for (int32_t i = 0; i <= s.ndim; ++i) s.psum[j] += s.p[i][j];
  }
}

// Moves the worst point through the centroid of the others by the factor
// fac (-1 reflects, 2 expands, 0.5 contracts) and keeps it when it is better.
double Trial(Simplex& s, int32_t ihi, double fac) {
  const double fac1 = (1.0 - fac) / s.ndim;
  const double fac2 = fac1 - fac;
  double point[kMaxDimension];
  for (int32_t j = 0; j < s.ndim; ++j) point[j] = s.psum[j] * fac1 - s.p[ihi][j] * fac2;
  const double ytry = Evaluate(s, point);
  ++s.evaluations;
  if (ytry < s.y[ihi]) {
    s.y[ihi] = ytry;
    for (int32_t j = 0; j < s.ndim; ++j) {
      s.psum[j] += point[j] - s.p[ihi][j];
      s.p[ihi][j] = point[j];
    }
  }
  return ytry;
}

bool Converged(const Simplex& s, int32_t ihi, int32_t ilo) {
  bool positive = true;
  for (int32_t j = 0; j < s.ndim; ++j)
    positive = positive && s.p[ihi][j] > 0.0 && s.p[ilo][j] > 0.0;
  if (positive) {
    for (int32_t j = 0; j < s.ndim; ++j) {
      if (std::fabs(s.p[ihi][j] - s.p[ilo][j]) / std::fabs(s.p[ilo][j]) > kTolerance) return false;
    }
    return true;
  }
  const double rtol =
      2.0 * std::fabs(s.y[ihi] - s.y[ilo]) / (std::fabs(s.y[ihi]) + std::fabs(s.y[ilo]));
  return rtol < kTolerance;  // false for 0 / 0: the evaluation cap then ends the search
}

}  // namespace

bool SimplexSearch(int32_t id, double* record, const double* values, const double* censor,
                   int32_t count, int32_t slot) {
  WorkArray<double> workspace(static_cast<uint64_t>(count > 0 ? count : 1));
  if (!workspace) return false;

  Simplex s{};
  s.id = id;
  s.ndim = SimplexDimension(id);
  std::memcpy(s.start, record, sizeof s.start);
  s.values = values;
  s.censor = censor;
  s.count = count;
  s.workspace = workspace.get();
  s.slot = slot;
  s.discrete = SimplexIsDiscrete(id);

  // The start and, for each coordinate, the start with that coordinate
  // raised by a tenth.
  for (int32_t i = 0; i <= s.ndim; ++i) {
    for (int32_t j = 0; j < s.ndim; ++j) s.p[i][j] = record[j];
    if (i > 0) s.p[i][i - 1] *= 1.1;
    s.y[i] = Evaluate(s, s.p[i]);
  }
  SumColumns(s);

  for (;;) {
    int32_t ilo = s.y[1] < s.y[0] ? 1 : 0;
    int32_t inhi = ilo;
    int32_t ihi = 1 - ilo;
    for (int32_t i = 0; i <= s.ndim; ++i) {
      if (s.y[i] < s.y[ilo]) ilo = i;
      if (s.y[i] > s.y[ihi]) {
        inhi = ihi;
        ihi = i;
      } else if (s.y[i] > s.y[inhi] && i != ihi) {
        inhi = i;
      }
    }
    if (Converged(s, ihi, ilo) || s.evaluations >= kMaxEvaluations) {
      for (int32_t j = 0; j < s.ndim; ++j) record[j] = s.p[ilo][j];
      return true;
    }
    double ytry = Trial(s, ihi, -1.0);
    if (ytry <= s.y[ilo]) {
      Trial(s, ihi, 2.0);
    } else if (ytry >= s.y[inhi]) {
      const double ysave = s.y[ihi];
      ytry = Trial(s, ihi, 0.5);
      if (ytry >= ysave) {
        for (int32_t i = 0; i <= s.ndim; ++i) {
          if (i == ilo) continue;
          for (int32_t j = 0; j < s.ndim; ++j) s.p[i][j] = (s.p[i][j] + s.p[ilo][j]) / 2.0;
          s.y[i] = Evaluate(s, s.p[i]);
        }
        s.evaluations += s.ndim;
        SumColumns(s);
      }
    }
  }
}

}  // namespace zv
