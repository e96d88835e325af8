// The Host's explanation under the module's refusal of a character column.
#pragma once

#include <string>

#include "zvwin/zvwin.h"

namespace zvhost {

// The box as the Host's output shows it: when the module refuses a field
// because it names a character column (its string 1022), a line naming the
// column, the row and the cell that made the column text is added.
MessageBoxCall WithTextColumnNote(const MessageBoxCall& call);

}  // namespace zvhost
