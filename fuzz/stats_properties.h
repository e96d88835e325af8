// What must hold for any arguments to the statistical functions: each call
// ends (within `seconds_per_call`, when that is positive) with a finite
// number, MissingValue or SilentAbort, never a NaN or an infinity. The fuzz
// target aborts on a broken property; the suite replays the inputs kept in
// tests/data/failures (stats-*) through the same check without a time limit.
//
// Input: one byte choosing the call (the eleven special functions, then the
// density, cumulative and inverse of a distribution), one byte for the
// distribution id, then up to four arguments of nine bytes each: a first byte
// below 48 picks one of the values in kNotable, any other takes the next
// eight bytes as the double's bits (NaN, infinities and subnormals included).
#pragma once

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>

#include "frame/host_records.h"
#include "stats/distributions.h"
#include "stats/guarded_math.h"
#include "stats/special_functions.h"

namespace zvfuzz {

inline double NotableValue(uint8_t pick) {
  constexpr double inf = std::numeric_limits<double>::infinity();
  const double kNotable[] = {0.0,
                             -0.0,
                             1.0,
                             -1.0,
                             0.5,
                             2.0,
                             0.25,
                             0.975,
                             1e-14,
                             1e-300,
                             4.9e-324,
                             2.2250738585072014e-308,
                             1e308,
                             -1e308,
                             inf,
                             -inf,
                             std::numeric_limits<double>::quiet_NaN(),
                             1e15,
                             -1e15,
                             9007199254740992.0,
                             3.0,
                             5.0,
                             10.0,
                             30.0,
                             99.0,
                             100.0,
                             500.0,
                             501.0,
                             1000.0,
                             1001.0,
                             7.107,
                             14.214,
                             200.0,
                             201.0,
                             1e5,
                             1e6,
                             -2.5,
                             -0.5,
                             1e-6,
                             0.999,
                             1 - 1e-16,
                             1e-17,
                             1e200,
                             -32768.0,
                             12.0,
                             0.3,
                             1.5,
                             7.0};
  static_assert(sizeof kNotable / sizeof kNotable[0] == 48);
  return kNotable[pick % 48];
}

// Reads the arguments; missing bytes give 0.
inline void DecodeArguments(const uint8_t* data, size_t size, double (&a)[4]) {
  for (double& value : a) {
    value = 0;
    if (size == 0) continue;
    const uint8_t head = *data++;
    --size;
    if (head < 48) {
      value = NotableValue(head);
    } else {
      uint8_t bits[8] = {};
      const size_t n = size < 8 ? size : 8;
      std::memcpy(bits, data, n);
      data += n;
      size -= n;
      std::memcpy(&value, bits, 8);
    }
  }
}

inline double Evaluate(uint8_t call, int32_t id, const double (&a)[4]) {
  switch (call % 14) {
    case 0:
      return zv::NormalCdf(a[0]);
    case 1:
      return zv::NormalQuantile(a[0]);
    case 2:
      return zv::StudentCdf(a[0], a[1]);
    case 3:
      return zv::StudentQuantile(a[0], a[1]);
    case 4:
      return zv::GammaFunction(a[0]);
    case 5:
      return zv::LogGamma(a[0]);
    case 6:
      return zv::IncompleteBeta(a[0], a[1], a[2]);
    case 7:
      return zv::ChiSquareCdf(a[0], a[1]);
    case 8:
      return zv::ChiSquareQuantile(a[0], a[1]);
    case 9:
      return zv::FQuantile(a[0], a[1], a[2]);
    case 10:
      return zv::BetaQuantile(a[0], a[1], a[2]);
    default: {
      double q[4] = {a[0], a[1], a[2], 0};
      zv::PrepareDistributionParameters(id, q, 1);
      if (call % 14 == 11) return zv::DistributionDensity(id, 0, q, a[3]);
      if (call % 14 == 12) return zv::DistributionCdf(id, 0, q, a[3]);
      return zv::DistributionInverse(id, 0, q, a[3]);
    }
  }
}

// Empty when the property holds, else what broke.
inline std::string CheckStatistics(const uint8_t* data, size_t size, double seconds_per_call) {
  if (size < 2) return "";
  const uint8_t call = data[0];
  const int32_t id = data[1] % zv::kDistributionCount;
  double a[4];
  DecodeArguments(data + 2, size - 2, a);
  char where[200];
  std::snprintf(where, sizeof where, "call %d id %d (%.17g, %.17g, %.17g, %.17g)", call % 14, id,
                a[0], a[1], a[2], a[3]);
  const auto start = std::chrono::steady_clock::now();
  double value = 0;
  bool aborted = false;
  try {
    value = Evaluate(call, id, a);
  } catch (const zv::SilentAbort&) {
    aborted = true;
  }
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  if (seconds_per_call > 0 && seconds > seconds_per_call) {
    return std::string("took ") + std::to_string(seconds) + " s: " + where;
  }
  if (!aborted && !std::isfinite(value)) {
    return "not a finite number (" + std::to_string(value) + "): " + where;
  }
  return "";
}

}  // namespace zvfuzz
