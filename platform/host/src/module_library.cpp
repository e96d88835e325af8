#include "zvhost/module_library.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>

namespace zvhost {

namespace {

size_t FamilyIndex(const FamilySpec& family) {
  return static_cast<size_t>(&family - Families().data());
}

}  // namespace

ModuleLibrary::~ModuleLibrary() {
  Close();
}

bool ModuleLibrary::Open(const std::string& path, std::string* error) {
  Close();
  // RTLD_LOCAL: the module's names stay out of the way of the Host's own.
  handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) {
    const char* why = dlerror();
    if (error) *error = "cannot load the module " + path + ": " + (why ? why : "unknown reason");
    return false;
  }
  path_ = path;
  isKeel4Loaded = reinterpret_cast<IsKeel4LoadedEntry>(Find("IsKeel4Loaded"));
  callKeel4Interpret = reinterpret_cast<CallKeel4InterpretEntry>(Find("CallKeel4Interpret"));
  keel4SetAddedText = reinterpret_cast<Keel4SetAddedTextEntry>(Find("Keel4SetAddedText"));
  filterDllMsg = reinterpret_cast<int32_t (*)(const WinMsg*)>(Find("FilterDllMsg"));
  processDllIdle = reinterpret_cast<int32_t (*)()>(Find("ProcessDllIdle"));
  if (isKeel4Loaded == nullptr) {
    if (error) *error = "the library " + path + " does not export IsKeel4Loaded";
    Close();
    return false;
  }
  const std::vector<FamilySpec>& families = Families();
  for (size_t i = 0; i < families.size(); ++i) {
    const std::string name = families[i].name;
    FamilyEntries& e = entries_[i];
    e.dialog = Find((name + "Dialog").c_str());
    e.setup = Find((name + "Setup").c_str());
    e.begin = Find((name + "Begin").c_str());
    e.beginAgain = Find((name + "BeginAgain").c_str());
    e.item = Find((name + "Item").c_str());
    e.opts = Find((name + "Opts").c_str());
    e.vsave = Find((name + "Vsave").c_str());
    e.redoItem1 = Find((name + "RedoItem1").c_str());
  }
  return true;
}

void ModuleLibrary::Close() {
  if (handle_ != nullptr) dlclose(handle_);
  handle_ = nullptr;
  path_.clear();
  entries_ = {};
  isKeel4Loaded = nullptr;
  callKeel4Interpret = nullptr;
  keel4SetAddedText = nullptr;
  filterDllMsg = nullptr;
  processDllIdle = nullptr;
}

void* ModuleLibrary::Find(const char* name) const {
  if (handle_ == nullptr) return nullptr;
  return dlsym(handle_, name);
}

const FamilyEntries& ModuleLibrary::EntriesOf(const FamilySpec& family) const {
  return entries_.at(FamilyIndex(family));
}

bool ModuleLibrary::HasFamily(const FamilySpec& family) const {
  const FamilyEntries& e = EntriesOf(family);
  bool common = e.dialog && e.setup && e.begin && e.beginAgain && e.item && e.opts;
  if (family.shortForms) return common;
  return common && e.vsave && e.redoItem1;
}

std::string ProgramFolder() {
  std::string path(4096, '\0');
  ssize_t n = readlink("/proc/self/exe", path.data(), path.size() - 1);
  if (n <= 0) return ".";
  path.resize(static_cast<size_t>(n));
  size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash);
}

std::string DefaultModulePath() {
  if (const char* env = std::getenv("ZIVARA_MODULE"); env != nullptr && *env != '\0') return env;
  return ProgramFolder() + "/libzvkeel4.so";
}

}  // namespace zvhost
