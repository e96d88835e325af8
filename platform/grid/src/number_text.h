// Numbers in their text form, as the CSV files, the cells written by text and
// the expression language spell them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zvgrid::detail {

// Length of the number that starts `text` (digits with an optional point and
// fraction, or a point and a fraction, then an optional exponent with its
// sign), or 0 when none starts there. No sign in front, no "inf" or "nan".
size_t ScanNumber(std::string_view text);

// The value of a scanned number; false when it is too large for a double.
// A number too small for a double is 0.
bool NumberValue(std::string_view digits, double* value);

// The whole text, blanks at both ends aside, as a number with an optional
// sign. With `commaPoint`, a text without '.' may use ',' as its decimal
// point (the module writes numbers in the user's decimal character).
bool ParseNumberText(std::string_view text, bool commaPoint, double* value);

// What a CSV cell (without blanks at its ends) holds: a number of the
// grammar of ParseNumberText, a value that is not finite (such a number too
// large for a double, or inf, infinity or nan in any case, with an optional
// sign), or a text. `value` is set for a number.
enum class CellNumber { kNumber, kNotFinite, kText };
CellNumber ClassifyCell(std::string_view text, double* value);

// The shortest text that reads back as the same double.
std::string FormatNumberText(double value);

}  // namespace zvgrid::detail
