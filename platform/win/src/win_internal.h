// Pieces shared by the parts of the window-system stand-in.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "zvwin/zvwin.h"

namespace zvwin_detail {

// Every reference of any kind (object, text, block, window, module) comes
// from one counter and is never reused, so a stale or mixed-up value is
// caught rather than silently naming another object.
uint32_t NextReference();

// The template of the most recently loaded resource module, or nullptr.
const DialogTemplate* FindCurrentDialogTemplate(uint32_t id);

// Lower-cases ASCII letters; section, key and module names compare this way.
std::string AsciiLower(std::string_view text);

}  // namespace zvwin_detail
