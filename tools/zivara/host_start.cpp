#include "host_start.h"

#include <cstdlib>
#include <ostream>

#include "zvgrid/sheet.h"

namespace zivara {

std::unique_ptr<zvhost::Host> StartHost(std::ostream& messages, std::ostream& err) {
  auto host = std::make_unique<zvhost::Host>();
  host->SetMessageObserver([&messages](const MessageBoxCall& call) {
    messages << call.caption << ": " << call.text << "\n";
    messages.flush();
  });
  std::string error;
  if (!host->LoadModule(zvhost::DefaultModulePath(), &error)) {
    err << "zivara: " << error << "\n";
    return nullptr;
  }
  return host;
}

std::string DataFolder() {
  if (const char* env = std::getenv("ZIVARA_DATA"); env != nullptr && *env != '\0') return env;
  return ZV_DATA_DIR;
}

std::string SampleSheetOf(const zvhost::FamilySpec& family) {
  return DataFolder() + "/" + family.sampleSheet;
}

bool LoadSheet(const std::string& path, std::ostream& err,
               const std::optional<std::string>& missingCodes) {
  zvgrid::SetMissingCodes(missingCodes ? zvgrid::ParseMissingCodes(*missingCodes)
                                       : zvgrid::DefaultMissingCodes());
  std::string error;
  if (!zvgrid::LoadCsvFile(path, &error)) {
    err << "zivara: cannot read the sheet " << path << ": " << error << "\n";
    return false;
  }
  return true;
}

}  // namespace zivara
