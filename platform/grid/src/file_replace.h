// Replacing a file so that a failure leaves it as it was.
#pragma once

#include <string>
#include <string_view>

namespace zvgrid::detail {

// Writes `text` to a new file in the folder of `path`, flushes it to the
// device and renames it over `path`. Returns 0, or the errno of the step that
// failed; then the temporary file is gone and `path` is untouched.
int ReplaceFile(const std::string& path, std::string_view text);

// The reason for an errno in words: "no space left on device".
std::string FileFault(int fault);

}  // namespace zvgrid::detail
