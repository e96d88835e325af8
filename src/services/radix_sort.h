// A stable radix sort of records by a 64-bit unsigned key, and the map of a
// double to such a key. The row orders that must keep rows of equal key in
// row order use it: linear in the rows where a comparison sort is not.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

namespace zv {

// A double as an unsigned integer of the same order: the sign bit set for a
// positive value, every bit flipped for a negative one. -0 is taken as +0,
// so that the two are equal as the doubles are.
inline uint64_t OrderedKey(double value) {
  if (value == 0.0) value = 0.0;
  uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return (bits >> 63) != 0 ? ~bits : bits | (uint64_t{1} << 63);
}

// Sorts items[0..n-1] stably by key(item), a uint64_t, least significant
// byte first (LSD radix sort, eight counting passes, all histograms from
// one read). A byte that is the same in every key costs no pass. `spare`
// holds n more items; the result is in `items`.
template <class Item, class Key>
void RadixSortByKey(Item* items, Item* spare, size_t n, Key key) {
  if (n < 2) return;
  size_t counts[8][256] = {};
  for (size_t i = 0; i < n; ++i) {
    const uint64_t k = key(items[i]);
    for (int b = 0; b < 8; ++b) ++counts[b][(k >> (8 * b)) & 0xFF];
  }
  Item* from = items;
  Item* to = spare;
  for (int b = 0; b < 8; ++b) {
    size_t* offsets = counts[b];
    const int shift = 8 * b;
    if (offsets[(key(from[0]) >> shift) & 0xFF] == n) continue;
    size_t sum = 0;
    for (int d = 0; d < 256; ++d) sum += std::exchange(offsets[d], sum);
    for (size_t i = 0; i < n; ++i) to[offsets[(key(from[i]) >> shift) & 0xFF]++] = from[i];
    std::swap(from, to);
  }
  if (from != items) std::memcpy(static_cast<void*>(items), from, sizeof(Item) * n);
}

}  // namespace zv
