#include "services/graph_arrays.h"

#include <iterator>

#include "services/variables.h"

namespace zv {

int32_t AllocGraphArrays(int32_t groups, int32_t points, int32_t kind, Handle* elements,
                         Handle* xValues, Handle* yValues, Handle* rowNumbers, Handle* zValues) {
  struct Request {
    Handle* handle;
    int64_t bytes;
  };
  const int64_t g = groups < 0 ? 0 : groups;
  const int64_t p = points < 0 ? 0 : points;
  const Request requests[] = {{elements, g * 12},
                              {xValues, p * 8},
                              {yValues, p * 8},
                              {rowNumbers, p * 4},
                              {kind == 3 ? zValues : nullptr, p * 8}};
  for (size_t k = 0; k < std::size(requests); ++k) {
    const Request& r = requests[k];
    if (r.handle == nullptr) continue;
    *r.handle = AllocItems(static_cast<uint64_t>(r.bytes), 1);
    if (*r.handle == 0) {
      for (size_t i = 0; i < k; ++i) {
        if (requests[i].handle != nullptr) FreeGlobal(requests[i].handle);
      }
      return 0;
    }
  }
  return 1;
}

}  // namespace zv
