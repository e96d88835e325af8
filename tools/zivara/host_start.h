// Starting the Host for a command: the module loaded from its usual place,
// message boxes echoed to a stream, and the folders the command reads from.
#pragma once

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>

#include "zvhost/host.h"

namespace zivara {

// A Host with the module loaded; nullptr after writing the reason to err.
// Every message box goes to `messages` as "CAPTION: TEXT".
std::unique_ptr<zvhost::Host> StartHost(std::ostream& messages, std::ostream& err);

// The folder of the bundled sample sheets: $ZIVARA_DATA, else the source
// folder the build was configured with.
std::string DataFolder();
std::string SampleSheetOf(const zvhost::FamilySpec& family);

// Loads a CSV sheet into the data sheet, reading the cells of the
// comma-separated `missingCodes` (else the sheet's default codes) as missing;
// false after writing the reason.
bool LoadSheet(const std::string& path, std::ostream& err,
               const std::optional<std::string>& missingCodes = std::nullopt);

}  // namespace zivara
