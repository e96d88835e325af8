// A second reader of the sheet's CSV rules (platform/grid/README.md),
// written for plainness rather than speed: the whole text split into records
// of unescaped fields first, then the header, then each column typed from
// all its cells, numbers converted by strtod. The fuzz target and the tests
// compare the sheet's one-pass reader with it.
#pragma once

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "zvgrid/sheet.h"
#include "zvgrid/zvgrid.h"

namespace zvfuzz {

struct ReferenceField {
  std::string text;
  bool quoted = false;
};

struct ReferenceRecord {
  std::vector<ReferenceField> fields;
  int line = 0;
};

inline std::string ReferenceLineError(int line, const std::string& what) {
  return "Line " + std::to_string(line) + ": " + what;
}

inline std::string ReferenceTrim(std::string_view text) {
  size_t first = 0;
  size_t last = text.size();
  while (first < last && (text[first] == ' ' || text[first] == '\t')) ++first;
  while (last > first && (text[last - 1] == ' ' || text[last - 1] == '\t')) --last;
  return std::string(text.substr(first, last - first));
}

inline bool ReferenceSameName(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    const auto x = static_cast<unsigned char>(a[i]);
    const auto y = static_cast<unsigned char>(b[i]);
    if (x != y && !(x < 128 && y < 128 && std::tolower(x) == std::tolower(y))) return false;
  }
  return true;
}

// The records of the text; an empty string, or the fault of its quotes.
inline std::string ReferenceRecords(std::string_view text, std::vector<ReferenceRecord>* records) {
  size_t at = text.substr(0, 3) == "\xEF\xBB\xBF" ? 3 : 0;
  int line = 1;
  const auto lineEnd = [&](size_t i) {
    return text[i] == '\n' || (text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n'));
  };
  while (at < text.size()) {
    ReferenceRecord record;
    record.line = line;
    for (bool more = true; more;) {
      ReferenceField field;
      size_t start = at;
      while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
      if (at < text.size() && text[at] == '"') {
        field.quoted = true;
        const int opened = line;
        for (++at;; ++at) {
          if (at == text.size()) return ReferenceLineError(opened, "a quoted field is not closed.");
          if (text[at] == '"' && at + 1 < text.size() && text[at + 1] == '"') {
            field.text += '"';
            ++at;
          } else if (text[at] == '"') {
            break;
          } else {
            if (lineEnd(at)) ++line;
            field.text += text[at];
          }
        }
        ++at;
        while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
        if (at < text.size() && text[at] != ',' && text[at] != '\r' && text[at] != '\n')
          return ReferenceLineError(line, "text follows the closing quote of a field.");
      } else {
        at = start;
        while (at < text.size() && text[at] != ',' && text[at] != '\r' && text[at] != '\n') ++at;
        field.text = ReferenceTrim(text.substr(start, at - start));
      }
      record.fields.push_back(field);
      more = at < text.size() && text[at] == ',';
      if (more) ++at;
    }
    if (at < text.size()) {
      at += text.compare(at, 2, "\r\n") == 0 ? 2 : 1;
      ++line;
    }
    if (record.fields.size() > 1 || record.fields[0].quoted || !record.fields[0].text.empty())
      records->push_back(record);
  }
  return {};
}

// 'M' missing, 'N' a number (in *value), 'F' not finite, 'T' a text.
inline char ReferenceCellKind(const ReferenceField& field, const std::vector<std::string>& codes,
                              double* value) {
  if (field.text.empty()) return 'M';
  if (field.quoted) return 'T';
  for (const std::string& code : codes) {
    if (field.text == code) return 'M';
  }
  std::string body = field.text;
  if (body[0] == '+' || body[0] == '-') body.erase(0, 1);
  std::string lower;
  for (char c : body) lower += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (lower == "inf" || lower == "infinity" || lower == "nan") return 'F';
  // digits [. digits] | . digits, then [e [sign] digits]
  size_t i = 0;
  const auto digits = [&] {
    const size_t from = i;
    while (i < body.size() && body[i] >= '0' && body[i] <= '9') ++i;
    return i > from;
  };
  bool mantissa = digits();
  if (i < body.size() && body[i] == '.') {
    ++i;
    mantissa = digits() || mantissa;
  }
  if (!mantissa) return 'T';
  if (i < body.size() && (body[i] == 'e' || body[i] == 'E')) {
    ++i;
    if (i < body.size() && (body[i] == '+' || body[i] == '-')) ++i;
    if (!digits()) return 'T';
  }
  if (i != body.size()) return 'T';
  errno = 0;
  *value = std::strtod(field.text.c_str(), nullptr);
  return errno == ERANGE && (*value > 1.0 || *value < -1.0) ? 'F' : 'N';
}

// Loads the text by the rules into *columns; the error text when refused.
inline std::string ReferenceLoad(std::string_view text, const std::vector<std::string>& codes,
                                 std::vector<zvgrid::Column>* columns) {
  if (const size_t zero = text.find('\0'); zero != std::string_view::npos) {
    int line = 1;
    for (size_t i = 0; i < zero; ++i) line += text[i] == '\n';
    return ReferenceLineError(line, "the text holds a zero byte.");
  }
  std::vector<ReferenceRecord> records;
  if (std::string fault = ReferenceRecords(text, &records); !fault.empty()) return fault;
  if (records.empty()) return {};
  const ReferenceRecord& header = records[0];
  if (header.fields.size() > 256)
    return ReferenceLineError(header.line, "the header names " +
                                               std::to_string(header.fields.size()) +
                                               " columns; a sheet holds at most 256.");
  for (size_t c = 0; c < header.fields.size(); ++c) {
    const std::string name = ReferenceTrim(header.fields[c].text);
    if (name.empty())
      return ReferenceLineError(header.line, "column " + std::to_string(c + 1) + " has no name.");
    if (name.size() > 32)
      return ReferenceLineError(header.line,
                                "the name \"" + name + "\" is longer than 32 characters.");
    for (const zvgrid::Column& earlier : *columns) {
      if (ReferenceSameName(earlier.name, name))
        return ReferenceLineError(header.line, "the name \"" + name + "\" appears twice.");
    }
    columns->emplace_back();
    columns->back().name = name;
  }
  if (records.size() - 1 > static_cast<size_t>(zvgrid::kMaxRows))
    return ReferenceLineError(records[static_cast<size_t>(zvgrid::kMaxRows) + 1].line,
                              "the sheet holds more than 1048576 rows.");
  const size_t width = columns->size();
  for (size_t r = 1; r < records.size(); ++r) {
    for (size_t c = width; c < records[r].fields.size(); ++c) {
      if (!records[r].fields[c].text.empty())
        return ReferenceLineError(records[r].line, std::to_string(records[r].fields.size()) +
                                                       " fields, but the header names " +
                                                       std::to_string(width) + " columns.");
    }
    for (size_t c = 0; c < width && c < records[r].fields.size(); ++c) {
      if (records[r].fields[c].text.size() > 127)
        return ReferenceLineError(records[r].line, "the cell of column \"" + (*columns)[c].name +
                                                       "\" is longer than 127 characters.");
    }
  }
  int notFiniteLine = 0;
  std::string notFinite;
  for (size_t c = 0; c < width; ++c) {
    zvgrid::Column& column = (*columns)[c];
    int firstNotFinite = 0;
    std::string firstNotFiniteCell;
    for (size_t r = 1; r < records.size(); ++r) {
      const ReferenceField field =
          c < records[r].fields.size() ? records[r].fields[c] : ReferenceField();
      double value = zvgrid::kMissing;
      const char kind = ReferenceCellKind(field, codes, &value);
      column.numbers.push_back(kind == 'N' ? value : zvgrid::kMissing);
      column.texts.push_back(kind == 'M' ? "" : field.text);
      if (kind == 'T' && column.textRow == 0) {
        column.textRow = static_cast<int32_t>(r);
        column.textCell = field.text;
        column.textQuoted = field.quoted;
      }
      if (kind == 'F' && firstNotFinite == 0) {
        firstNotFinite = records[r].line;
        firstNotFiniteCell = field.text;
      }
    }
    column.type = column.textRow > 0 ? 'C' : 'N';
    if (column.type == 'N') {
      column.texts.clear();
      if (firstNotFinite > 0 && (notFiniteLine == 0 || firstNotFinite < notFiniteLine)) {
        notFiniteLine = firstNotFinite;
        notFinite = "column \"" + column.name + "\" holds \"" + firstNotFiniteCell +
                    "\", which is not a finite number.";
      }
    } else {
      column.numbers.clear();
      for (const std::string& cell : column.texts)
        column.width = std::max(column.width, static_cast<int32_t>(cell.size()));
    }
  }
  if (notFiniteLine > 0) {
    columns->clear();
    return ReferenceLineError(notFiniteLine, notFinite);
  }
  return {};
}

}  // namespace zvfuzz
