// The elementary functions that every numeric path of the module goes
// through. An argument outside a function's domain, a NaN argument included,
// raises SilentAbort instead of producing a NaN that would print as garbage.
// An infinite argument is not refused: it gives an infinite result (or 0 for
// the exponential of -inf), as does a power that overflows. Nothing in the
// module catches SilentAbort, so the host's dispatch ends the operation
// silently.
#pragma once

namespace zv {

// Raised for an argument outside a guarded function's domain. Carries no
// text on purpose: the user sees no message.
struct SilentAbort {};

// x to the power y; raises for x < 0 with a y that is not a whole number,
// and for a NaN x or y.
double GuardedPow(double x, double y);
// Raises for x < 0 and NaN.
double GuardedSqrt(double x);
// Exactly 0.0 for x < -200; raises for x > 200 and NaN.
double GuardedExp(double x);
// Natural logarithm; raises for x <= 0 and NaN.
double GuardedLog(double x);
// Common logarithm; raises for x <= 0 and NaN.
double GuardedLog10(double x);

}  // namespace zv
