// zivara session FILE [--out FOLDER]: a scripted session, one Host call or
// one check per line, so that end-to-end tests drive the module as the Host
// would. The format is described in README.md next to this file.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace zivara {

// Splits a session line into words: blanks separate them, double quotes
// group (with \" \\ \n \r \t inside), and a '#' that starts a word outside
// quotes ends the line. False with a reason for an unclosed quote.
bool SplitSessionLine(const std::string& line, std::vector<std::string>* words, std::string* error);

// Runs the session file. `outFolder` receives saved sheets ("." when empty).
// Exit status: 0 every check held; 1 a check failed or the Host noted a
// fault; 2 the file cannot be read or a line is malformed.
int SessionCommand(const std::string& file, const std::string& outFolder, std::ostream& out,
                   std::ostream& err);

}  // namespace zivara
