// The catalogue of the 22 distributions the module fits, draws and
// tabulates: density, cumulative and inverse, each one switch on the id.
//
// A distribution's parameters are a record of four doubles p0..p3; a
// parameter block is an array of such records laid out back to back. The
// functions take the block as doubles and a parameter index that counts
// doubles (record r starts at index 4 r). p0 and p1 (and p2 for the Weibull
// and the Triangular) are the parameters the user sees; the remaining slots
// cache derived values and are filled by PrepareDistributionParameters, which
// must run before the density or cumulative of such a distribution.
//
// Guarded functions raise SilentAbort for parameters outside their domain
// (a Binomial probability of 0 or 1, for instance); callers keep them valid.
// An x, p or user parameter that is not a number raises as well, and so does
// a running sum longer than its cap; no result is ever a NaN or an infinity.
#pragma once

#include <cstdint>
#include <string_view>

namespace zv {

// Distribution ids. The numbers are stored in saved procedure state.
enum DistributionId : int32_t {
  kDistExponential = 0,        // p0 mean
  kDistExtremeValue = 1,       // p0 mode, p1 scale; p2 = ln(1 / p1)
  kDistLognormal = 2,          // p0 mean, p1 sd; p2, p3 mean and sd of the logarithm
  kDistNormal = 3,             // p0 mean, p1 sd
  kDistWeibull = 4,            // p0 shape, p1 scale, p2 starting point
  kDistPoisson = 5,            // p0 mean; p2 = exp(-p0)
  kDistBeta = 6,               // p0, p1 shapes; p2 = beta function of p0, p1
  kDistChiSquare = 7,          // p0 df; p2 = LogGamma(p0 / 2)
  kDistErlang = 8,             // p0 whole shape, p1 rate; p2 = -(LogGamma(p0) + ln(1 / p1))
  kDistBernoulli = 9,          // p0 probability
  kDistBinomial = 10,          // p0 probability, p1 trials; p2 = LogGamma(p1 + 1), p3 = ln(1 - p0)
  kDistF = 11,                 // p0, p1 df; p2, p3 log normalising terms
  kDistGamma = 12,             // p0 shape, p1 rate; p2 = -(LogGamma(p0) + p0 ln(1 / p1))
  kDistLaplace = 13,           // p0 mean, p1 rate of decay
  kDistLogistic = 14,          // p0 mean, p1 sd
  kDistDiscreteUniform = 15,   // p0 lower, p1 upper limit
  kDistGeometric = 16,         // p0 probability; failures before the first success
  kDistStudentT = 17,          // p0 df; p2 log normalising term
  kDistPareto = 18,            // p0 shape; lower limit 1
  kDistTriangular = 19,        // p0 lower limit, p1 mode, p2 upper limit
  kDistUniform = 20,           // p0 lower, p1 upper limit
  kDistNegativeBinomial = 21,  // p0 probability, p1 successes; trials until the p1-th success
};
inline constexpr int32_t kDistributionCount = 22;

// One parameter record; a block is an array of them, read as doubles.
struct DistributionParameters {
  double p[4];
};
static_assert(sizeof(DistributionParameters) == 4 * sizeof(double));
inline constexpr int32_t kParametersPerRecord = 4;

// sqrt(3) / pi: the logistic is parameterised by its standard deviation,
// and its classical scale is p1 * kLogisticScale.
inline constexpr double kLogisticScale = 0.5513288954217993;

// True for the ids whose values are counts (Poisson, Bernoulli, Binomial,
// Discrete Uniform, Geometric, Negative Binomial).
bool IsDiscreteDistribution(int32_t id);

// The fixed name of ids 5 to 21 ("Poisson", ..., "F", ..., "Negative
// Binomial"); empty for ids 0 to 4, whose names come from the string table.
std::string_view DistributionLiteralName(int32_t id);

// The parameters a user gives for an id, p0 to p[count - 1], and what each
// means ("mean", "shape", ...); the other slots are derived.
struct DistributionParameterInfo {
  int32_t count;
  std::string_view meaning[3];
};
const DistributionParameterInfo& DistributionUserParameters(int32_t id);

// Density at x, or the probability mass for a discrete id; kMissingValue
// when x is outside the support.
double DistributionDensity(int32_t id, int32_t index, const double* block, double x);
// Lower-tail probability P(X <= x).
double DistributionCdf(int32_t id, int32_t index, const double* block, double x);
// Smallest value whose lower-tail probability reaches p; kMissingValue where
// none exists (p >= 1 for an unbounded distribution, p = 0 for some ids).
double DistributionInverse(int32_t id, int32_t index, const double* block, double p);
// Fills the derived slots of `count` consecutive records starting at block.
void PrepareDistributionParameters(int32_t id, double* block, int32_t count);
// In: mean a and standard deviation b of a lognormal. Out: the mean (a) and
// the variance (b) of its logarithm.
void LognormalLogParameters(double& a, double& b);
// Integral of the density from 0 to x by the single 32-point Gauss-Legendre
// rule of gauss_legendre.h; a missing density counts as 0.
double QuadratureCdf(int32_t id, int32_t index, const double* block, double x);

}  // namespace zv
