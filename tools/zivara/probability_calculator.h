// The probability calculator of the zivara command:
//
//   zivara dist NAME-OR-ID pdf|cdf|inv P0 [P1 [P2]] X...
//   zivara fn FUNCTION ARG...
//
// `dist` evaluates the density, cumulative or inverse of a distribution of the
// module's catalogue, named in any case ("Student's t", "negative binomial")
// or by its id 0 to 21, with as many parameters as the user sees for it (one,
// two, or three for the Weibull and the Triangular) and then one line per X.
// `fn` evaluates one of the module's special functions by name (NormalCdf,
// BetaQuantile, ...). Values print with 17 significant digits, a missing value
// as the word `missing`.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

// args[0] is "dist" or "fn", the rest the command's arguments. Returns the exit
// status: 0; 2 with a reason on `err` for a malformed number, an unknown name
// or a wrong argument count; 3 with "domain error" on `err` when an argument
// leaves a function's domain; 1 when a computation has not finished after
// ten seconds (the process then ends at once: only absurd magnitudes, such as
// a Binomial with 1e300 trials, drive the module's loops that long).
int RunProbabilityCommand(const std::vector<std::string>& args, std::ostream& out,
                          std::ostream& err);
// The same with another time limit (tests).
int RunProbabilityCommand(const std::vector<std::string>& args, std::ostream& out,
                          std::ostream& err, unsigned timeLimitSeconds);
