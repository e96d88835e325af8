// The elementary functions that every numeric path of the module goes
// through. An argument outside a function's domain, a NaN argument included,
// raises SilentAbort instead of producing a NaN or an infinity that would
// print as garbage: every result is a finite number. Nothing in the module
// catches it, so the host's dispatch ends the operation silently.
#pragma once

namespace zv {

// Raised for an argument outside a guarded function's domain. Carries no
// text on purpose: the user sees no message.
struct SilentAbort {};

// x to the power y; raises for x < 0 with a y that is not a whole number, and
// for a result that is not finite (0 to a negative power, an overflow, a NaN
// argument; NaN to the power 0 is 1).
double GuardedPow(double x, double y);
// Raises for x < 0, an infinite x and NaN.
double GuardedSqrt(double x);
// Exactly 0.0 for x < -200; raises for x > 200 and NaN.
double GuardedExp(double x);
// Natural logarithm; raises for x <= 0, an infinite x and NaN.
double GuardedLog(double x);
// Common logarithm; raises for x <= 0, an infinite x and NaN.
double GuardedLog10(double x);

}  // namespace zv
