// The elementary functions that every numeric path of the module goes
// through. An argument outside a function's domain raises SilentAbort instead
// of producing a NaN or an infinity that would print as garbage. The guards
// are comparisons, and a NaN fails none of them: a NaN argument gives a NaN
// result, and an infinite one (or a power that overflows) an infinite
// result. Callers keep NaN out themselves; the start of the beta quantile
// even relies on a NaN passing through for p below 1.1e-16. Nothing in the
// module catches SilentAbort, so the host's dispatch ends the operation
// silently.
#pragma once

namespace zv {

// Raised for an argument outside a guarded function's domain. Carries no
// text on purpose: the user sees no message.
struct SilentAbort {};

// x to the power y; raises for x < 0 with a y that is not a whole number.
double GuardedPow(double x, double y);
// Raises for x < 0.
double GuardedSqrt(double x);
// Exactly 0.0 for x < -200; raises for x > 200.
double GuardedExp(double x);
// Natural logarithm; raises for x <= 0.
double GuardedLog(double x);
// Common logarithm; raises for x <= 0.
double GuardedLog10(double x);

}  // namespace zv
