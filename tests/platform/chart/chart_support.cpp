#include "chart_support.h"

#include <expat.h>

#include <cstdlib>
#include <cstring>

namespace chart_test {

GraphInput::GraphInput() : titleLines(64 * 80, ' '), titleLengths(64, 0) {
  std::vector<int32_t> integers(zv::kIntegerOptionWords);
  std::vector<double> realOptions(zv::kRealOptionCount);
  ChartGetDefaults(integers.data(), realOptions.data());
  zvchart::OptionsToRecord(integers.data(), realOptions.data(), record);
  for (int axis = 0; axis < 4; ++axis) {
    record.axes[axis].type = axis < 3 ? axis + 1 : 0;
    record.scale[axis] = {0.0, 1.0};
    record.factor[axis] = 1.0;
    record.factorOn[axis] = 1;
  }
}

void GraphInput::AddElement(int32_t pen, int32_t symbol, const std::vector<double>& points) {
  int32_t n = static_cast<int32_t>(points.size()) / pointWidth;
  elementTable.insert(elementTable.end(), {n, pen, symbol});
  elementPoints.insert(elementPoints.end(), points.begin(), points.end());
}

void GraphInput::AddMarks(int32_t style, const std::vector<std::array<double, 12>>& marks) {
  markTable.insert(markTable.end(), {static_cast<int32_t>(marks.size()), style});
  for (const auto& m : marks) markPoints.insert(markPoints.end(), m.begin(), m.end());
}

void GraphInput::AddShapes(int32_t style, const std::vector<std::array<double, 4>>& shapes) {
  shapeTable.insert(shapeTable.end(), {static_cast<int32_t>(shapes.size()), style});
  for (const auto& s : shapes) shapePoints.insert(shapePoints.end(), s.begin(), s.end());
}

void GraphInput::AddText(int32_t kind, const std::string& text, double x, double y, double z) {
  size_t items = textItems.size() / 11;
  if (items > 0 && textItems[(items - 1) * 11 + 1] == kind) {
    ++textItems[(items - 1) * 11];
  } else {
    textItems.insert(textItems.end(), {1, kind, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  }
  std::string padded = text.substr(0, 80);
  padded.resize(80, ' ');
  textStrings.insert(textStrings.end(), padded.begin(), padded.end());
  textNumbers.insert(textNumbers.end(),
                     {x, y, z, static_cast<double>(std::min<size_t>(text.size(), 80)), 0, 0, 0, 0});
}

void GraphInput::SetTitleLine(int line, const std::string& text) {
  std::memcpy(titleLines.data() + (line - 1) * 80, text.data(), std::min<size_t>(text.size(), 80));
  titleLengths[line - 1] = static_cast<int32_t>(std::min<size_t>(text.size(), 80));
}

void GraphInput::SetAxis(int axis, double low, double high, const std::vector<double>& ticks,
                         int log, int minorDivisions) {
  record.scale[axis] = {low, high - low};
  record.logScale[axis] = log;
  record.ticks[axis][0] = static_cast<double>(ticks.size());
  for (size_t i = 0; i < ticks.size(); ++i) record.ticks[axis][i + 1] = ticks[i];
  record.axes[axis].visible = 1;
  record.axes[axis].majorTicks = static_cast<int32_t>(ticks.size()) - 1;
  record.axes[axis].minorTicks = minorDivisions;
}

void GraphInput::Draw(WindowRef window, int32_t graphId, int32_t slot, int32_t rowCount) {
  auto count = [](const auto& v, size_t per) { return static_cast<int32_t>(v.size() / per); };
  auto data = [](auto& v) { return v.empty() ? nullptr : v.data(); };
  ChartDraw(window, graphId, &record.frameStyle, data(elementTable), count(elementTable, 3),
            data(elementPoints), count(elementPoints, pointWidth), pointWidth, data(shapeTable),
            count(shapeTable, 2), data(shapePoints), count(shapePoints, 4), data(markTable),
            count(markTable, 2), data(markPoints), count(markPoints, 12), data(textItems),
            count(textItems, 11), data(textNumbers), data(textStrings), count(textStrings, 80),
            titleLines.data(), titleLengths.data(), reals.data(), words.data(), data(pairX),
            data(pairY), data(pairZ), data(pairId), count(pairX, 1), rowCount, slot, nullptr);
}

std::string SvgElement::Attr(const std::string& key) const {
  auto it = attributes.find(key);
  return it == attributes.end() ? std::string() : it->second;
}

namespace {

struct ParseState {
  std::vector<SvgElement>* out;
  std::vector<size_t> open;  // indexes of the elements being read
};

void OnStart(void* data, const XML_Char* name, const XML_Char** attributes) {
  auto* s = static_cast<ParseState*>(data);
  SvgElement e;
  e.name = name;
  for (int i = 0; attributes[i] != nullptr; i += 2) e.attributes[attributes[i]] = attributes[i + 1];
  s->open.push_back(s->out->size());
  s->out->push_back(std::move(e));
}

void OnEnd(void* data, const XML_Char*) {
  static_cast<ParseState*>(data)->open.pop_back();
}

void OnText(void* data, const XML_Char* text, int length) {
  auto* s = static_cast<ParseState*>(data);
  if (!s->open.empty()) (*s->out)[s->open.back()].text.append(text, length);
}

}  // namespace

bool ParseSvg(const std::string& svg, std::vector<SvgElement>* elements, std::string* error) {
  elements->clear();
  ParseState state{elements, {}};
  XML_Parser parser = XML_ParserCreate("UTF-8");
  XML_SetUserData(parser, &state);
  XML_SetElementHandler(parser, OnStart, OnEnd);
  XML_SetCharacterDataHandler(parser, OnText);
  bool ok = XML_Parse(parser, svg.data(), static_cast<int>(svg.size()), 1) == XML_STATUS_OK;
  if (!ok && error != nullptr) {
    *error = std::string(XML_ErrorString(XML_GetErrorCode(parser))) + " at line " +
             std::to_string(XML_GetCurrentLineNumber(parser));
  }
  XML_ParserFree(parser);
  return ok;
}

std::vector<const SvgElement*> WithClass(const std::vector<SvgElement>& all,
                                         const std::string& name, const std::string& cls) {
  std::vector<const SvgElement*> found;
  for (const SvgElement& e : all) {
    if (e.name == name && e.Class() == cls) found.push_back(&e);
  }
  return found;
}

std::vector<std::vector<Point>> PathPoints(const SvgElement& path) {
  std::vector<std::vector<Point>> subpaths;
  const std::string d = path.Attr("d");
  const char* p = d.c_str();
  while (*p != '\0') {
    char command = *p;
    if (command == 'M' || command == 'L') {
      if (command == 'M') subpaths.emplace_back();
      char* end;
      double x = std::strtod(p + 1, &end);
      double y = std::strtod(end, &end);
      subpaths.back().push_back({x, y});
      p = end;
    } else {
      ++p;
    }
  }
  return subpaths;
}

}  // namespace chart_test
