// CSV files of the sheet: RFC 4180 fields (quotes doubled inside quoted
// fields, line breaks allowed there), CRLF, LF or CR line ends, an optional
// UTF-8 byte order mark. Blank lines are skipped. A cell in quotes is always
// a text; an unquoted cell loses its blanks at both ends.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

#include "file_replace.h"
#include "number_text.h"
#include "sheet_store.h"

namespace zvgrid {
namespace {

using detail::kMaxCellLength;
using detail::kMaxNameLength;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

struct Field {
  std::string text;
  bool quoted = false;
};

struct Record {
  std::vector<Field> fields;
  int32_t line = 0;
};

std::string LineError(int32_t line, const std::string& what) {
  return "Line " + std::to_string(line) + ": " + what;
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

// Splits the text into records; false and a message for a quote that is
// never closed or text after a closing quote.
bool ReadRecords(std::string_view text, std::vector<Record>* records, std::string* error) {
  size_t at = 0;
  if (text.substr(0, 3) == kByteOrderMark) at = 3;
  int32_t line = 1;
  const size_t n = text.size();
  while (at < n) {
    Record record;
    record.line = line;
    for (;;) {
      Field field;
      const size_t start = at;
      while (at < n && IsBlank(text[at])) ++at;
      if (at < n && text[at] == '"') {
        field.quoted = true;
        const int32_t opened = line;
        ++at;
        for (;;) {
          if (at >= n) {
            *error = LineError(opened, "a quoted field is not closed.");
            return false;
          }
          const char c = text[at];
          if (c == '"') {
            if (at + 1 < n && text[at + 1] == '"') {
              field.text += '"';
              at += 2;
              continue;
            }
            ++at;
            break;
          }
          if (c == '\n' || (c == '\r' && (at + 1 >= n || text[at + 1] != '\n'))) ++line;
          field.text += c;
          ++at;
        }
        while (at < n && IsBlank(text[at])) ++at;
        if (at < n && text[at] != ',' && text[at] != '\r' && text[at] != '\n') {
          *error = LineError(line, "text follows the closing quote of a field.");
          return false;
        }
      } else {
        at = start;
        while (at < n && text[at] != ',' && text[at] != '\r' && text[at] != '\n') ++at;
        field.text.assign(detail::TrimBlanks(text.substr(start, at - start)));
      }
      record.fields.push_back(std::move(field));
      if (at < n && text[at] == ',') {
        ++at;
        continue;
      }
      break;
    }
    if (at < n) {
      if (text[at] == '\r' && at + 1 < n && text[at + 1] == '\n') ++at;
      ++at;
      ++line;
    }
    const bool blankLine =
        record.fields.size() == 1 && !record.fields[0].quoted && record.fields[0].text.empty();
    if (!blankLine) records->push_back(std::move(record));
  }
  return true;
}

bool IsNumberCell(const Field& field) {
  if (field.text.empty()) return true;
  double value = 0.0;
  return !field.quoted && detail::ParseNumberText(field.text, false, &value);
}

bool BuildSheet(const std::vector<Record>& records, std::vector<Column>* columns,
                std::string* error) {
  if (records.empty()) return true;
  const Record& header = records.front();
  if (header.fields.size() > static_cast<size_t>(kGridMaxColumns)) {
    *error = LineError(header.line, "the header names " + std::to_string(header.fields.size()) +
                                        " columns; a sheet holds at most 256.");
    return false;
  }
  if (records.size() - 1 > static_cast<size_t>(kMaxRows)) {
    *error = LineError(records[static_cast<size_t>(kMaxRows) + 1].line,
                       "the sheet holds more than " + std::to_string(kMaxRows) + " rows.");
    return false;
  }
  for (size_t c = 0; c < header.fields.size(); ++c) {
    const std::string name(detail::TrimBlanks(header.fields[c].text));
    if (name.empty()) {
      *error = LineError(header.line, "column " + std::to_string(c + 1) + " has no name.");
      return false;
    }
    if (name.size() > static_cast<size_t>(kMaxNameLength)) {
      *error = LineError(header.line, "the name \"" + name + "\" is longer than 32 characters.");
      return false;
    }
    for (const Column& earlier : *columns) {
      if (detail::EqualNoCase(earlier.name, name)) {
        *error = LineError(header.line, "the name \"" + name + "\" appears twice.");
        return false;
      }
    }
    Column column;
    column.name = name;
    columns->push_back(std::move(column));
  }

  const size_t width = columns->size();
  const size_t rows = records.size() - 1;
  for (size_t r = 1; r < records.size(); ++r) {
    const Record& record = records[r];
    for (size_t c = width; c < record.fields.size(); ++c) {
      if (!record.fields[c].text.empty()) {
        *error = LineError(record.line, std::to_string(record.fields.size()) +
                                            " fields, but the header names " +
                                            std::to_string(width) + " columns.");
        return false;
      }
    }
    for (size_t c = 0; c < std::min(width, record.fields.size()); ++c) {
      if (record.fields[c].text.size() > static_cast<size_t>(kMaxCellLength)) {
        *error = LineError(record.line, "the cell of column \"" + (*columns)[c].name +
                                            "\" is longer than 127 characters.");
        return false;
      }
    }
  }

  const Field empty;
  for (size_t c = 0; c < width; ++c) {
    Column& column = (*columns)[c];
    const auto cell = [&](size_t r) -> const Field& {
      const Record& record = records[r + 1];
      return c < record.fields.size() ? record.fields[c] : empty;
    };
    bool numeric = true;
    for (size_t r = 0; r < rows && numeric; ++r) numeric = IsNumberCell(cell(r));
    if (numeric) {
      column.type = 'N';
      column.numbers.reserve(rows);
      for (size_t r = 0; r < rows; ++r) {
        double value = kMissing;
        if (!cell(r).text.empty()) detail::ParseNumberText(cell(r).text, false, &value);
        column.numbers.push_back(value);
      }
    } else {
      column.type = 'C';
      column.texts.reserve(rows);
      for (size_t r = 0; r < rows; ++r) {
        column.texts.push_back(cell(r).text);
        column.width = std::max(column.width, static_cast<int32_t>(cell(r).text.size()));
      }
    }
  }
  return true;
}

bool NeedsQuotes(std::string_view text) {
  if (text.find_first_of(",\"\r\n") != std::string_view::npos) return true;
  // At the start of the file a byte order mark would be skipped on reading.
  if (text.substr(0, 3) == kByteOrderMark) return true;
  return !text.empty() && (IsBlank(text.front()) || IsBlank(text.back()));
}

void WriteField(std::string* out, std::string_view text, bool quote) {
  if (!quote) {
    out->append(text);
    return;
  }
  *out += '"';
  for (char c : text) {
    if (c == '"') *out += '"';
    *out += c;
  }
  *out += '"';
}

}  // namespace

bool LoadCsvText(std::string_view text, std::string* error) {
  std::string ignored;
  if (error == nullptr) error = &ignored;
  const size_t zero = text.find('\0');
  if (zero != std::string_view::npos) {
    const auto prefix = text.substr(0, zero);
    const auto line = 1 + std::count(prefix.begin(), prefix.end(), '\n');
    *error = LineError(static_cast<int32_t>(line), "the text holds a zero byte.");
    return false;
  }
  std::vector<Record> records;
  std::vector<Column> columns;
  if (!ReadRecords(text, &records, error) || !BuildSheet(records, &columns, error)) return false;
  detail::SheetState& sheet = detail::Sheet();
  sheet.columns = std::move(columns);
  sheet.selectLength = 0;
  return true;
}

bool LoadCsvFile(const std::string& path, std::string* error) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    if (error) *error = "Cannot open \"" + path + "\".";
    return false;
  }
  std::ostringstream content;
  content << in.rdbuf();
  return LoadCsvText(content.str(), error);
}

std::string SaveCsvText() {
  const std::vector<Column>& columns = Columns();
  std::string out;
  if (columns.empty()) return out;
  for (size_t c = 0; c < columns.size(); ++c) {
    if (c > 0) out += ',';
    WriteField(&out, columns[c].name, NeedsQuotes(columns[c].name));
  }
  out += "\r\n";
  const int32_t rows = RowCount();
  for (int32_t r = 0; r < rows; ++r) {
    const size_t lineStart = out.size();
    for (size_t c = 0; c < columns.size(); ++c) {
      const Column& column = columns[c];
      if (c > 0) out += ',';
      if (r >= detail::ColumnLength(column)) continue;
      if (column.type == 'C') {
        const std::string& text = column.texts[static_cast<size_t>(r)];
        double value = 0.0;
        // A text that would read back as a number keeps its quotes.
        WriteField(&out, text, NeedsQuotes(text) || detail::ParseNumberText(text, false, &value));
      } else if (column.numbers[static_cast<size_t>(r)] != kMissing) {
        out += detail::FormatNumberText(column.numbers[static_cast<size_t>(r)]);
      }
    }
    // A blank line would be skipped on reading: a lone empty cell is quoted.
    if (out.size() == lineStart) out += "\"\"";
    out += "\r\n";
  }
  return out;
}

bool SaveCsvFile(const std::string& path, std::string* error) {
  std::string ignored;
  if (error == nullptr) error = &ignored;
  const int fault = detail::ReplaceFile(path, SaveCsvText());
  if (fault != 0) {
    *error = "Cannot write \"" + path + "\": " + detail::FileFault(fault) + ".";
    return false;
  }
  return true;
}

}  // namespace zvgrid
