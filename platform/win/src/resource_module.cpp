// The resource module "keel4res.dll": string table, dialog templates and
// images read from the resource folder. The file formats are described in
// platform/win/README.md. A malformed line is reported on stderr as
// "<file>:<line>: <problem>" and skipped; everything else still loads.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <unordered_map>

#include "win_internal.h"

namespace fs = std::filesystem;

namespace {

constexpr uint32_t kMaxResourceId = 65535;

struct ResourceModule {
  fs::path folder;
  std::map<uint32_t, std::string> strings;
  std::map<uint32_t, DialogTemplate> dialogs;
  std::map<std::string, WinImage> images;  // by lower-case name
  // Images handed out, one copy and reference per name and colour mode, kept
  // until the module is freed.
  struct LoadedImage {
    WinImage image;
    uint32_t ref;
  };
  std::map<std::pair<std::string, bool>, LoadedImage> loadedImages;
};

struct Modules {
  std::unordered_map<ModuleRef, std::unique_ptr<ResourceModule>> loaded;
  std::vector<ModuleRef> order;  // load order; the last is the current module
  std::vector<uint32_t> missingStrings;
};

Modules& State() {
  static Modules state;
  return state;
}

ResourceModule* Find(ModuleRef module) {
  auto it = State().loaded.find(module);
  return it == State().loaded.end() ? nullptr : it->second.get();
}

void Report(const fs::path& file, int line, const std::string& problem) {
  std::fprintf(stderr, "%s:%d: %s\n", file.string().c_str(), line, problem.c_str());
}

// Reads one line of a resource file token by token.
class LineReader {
 public:
  explicit LineReader(std::string_view line) : line_(line) {}

  bool AtEnd() {
    SkipBlanks();
    return pos_ >= line_.size();
  }

  std::string_view Word() {
    SkipBlanks();
    size_t begin = pos_;
    while (pos_ < line_.size() && line_[pos_] != ' ' && line_[pos_] != '\t') ++pos_;
    return line_.substr(begin, pos_ - begin);
  }

  // A decimal number from `minimum` to kMaxResourceId.
  bool Number(int64_t minimum, int64_t* value, std::string* error) {
    std::string_view word = Word();
    if (word.empty()) {
      *error = "a number is missing";
      return false;
    }
    size_t i = word.front() == '-' ? 1 : 0;
    if (i == word.size() || word.size() > 6 ||
        word.find_first_not_of("0123456789", i) != std::string_view::npos) {
      *error = "\"" + std::string(word) + "\" is not a number";
      return false;
    }
    int64_t number = std::stoll(std::string(word));
    if (number < minimum || number > kMaxResourceId) {
      *error = "number " + std::string(word) + " is out of range " + std::to_string(minimum) +
               " to " + std::to_string(kMaxResourceId);
      return false;
    }
    *value = number;
    return true;
  }

  // A text in double quotes with the escapes \" \\ \r \n \t.
  bool Quoted(std::string* text, std::string* error) {
    SkipBlanks();
    if (pos_ >= line_.size() || line_[pos_] != '"') {
      *error = "a text in double quotes is missing";
      return false;
    }
    text->clear();
    for (++pos_; pos_ < line_.size(); ++pos_) {
      char c = line_[pos_];
      if (c == '"') {
        ++pos_;
        return true;
      }
      if (c != '\\') {
        text->push_back(c);
        continue;
      }
      if (++pos_ == line_.size()) break;
      switch (line_[pos_]) {
        case '"':
          text->push_back('"');
          break;
        case '\\':
          text->push_back('\\');
          break;
        case 'r':
          text->push_back('\r');
          break;
        case 'n':
          text->push_back('\n');
          break;
        case 't':
          text->push_back('\t');
          break;
        default:
          *error = std::string("unknown escape \\") + line_[pos_];
          return false;
      }
    }
    *error = "the closing double quote is missing";
    return false;
  }

 private:
  void SkipBlanks() {
    while (pos_ < line_.size() && (line_[pos_] == ' ' || line_[pos_] == '\t')) ++pos_;
  }

  std::string_view line_;
  size_t pos_ = 0;
};

// Lines of a file with their numbers, without the line end; comment lines
// ('#' first after blanks) and blank lines are left out.
std::vector<std::pair<int, std::string>> ContentLines(const fs::path& file) {
  std::vector<std::pair<int, std::string>> lines;
  std::ifstream in(file, std::ios::binary);
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    size_t first = line.find_first_not_of(" \t");
    if (first == std::string::npos || line[first] == '#') continue;
    lines.emplace_back(number, line);
  }
  return lines;
}

std::vector<fs::path> FilesWithExtension(const fs::path& folder, std::string_view extension) {
  std::vector<fs::path> files;
  std::error_code ec;
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    if (it->is_regular_file() &&
        zvwin_detail::AsciiLower(it->path().extension().string()) == extension) {
      files.push_back(it->path());
    }
  }
  std::sort(files.begin(), files.end());  // a stable order for duplicate reports
  return files;
}

void LoadStrings(const fs::path& file, ResourceModule& module,
                 std::map<uint32_t, std::string>& origin) {
  for (const auto& [number, line] : ContentLines(file)) {
    LineReader reader(line);
    int64_t id = 0;
    std::string text, error;
    if (!reader.Number(0, &id, &error) || !reader.Quoted(&text, &error)) {
      Report(file, number, error);
      continue;
    }
    if (!reader.AtEnd()) {
      Report(file, number, "unexpected text after the closing quote");
      continue;
    }
    auto [it, added] = module.strings.emplace(static_cast<uint32_t>(id), text);
    std::string where = file.filename().string() + ":" + std::to_string(number);
    if (!added) {
      Report(file, number,
             "string " + std::to_string(id) + " is already defined at " +
                 origin[static_cast<uint32_t>(id)]);
      continue;
    }
    origin[static_cast<uint32_t>(id)] = where;
  }
}

bool ParseKind(std::string_view word, ControlKind* kind) {
  static constexpr std::pair<std::string_view, ControlKind> kKinds[] = {
      {"STATIC", ControlKind::kStatic},
      {"EDIT", ControlKind::kEdit},
      {"MULTIEDIT", ControlKind::kMultiLineEdit},
      {"CHECKBOX", ControlKind::kCheckBox},
      {"RADIO", ControlKind::kRadio},
      {"LISTBOX", ControlKind::kListBox},
      {"COMBOBOX", ControlKind::kComboBox},
      {"BUTTON", ControlKind::kButton},
      {"IMAGEBUTTON", ControlKind::kImageButton},
      {"GROUPBOX", ControlKind::kGroupBox},
  };
  for (const auto& [name, value] : kKinds) {
    if (word == name) {
      *kind = value;
      return true;
    }
  }
  return false;
}

// `CONTROL <id> <KIND> "<text>" [GROUP] [DISABLED] [NAME <word>]`
bool ParseControl(std::string_view line, ControlTemplate* control, std::string* error) {
  LineReader reader(line);
  if (reader.Word() != "CONTROL") {
    *error = "expected CONTROL";
    return false;
  }
  int64_t id = 0;
  if (!reader.Number(-1, &id, error)) return false;
  control->id = static_cast<int32_t>(id);
  std::string_view kind = reader.Word();
  if (!ParseKind(kind, &control->kind)) {
    *error = "unknown control kind \"" + std::string(kind) + "\"";
    return false;
  }
  if (!reader.Quoted(&control->text, error)) return false;
  while (!reader.AtEnd()) {
    std::string_view flag = reader.Word();
    if (flag == "GROUP") {
      control->groupStart = true;
    } else if (flag == "DISABLED") {
      control->disabled = true;
    } else if (flag == "NAME") {
      std::string_view word = reader.Word();
      const bool plain = !word.empty() && std::isalpha(static_cast<unsigned char>(word[0])) &&
                         std::all_of(word.begin(), word.end(), [](char c) {
                           return std::isalnum(static_cast<unsigned char>(c)) || c == '-';
                         });
      if (!plain) {
        *error = "NAME takes a word of letters, digits and '-', starting with a letter";
        return false;
      }
      control->name = std::string(word);
    } else {
      *error = "unknown flag \"" + std::string(flag) + "\"";
      return false;
    }
  }
  return true;
}

void LoadDialog(const fs::path& file, ResourceModule& module) {
  std::vector<std::pair<int, std::string>> lines = ContentLines(file);
  if (lines.empty()) {
    Report(file, 1, "the DIALOG line is missing");
    return;
  }
  DialogTemplate dialog;
  {
    const auto& [number, line] = lines.front();
    LineReader reader(line);
    int64_t id = 0;
    std::string error;
    if (reader.Word() != "DIALOG") error = "the first line must be DIALOG <id> \"<caption>\"";
    if (error.empty() && reader.Number(0, &id, &error) && reader.Quoted(&dialog.caption, &error) &&
        !reader.AtEnd()) {
      error = "unexpected text after the caption";
    }
    if (error.empty() && file.stem().string() != std::to_string(id)) {
      error =
          "dialog " + std::to_string(id) + " must be in the file " + std::to_string(id) + ".dlg";
    }
    if (error.empty() && module.dialogs.count(static_cast<uint32_t>(id)) != 0) {
      error = "dialog " + std::to_string(id) + " is already defined";
    }
    if (!error.empty()) {
      Report(file, number, error + "; the file is skipped");
      return;
    }
    dialog.id = static_cast<uint32_t>(id);
  }
  for (size_t i = 1; i < lines.size(); ++i) {
    const auto& [number, line] = lines[i];
    ControlTemplate control{};
    std::string error;
    if (!ParseControl(line, &control, &error)) {
      Report(file, number, error);
      continue;
    }
    bool duplicate = control.id != -1 &&
                     std::any_of(dialog.controls.begin(), dialog.controls.end(),
                                 [&](const ControlTemplate& c) { return c.id == control.id; });
    if (duplicate) {
      Report(file, number, "control " + std::to_string(control.id) + " is already defined");
      continue;
    }
    const bool nameTaken =
        !control.name.empty() &&
        std::any_of(dialog.controls.begin(), dialog.controls.end(),
                    [&](const ControlTemplate& c) { return c.name == control.name; });
    if (nameTaken) {
      Report(file, number, "the name " + control.name + " is already taken");
      continue;
    }
    dialog.controls.push_back(std::move(control));
  }
  module.dialogs.emplace(dialog.id, std::move(dialog));
}

// A plain PBM ("P1"): width, height, then one 0 or 1 per pixel, 1 black;
// '#' starts a comment that runs to the line end.
void LoadImage(const fs::path& file, ResourceModule& module) {
  std::ifstream in(file, std::ios::binary);
  std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  std::vector<std::string> tokens;
  std::string token;
  bool comment = false;
  for (char c : content) {
    if (comment) {
      comment = c != '\n';
      continue;
    }
    if (c == '#' || c == ' ' || c == '\t' || c == '\r' || c == '\n') {
      if (!token.empty()) tokens.push_back(std::move(token));
      token.clear();
      comment = c == '#';
      continue;
    }
    // Pixels may stand without blanks between them.
    if (tokens.size() >= 3) {
      tokens.emplace_back(1, c);
    } else {
      token.push_back(c);
    }
  }
  if (!token.empty()) tokens.push_back(std::move(token));

  auto dimension = [](const std::string& text) {
    if (text.empty() || text.size() > 4 ||
        text.find_first_not_of("0123456789") != std::string::npos)
      return 0;
    return std::stoi(text);
  };
  WinImage image;
  image.name = file.stem().string();
  if (tokens.size() < 3 || tokens[0] != "P1" || dimension(tokens[1]) == 0 ||
      dimension(tokens[2]) == 0) {
    Report(file, 1, "not a plain PBM image (P1, width, height, pixels)");
    return;
  }
  image.width = dimension(tokens[1]);
  image.height = dimension(tokens[2]);
  size_t count = static_cast<size_t>(image.width) * static_cast<size_t>(image.height);
  if (tokens.size() - 3 != count) {
    Report(file, 1,
           "expected " + std::to_string(count) + " pixels, found " +
               std::to_string(tokens.size() - 3));
    return;
  }
  for (size_t i = 3; i < tokens.size(); ++i) {
    if (tokens[i] != "0" && tokens[i] != "1") {
      Report(file, 1, "a pixel must be 0 or 1, not \"" + tokens[i] + "\"");
      return;
    }
    image.pixels.push_back(tokens[i] == "1" ? 1 : 0);
  }
  module.images[zvwin_detail::AsciiLower(image.name)] = std::move(image);
}

fs::path ResourceFolder() {
  if (const char* folder = std::getenv("ZIVARA_RESOURCES"); folder != nullptr && *folder) {
    return folder;
  }
#ifdef ZV_RESOURCE_DIR
  return ZV_RESOURCE_DIR;
#else
  return "resources";
#endif
}

void RecordMissing(uint32_t id) {
  State().missingStrings.push_back(id);
}

}  // namespace

namespace zvwin_detail {

const DialogTemplate* FindCurrentDialogTemplate(uint32_t id) {
  if (State().order.empty()) return nullptr;
  return WinFindDialogTemplate(State().order.back(), id);
}

}  // namespace zvwin_detail

ModuleRef WinLoadLibrary(const char* name) {
  if (name == nullptr) return 0;
  // The name may carry a folder, written with either kind of slash.
  std::string_view file(name);
  if (size_t slash = file.find_last_of("/\\"); slash != std::string_view::npos) {
    file.remove_prefix(slash + 1);
  }
  if (zvwin_detail::AsciiLower(file) != "keel4res.dll") return 0;
  fs::path folder = ResourceFolder();
  std::error_code ec;
  if (!fs::is_directory(folder, ec)) {
    std::fprintf(stderr, "keel4res.dll: the resource folder %s does not exist\n",
                 folder.string().c_str());
    return 0;
  }
  auto module = std::make_unique<ResourceModule>();
  module->folder = folder;
  std::map<uint32_t, std::string> origin;
  for (const fs::path& file : FilesWithExtension(folder / "strings", ".txt")) {
    LoadStrings(file, *module, origin);
  }
  for (const fs::path& file : FilesWithExtension(folder / "dialogs", ".dlg")) {
    LoadDialog(file, *module);
  }
  for (const fs::path& file : FilesWithExtension(folder / "images", ".pbm")) {
    LoadImage(file, *module);
  }
  ModuleRef ref = zvwin_detail::NextReference();
  State().loaded.emplace(ref, std::move(module));
  State().order.push_back(ref);
  return ref;
}

void WinFreeLibrary(ModuleRef module) {
  auto it = State().loaded.find(module);
  if (it == State().loaded.end()) {
    if (module != 0) std::fprintf(stderr, "WinFreeLibrary: %#x is not a loaded module\n", module);
    return;
  }
  for (const auto& [key, loaded] : it->second->loadedImages) WinUnregister(loaded.ref);
  State().loaded.erase(it);
  std::erase(State().order, module);
}

std::optional<std::string> WinFindString(ModuleRef module, uint32_t id) {
  const ResourceModule* m = Find(module);
  if (m != nullptr) {
    auto it = m->strings.find(id);
    if (it != m->strings.end()) return it->second;
  }
  RecordMissing(id);
  return std::nullopt;
}

int32_t WinLoadString(ModuleRef module, uint32_t id, char* buffer, int32_t size) {
  if (buffer == nullptr || size <= 0) return 0;
  std::optional<std::string> text = WinFindString(module, id);
  size_t length = text ? std::min<size_t>(text->size(), static_cast<size_t>(size) - 1) : 0;
  if (length > 0) std::memcpy(buffer, text->data(), length);
  buffer[length] = '\0';
  return static_cast<int32_t>(length);
}

const std::vector<uint32_t>& WinMissingStrings() {
  return State().missingStrings;
}

void WinClearMissingStrings() {
  State().missingStrings.clear();
}

uint32_t WinLoadImage(ModuleRef module, const char* name, bool systemColors) {
  ResourceModule* m = Find(module);
  if (m == nullptr || name == nullptr) return 0;
  std::string key = zvwin_detail::AsciiLower(name);
  auto image = m->images.find(key);
  if (image == m->images.end()) return 0;
  auto [it, added] = m->loadedImages.try_emplace(std::make_pair(key, systemColors));
  if (added) {
    it->second.image = image->second;
    it->second.image.systemColors = systemColors;
    it->second.ref = WinRegister(&it->second.image);
  }
  return it->second.ref;
}

const DialogTemplate* WinFindDialogTemplate(ModuleRef module, uint32_t id) {
  const ResourceModule* m = Find(module);
  if (m == nullptr) return nullptr;
  auto it = m->dialogs.find(id);
  return it == m->dialogs.end() ? nullptr : &it->second;
}
