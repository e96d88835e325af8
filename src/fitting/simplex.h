// Maximum-likelihood refinement of a fitted distribution by the downhill
// simplex of Nelder and Mead (Computer Journal 7 (1965) 308-313), over a
// likelihood in which a censored value contributes a tail probability. It
// serves the censored fits, the Logistic fit and the censored Weibull
// estimates.
#pragma once

#include <cstdint>

namespace zv {

// Number of parameters the search moves for a distribution id: the first
// `count` doubles of the record. The Binomial's trials and the Negative
// Binomial's successes are options, never estimated.
int32_t SimplexDimension(int32_t id);

// True for the ids whose likelihood uses the probability mass and, for a
// right-censored value x, the probability of x or more.
bool SimplexIsDiscrete(int32_t id);

// Minus the log-likelihood of `count` values under the record `record` (four
// doubles, p0 to p3, as the user sees them; the derived slots are filled on a
// local copy). `censor` is nullptr for exact data, else one value per row: 0
// exact, below 0 left-censored (contributes the cumulative), above 0
// right-censored (the survivor probability). A row whose value or censoring
// value is missing adds nothing. `workspace` (count doubles) receives each
// row's likelihood term, kMissingValue for rows that add nothing. For the
// Binomial and the Negative Binomial p1 comes from the record of the state in
// `slot`. A record outside the parameter space gives count x 999999999.9, so
// that the search turns away from it without evaluating anything.
double NegativeLogLikelihood(int32_t id, const double* record, const double* values,
                             const double* censor, int32_t count, double* workspace, int32_t slot,
                             bool discrete);

// Moves the first SimplexDimension(id) doubles of `record` (in: the start,
// out: the best point found) to the minimum of NegativeLogLikelihood. Ends
// when the best and worst points agree to 1e-6 relative (or their values
// do, where a coordinate is not positive), or after 5000 evaluations. False,
// with `record` unchanged and string 1001 shown, when the workspace cannot
// be allocated.
bool SimplexSearch(int32_t id, double* record, const double* values, const double* censor,
                   int32_t count, int32_t slot);

}  // namespace zv
