// CSV files of the sheet: RFC 4180 fields (quotes doubled inside quoted
// fields, line breaks allowed there), CRLF, LF or CR line ends, an optional
// UTF-8 byte order mark. Blank lines are skipped. A cell in quotes is always
// a text; an unquoted cell loses its blanks at both ends.
//
// Loading makes one pass over the text with cells as views into it: each
// cell of a column that is numeric so far is typed and converted by one
// from_chars. A column that turns out to be text keeps the texts from that
// row on; a second, partial pass fills in its rows before it.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>

#include "file_replace.h"
#include "number_text.h"
#include "sheet_store.h"

namespace zvgrid {
namespace {

using detail::CellNumber;
using detail::kMaxCellLength;
using detail::kMaxNameLength;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string LineError(int32_t line, const std::string& what) {
  return "Line " + std::to_string(line) + ": " + what;
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

bool IsMissingCode(std::string_view text, const std::vector<std::string>& codes) {
  for (const std::string& code : codes) {
    if (text == code) return true;
  }
  return false;
}

// One cell as it stands in the text.
struct RawCell {
  std::string_view body;  // unquoted: without blanks at both ends; quoted: between the quotes
  bool quoted = false;
  size_t doubled = 0;  // quotes written twice in a quoted body

  size_t Length() const { return body.size() - doubled; }
  std::string Text() const {
    if (doubled == 0) return std::string(body);
    std::string text;
    text.reserve(Length());
    for (size_t i = 0; i < body.size(); ++i) {
      text += body[i];
      if (body[i] == '"') ++i;
    }
    return text;
  }
};

struct Cursor {
  std::string_view text;
  size_t at = 0;
  int32_t line = 1;
};

// Reads the cell at the cursor and the comma or line end after it; *last
// tells that the record ended there. False and a message for a quoted field
// never closed or text after a closing quote.
bool ReadCell(Cursor* cursor, RawCell* cell, bool* last, std::string* error) {
  const std::string_view text = cursor->text;
  const size_t n = text.size();
  size_t at = cursor->at;
  while (at < n && IsBlank(text[at])) ++at;
  *cell = RawCell();
  if (at < n && text[at] == '"') {
    cell->quoted = true;
    const int32_t opened = cursor->line;
    const size_t bodyStart = ++at;
    for (;;) {
      const void* found = std::memchr(text.data() + at, '"', n - at);
      const size_t quote =
          found != nullptr ? static_cast<size_t>(static_cast<const char*>(found) - text.data()) : n;
      for (size_t i = at; i < quote; ++i) {
        if (text[i] == '\n' || (text[i] == '\r' && (i + 1 >= n || text[i + 1] != '\n')))
          ++cursor->line;
      }
      if (quote >= n) {
        *error = LineError(opened, "a quoted field is not closed.");
        return false;
      }
      if (quote + 1 < n && text[quote + 1] == '"') {
        ++cell->doubled;
        at = quote + 2;
        continue;
      }
      cell->body = text.substr(bodyStart, quote - bodyStart);
      at = quote + 1;
      break;
    }
    while (at < n && IsBlank(text[at])) ++at;
    if (at < n && text[at] != ',' && text[at] != '\r' && text[at] != '\n') {
      *error = LineError(cursor->line, "text follows the closing quote of a field.");
      return false;
    }
  } else {
    const size_t start = at;
    while (at < n && text[at] != ',' && text[at] != '\r' && text[at] != '\n') ++at;
    size_t end = at;
    while (end > start && IsBlank(text[end - 1])) --end;
    cell->body = text.substr(start, end - start);
  }
  *last = true;
  if (at < n) {
    if (text[at] == ',') {
      *last = false;
    } else {
      if (text[at] == '\r' && at + 1 < n && text[at + 1] == '\n') ++at;
      ++cursor->line;
    }
    ++at;
  }
  cursor->at = at;
  return true;
}

// Hands every cell of every record that is not a blank line to
// onCell(index, cell, line) and then the record's field count to
// onEnd(fields, line), which returns false to stop. False at a syntax fault.
template <class OnCell, class OnEnd>
bool ScanRecords(Cursor* cursor, OnCell&& onCell, OnEnd&& onEnd, std::string* error) {
  while (cursor->at < cursor->text.size()) {
    const int32_t line = cursor->line;
    RawCell cell;
    bool last = false;
    if (!ReadCell(cursor, &cell, &last, error)) return false;
    if (last && !cell.quoted && cell.body.empty()) continue;
    onCell(size_t{0}, cell, line);
    size_t fields = 1;
    while (!last) {
      if (!ReadCell(cursor, &cell, &last, error)) return false;
      onCell(fields++, cell, line);
    }
    if (!onEnd(fields, line)) break;
  }
  return true;
}

// A column as it is read: numeric until a cell says otherwise.
struct ColumnBuild {
  Column column;
  size_t textFrom = 0;  // rows before this one of a character column wait for the second pass
  int32_t notFiniteLine = 0;
  std::string notFiniteCell;

  void Add(const RawCell& cell, size_t row, int32_t line, const std::vector<std::string>& codes,
           size_t expectedRows) {
    const bool missing = cell.body.empty() || (!cell.quoted && IsMissingCode(cell.body, codes));
    if (column.type == 'N') {
      if (missing) {
        column.numbers.push_back(kMissing);
        return;
      }
      double value = 0.0;
      const CellNumber kind =
          cell.quoted ? CellNumber::kText : detail::ClassifyCell(cell.body, &value);
      if (kind == CellNumber::kNumber) {
        column.numbers.push_back(value);
        return;
      }
      if (kind == CellNumber::kNotFinite) {
        if (notFiniteLine == 0) {
          notFiniteLine = line;
          notFiniteCell.assign(cell.body);
        }
        column.numbers.push_back(kMissing);
        return;
      }
      column.type = 'C';
      column.textRow = static_cast<int32_t>(row) + 1;
      column.textCell = cell.Text();
      column.textQuoted = cell.quoted;
      textFrom = row;
      column.numbers = std::vector<double>();
      column.texts.reserve(expectedRows);
      column.texts.resize(row);
    }
    if (missing) {
      column.texts.emplace_back();
    } else {
      column.texts.push_back(cell.Text());
      column.width = std::max(column.width, static_cast<int32_t>(cell.Length()));
    }
  }

  void AddMissing() {
    if (column.type == 'N') {
      column.numbers.push_back(kMissing);
    } else {
      column.texts.emplace_back();
    }
  }
};

// The sheet that a text makes, built cell by cell. The first fault of each
// kind is kept while the pass goes on, since a fault of the text's syntax
// anywhere comes first; then those of the header, the row count, a record,
// and a cell that is not finite.
class SheetBuild {
 public:
  SheetBuild(Cursor* cursor, const std::vector<std::string>& codes)
      : cursor_(cursor), codes_(codes) {}

  void Cell(size_t index, const RawCell& cell, int32_t line) {
    if (!headerDone_) {
      ++headerFields_;
      if (names_.size() <= static_cast<size_t>(kGridMaxColumns)) names_.push_back(cell.Text());
      return;
    }
    if (index == 0 && rows_ == static_cast<size_t>(kMaxRows) && headerFault_.empty()) {
      rowsFault_ =
          LineError(line, "the sheet holds more than " + std::to_string(kMaxRows) + " rows.");
      storing_ = false;
    }
    if (!storing_) return;
    if (index >= columns_.size()) {
      extraField_ = extraField_ || !cell.body.empty();
      return;
    }
    if (cell.Length() > static_cast<size_t>(kMaxCellLength) && longCell_ < 0)
      longCell_ = static_cast<int64_t>(index);
    columns_[index].Add(cell, rows_, line, codes_, expectedRows_);
  }

  bool End(size_t fields, int32_t line) {
    if (!headerDone_) {
      headerDone_ = true;
      CheckHeader(line);
      dataStart_ = *cursor_;
      // Room for as many rows as the rest has line ends, so that no column
      // grows by copying: a bound, since blank lines and quoted line breaks
      // count too.
      const std::string_view rest = cursor_->text.substr(cursor_->at);
      expectedRows_ = std::min<size_t>(std::max(std::count(rest.begin(), rest.end(), '\n'),
                                                std::count(rest.begin(), rest.end(), '\r')) +
                                           1,
                                       static_cast<size_t>(kMaxRows));
      for (ColumnBuild& build : columns_) build.column.numbers.reserve(expectedRows_);
      return true;
    }
    ++rows_;
    if (!storing_) return true;
    for (size_t c = fields; c < columns_.size(); ++c) columns_[c].AddMissing();
    if (extraField_) {
      recordFault_ = LineError(line, std::to_string(fields) + " fields, but the header names " +
                                         std::to_string(columns_.size()) + " columns.");
    } else if (longCell_ >= 0) {
      recordFault_ = LineError(line, "the cell of column \"" +
                                         columns_[static_cast<size_t>(longCell_)].column.name +
                                         "\" is longer than 127 characters.");
    }
    if (!recordFault_.empty()) storing_ = false;
    return true;
  }

  // The columns, with the rows of character columns before their first text
  // filled in from a second pass over the text; false and the first fault.
  bool Finish(std::vector<Column>* columns, std::string* error) {
    for (const std::string* fault : {&headerFault_, &rowsFault_, &recordFault_}) {
      if (!fault->empty()) {
        *error = *fault;
        return false;
      }
    }
    const ColumnBuild* notFinite = nullptr;
    size_t backfill = 0;
    for (const ColumnBuild& build : columns_) {
      if (build.column.type == 'C') backfill = std::max(backfill, build.textFrom);
      if (build.column.type == 'N' && build.notFiniteLine > 0 &&
          (notFinite == nullptr || build.notFiniteLine < notFinite->notFiniteLine))
        notFinite = &build;
    }
    if (notFinite != nullptr) {
      *error = LineError(notFinite->notFiniteLine, "column \"" + notFinite->column.name +
                                                       "\" holds \"" + notFinite->notFiniteCell +
                                                       "\", which is not a finite number.");
      return false;
    }
    if (backfill > 0) Backfill(backfill);
    columns->reserve(columns_.size());
    for (ColumnBuild& build : columns_) columns->push_back(std::move(build.column));
    return true;
  }

 private:
  void CheckHeader(int32_t line) {
    if (headerFields_ > static_cast<size_t>(kGridMaxColumns)) {
      headerFault_ = LineError(line, "the header names " + std::to_string(headerFields_) +
                                         " columns; a sheet holds at most 256.");
      storing_ = false;
      return;
    }
    for (size_t c = 0; c < names_.size(); ++c) {
      const std::string name(detail::TrimBlanks(names_[c]));
      if (name.empty()) {
        headerFault_ = LineError(line, "column " + std::to_string(c + 1) + " has no name.");
      } else if (name.size() > static_cast<size_t>(kMaxNameLength)) {
        headerFault_ = LineError(line, "the name \"" + name + "\" is longer than 32 characters.");
      } else {
        for (const ColumnBuild& earlier : columns_) {
          if (detail::EqualNoCase(earlier.column.name, name))
            headerFault_ = LineError(line, "the name \"" + name + "\" appears twice.");
        }
      }
      if (!headerFault_.empty()) {
        storing_ = false;
        return;
      }
      columns_.emplace_back();
      columns_.back().column.name = name;
    }
  }

  void Backfill(size_t rows) {
    Cursor cursor = dataStart_;
    size_t row = 0;
    std::string ignored;
    ScanRecords(
        &cursor,
        [&](size_t index, const RawCell& cell, int32_t) {
          if (index >= columns_.size()) return;
          ColumnBuild& build = columns_[index];
          if (build.column.type != 'C' || row >= build.textFrom) return;
          if (cell.body.empty() || (!cell.quoted && IsMissingCode(cell.body, codes_))) return;
          build.column.texts[row] = cell.Text();
          build.column.width = std::max(build.column.width, static_cast<int32_t>(cell.Length()));
        },
        [&](size_t, int32_t) { return ++row < rows; }, &ignored);
  }

  Cursor* cursor_;
  const std::vector<std::string>& codes_;
  bool headerDone_ = false;
  size_t headerFields_ = 0;
  std::vector<std::string> names_;
  std::vector<ColumnBuild> columns_;
  Cursor dataStart_;
  size_t rows_ = 0;
  size_t expectedRows_ = 0;
  bool storing_ = true;
  bool extraField_ = false;
  int64_t longCell_ = -1;
  std::string headerFault_, rowsFault_, recordFault_;
};

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

// A number in its shortest form, unless that form is a missing code: then
// with leading zeros after the sign, as few as make it no code (one of
// codes.size() + 1 forms is none).
void WriteNumber(std::string* out, double value, const std::vector<std::string>& codes) {
  std::string text = detail::FormatNumberText(value);
  const size_t digits = text.front() == '-' ? 1 : 0;
  for (size_t zeros = 0; zeros <= codes.size() && IsMissingCode(text, codes); ++zeros)
    text.insert(digits, 1, '0');
  out->append(text);
}

}  // namespace

bool LoadCsvText(std::string_view text, std::string* error) {
  std::string ignored;
  if (error == nullptr) error = &ignored;
  if (const void* zero = std::memchr(text.data(), '\0', text.size()); zero != nullptr) {
    const auto prefix =
        text.substr(0, static_cast<size_t>(static_cast<const char*>(zero) - text.data()));
    const auto line = 1 + std::count(prefix.begin(), prefix.end(), '\n');
    *error = LineError(static_cast<int32_t>(line), "the text holds a zero byte.");
    return false;
  }
  detail::SheetState& sheet = detail::Sheet();
  Cursor cursor{text, text.substr(0, 3) == kByteOrderMark ? size_t{3} : size_t{0}, 1};
  SheetBuild build(&cursor, sheet.missingCodes);
  std::vector<Column> columns;
  const bool read = ScanRecords(
      &cursor,
      [&build](size_t index, const RawCell& cell, int32_t line) { build.Cell(index, cell, line); },
      [&build](size_t fields, int32_t line) { return build.End(fields, line); }, error);
  if (!read || !build.Finish(&columns, error)) return false;
  sheet.columns = std::move(columns);
  sheet.selectLength = 0;
  sheet.servedTextColumn = -1;
  return true;
}

bool LoadCsvFile(const std::string& path, std::string* error) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  std::string content;
  bool read = file != nullptr;
  if (read) {
    // One read into one buffer, grown only when the file is longer than its
    // size said (a pipe, a file still being written).
    if (std::fseek(file, 0, SEEK_END) == 0) {
      const long size = std::ftell(file);
      if (size > 0) content.reserve(static_cast<size_t>(size) + 1);
      std::rewind(file);
    }
    size_t used = 0;
    for (;;) {
      content.resize(std::max(content.capacity(), used + 65536));
      used += std::fread(content.data() + used, 1, content.size() - used, file);
      if (used < content.size()) break;
    }
    content.resize(used);
    read = std::ferror(file) == 0;
    std::fclose(file);
  }
  if (!read) {
    if (error) *error = "Cannot open \"" + path + "\".";
    return false;
  }
  return LoadCsvText(content, error);
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
  const std::vector<std::string>& codes = MissingCodes();
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
        // A text that would read back as a number or a missing value keeps
        // its quotes.
        WriteField(&out, text,
                   NeedsQuotes(text) || detail::ClassifyCell(text, &value) != CellNumber::kText ||
                       IsMissingCode(text, codes));
      } else if (column.numbers[static_cast<size_t>(r)] != kMissing) {
        WriteNumber(&out, column.numbers[static_cast<size_t>(r)], codes);
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
