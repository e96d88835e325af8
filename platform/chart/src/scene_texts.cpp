// The graph's text items, placed in the unit square, and the legend's box
// around the samples and texts gathered for it.
#include <algorithm>
#include <cmath>

#include "scene_canvas.h"

namespace zvchart {
namespace scene {

struct TextLook {
  const char* role;
  Anchor anchor;
  double rotation;
  int colour;  // index into textColor
};

TextLook LookOf(int32_t kind, bool threeD) {
  switch (kind) {
    case 1:
      return {"title", Anchor::kMiddle, 0, 0};
    case 2:
      return {"subtitle", Anchor::kMiddle, 0, 0};
    case 3:
      return {"axis-title", Anchor::kMiddle, 0, 1};
    case 4:
      return {"axis-title", Anchor::kMiddle, threeD ? 0.0 : -90.0, 1};
    case 5:
      return {"axis-title", Anchor::kMiddle, -90, 1};
    case 6:
      return {"tick-label", Anchor::kMiddle, 0, 2};
    case 7:
      return {"tick-label", threeD ? Anchor::kMiddle : Anchor::kEnd, 0, 2};
    case 8:
      return {"tick-label", Anchor::kEnd, 0, 2};
    case 9:
    case 10:
    case 11:
      return {"factor-label", threeD ? Anchor::kMiddle : Anchor::kEnd, 0, 2};
    case 12:
      return {"legend-text", Anchor::kStart, 0, 3};
    case 13:
    case 19:
      return {"text", Anchor::kStart, 0, 3};
    case 20:
      return {"message", Anchor::kMiddle, 0, 3};
    default:
      return {"text", Anchor::kMiddle, 0, 3};
  }
}

void DrawTexts(Canvas& c) {
  const zv::PaneRecord& r = c.r;
  const Layout& l = c.layout;
  int messages = 0;
  for (const TextItem& item : c.g.textItems) {
    int32_t kind = item.kind;
    if (kind == 12 && r.legendOn == 0) continue;
    TextLook look = LookOf(kind, l.threeD);
    bool styled = kind == 0 && item.words[0] > 0;
    int32_t size = kind >= 1 && kind <= 20 ? r.textStyleK[kind - 1]
                   : styled                ? item.words[0]
                                           : r.textStyleK[18];
    if (size <= 0) size = 11;
    bool bold =
        kind >= 1 && kind <= 20 ? r.textStyleL[kind - 1] != 0 : styled && item.words[1] != 0;
    Rgb colour =
        FromColourRef(styled ? static_cast<uint32_t>(item.words[5]) : r.textColor[look.colour]);
    for (const TextString& s : item.strings) {
      std::string text = Latin1ToUtf8(ExpandPlaceholders(s.text, c.g));
      if (text.find_first_not_of(' ') == std::string::npos) continue;
      SceneItem t;
      t.kind = ItemKind::kText;
      t.role = look.role;
      t.text = std::move(text);
      t.fontSize = std::clamp(size * kTextUnit * l.side, 6.0, 40.0);
      t.bold = bold;
      t.anchor = look.anchor;
      t.rotation = look.rotation;
      t.fill = colour;
      bool flat = !l.threeD || kind == 12 || kind == 13 || kind == 19;
      if (kind == 20) {
        t.centre = {c.size.width / 2.0, c.size.height / 2.0 + 1.5 * t.fontSize * messages++};
      } else {
        t.centre = flat ? Flat(l, s.x, s.y) : Space(l, s.x, s.y, s.z);
      }
      if (!Valid(t.centre)) continue;
      (kind == 12 ? c.legend : c.items).push_back(std::move(t));
    }
  }
}

void DrawLegend(Canvas& c) {
  if (c.legend.empty()) return;
  Bounds b;
  for (const SceneItem& it : c.legend) AddToBounds(b, it);
  double pad = 0.4 * SymbolRadius(c.layout) + 3;
  SceneItem frame = Line("legend",
                         {{b.left - pad, b.top - pad},
                          {b.right + pad, b.top - pad},
                          {b.right + pad, b.bottom + pad},
                          {b.left - pad, b.bottom + pad}},
                         kLegendBorder, 0.8);
  frame.closed = true;
  frame.filled = true;
  frame.fill = kWhite;
  c.items.push_back(std::move(frame));
  for (SceneItem& it : c.legend) c.items.push_back(std::move(it));
  c.legend.clear();
}

}  // namespace scene
}  // namespace zvchart
