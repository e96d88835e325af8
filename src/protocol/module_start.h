// Start-up and stop of the module, run once per load.
#pragma once

namespace zv {

// Loads the resource module, names the application object, reads the
// platform id and the "Intl" profile section.
void ModuleStart();
// Frees the resource module and empties every module-wide text.
void ModuleStop();
// Parses a short-date format such as "dd/MM/yyyy" into gDateOrder and
// gMonthYearOrder, falling back to month, day, year with '/'.
void ParseShortDate(const char* format);

}  // namespace zv
