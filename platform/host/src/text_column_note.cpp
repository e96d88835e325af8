#include "text_column_note.h"

#include <optional>
#include <vector>

#include "zvgrid/sheet.h"

namespace zvhost {
namespace {

constexpr uint32_t kCharacterFieldString = 1022;

// Whether the text is the module's string 1022 with its field number put in.
bool RefusesCharacterField(const std::string& text) {
  static const std::optional<std::string> pattern = [] {
    const ModuleRef resources = WinLoadLibrary("keel4res.dll");
    return resources != 0 ? WinFindString(resources, kCharacterFieldString) : std::nullopt;
  }();
  if (!pattern) return false;
  const size_t field = pattern->find("%d");
  if (field == std::string::npos) return text == *pattern;
  const std::string_view head(pattern->data(), field);
  const std::string_view tail(pattern->data() + field + 2, pattern->size() - field - 2);
  return text.size() > head.size() + tail.size() && text.compare(0, head.size(), head) == 0 &&
         text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

}  // namespace

MessageBoxCall WithTextColumnNote(const MessageBoxCall& call) {
  const int32_t index = zvgrid::LastTextColumnServed();
  const std::vector<zvgrid::Column>& columns = zvgrid::Columns();
  if (index < 0 || index >= static_cast<int32_t>(columns.size())) return call;
  const zvgrid::Column& column = columns[static_cast<size_t>(index)];
  if (column.type != 'C' || column.textRow <= 0 || !RefusesCharacterField(call.text)) return call;
  MessageBoxCall noted = call;
  noted.text += "\nColumn \"" + column.name + "\" is text: row " + std::to_string(column.textRow) +
                " holds \"" + column.textCell + "\"" + (column.textQuoted ? " in quotes." : ".");
  return noted;
}

}  // namespace zvhost
