// The probability calculator of the zivara command:
//
//   zivara dist NAME-OR-ID pdf|cdf|inv P0 [P1 [P2]] X...
//   zivara dist --help       (the distributions, their parameters and aliases)
//   zivara fn FUNCTION ARG...
//   zivara fn --help         (the functions and their arguments)
//
// `dist` evaluates the density, cumulative or inverse of a distribution of the
// module's catalogue, named in any case, with or without blanks and
// punctuation ("Student's t", "chisquare"), by a common short name ("t",
// "nbinom") or by its id 0 to 21, with as many parameters as the user sees for
// it, then one line per X. `fn` evaluates one of the module's special
// functions by name. Numbers are plain decimals ("-1.5e3"; no hex, no inf or
// nan). Values print with 17 significant digits, a missing value as the word
// `missing`.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

// args[0] is "dist" or "fn", the rest the command's arguments. Returns the exit
// status: 0 every value computed (or help shown); 2 with a reason on `err` for
// a malformed number, an unknown name or a wrong argument count; 3 when the
// command ran but gave no result: "domain error" on `err` when an argument
// leaves a function's domain (the lines before it stay printed), or a note
// on `err` when a value is missing; 1 for an internal fault.
int RunProbabilityCommand(const std::vector<std::string>& args, std::ostream& out,
                          std::ostream& err);
