// Probabilities and quantiles of the normal, Student's t, chi-square, F and
// beta distributions, the gamma function and the incomplete beta ratio.
//
// These are deliberately the module's own low-order approximations (rounded
// rational fits, short series, a regula falsi with a small pass cap), not
// full-precision ones: every printed p-value and critical value of the
// analyses depends on exactly these constants. Free functions of doubles,
// without state or allocation. Arguments outside a guarded function's domain
// raise SilentAbort (see guarded_math.h).
#pragma once

#include "stats/guarded_math.h"

namespace zv {

// Reserved results.
inline constexpr double kNormalQuantileInfinity = 1e200;  // +/- at p = 1 and p = 0
inline constexpr double kBetaQuantileFloor = 1e-14;       // smallest BetaQuantile for p > 0

// Lower-tail probability of the standard normal at z.
double NormalCdf(double z);
// NormalCdf((x - mean) / sd).
double NormalCdfAt(double x, double mean, double sd);
// z with lower-tail probability p; +1e200 at p = 1, -1e200 at p = 0; raises
// for p outside [0, 1].
double NormalQuantile(double p);
// NormalQuantile(p) * sd + mean.
double NormalQuantileAt(double p, double mean, double sd);

// Lower-tail probability of Student's t with df degrees of freedom.
double StudentCdf(double t, double df);
// t with lower-tail probability p; kMissingValue for df = 0.
double StudentQuantile(double p, double df);

// Gamma function; kMissingValue at 0. Negative whole numbers give no
// meaningful value.
double GammaFunction(double x);
// Natural logarithm of the gamma function.
double LogGamma(double x);
// Regularised incomplete beta ratio I_x(a, b).
double IncompleteBeta(double x, double a, double b);

// Lower-tail probability of chi-square with df degrees of freedom.
double ChiSquareCdf(double x, double df);
// Chi-square value with lower-tail probability p.
double ChiSquareQuantile(double p, double df);
// F value with lower-tail probability p.
double FQuantile(double p, double df1, double df2);
// Beta value with lower-tail probability p; never below 1e-14 for p > 0.
double BetaQuantile(double p, double a, double b);

}  // namespace zv
