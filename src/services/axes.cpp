#include "services/axes.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <utility>

#include "frame/host_records.h"
#include "frame/messages.h"
#include "frame/module_state.h"
#include "frame/string_ids.h"
#include "services/date_format.h"
#include "services/graph_pane.h"
#include "services/number_format.h"

namespace zv {
namespace {

constexpr double kAgree = 1e-10;  // two limits closer than this are one

bool IsDateType(char type) {
  return type == 'D' || type == 'M' || type == 'Q' || type == 'T' || type == 'S';
}

PaneRecord* AxisPane(int32_t axis) {
  return (gCurrentPane != nullptr && axis >= 1 && axis <= 4) ? gCurrentPane : nullptr;
}

int32_t TickCount(const PaneRecord& pane, int index) {
  const double count = pane.ticks[index][0];
  return count >= 0.0 && count <= kTickSlots - 1 ? static_cast<int32_t>(count) : 0;
}

// A snapped candidate of NiceScale: within 1e-5 of floor(c + 0.5), then of
// ceil(c + 0.5), it becomes that whole number.
double SnapToWhole(double c) {
  const double down = std::floor(c + 0.5);
  if (std::fabs(c - down) <= 1e-5) return down;
  const double up = std::ceil(c + 0.5);
  if (std::fabs(c - up) <= 1e-5) return up;
  return c;
}

// The power of ten that takes the rounded tick `a` back to the given limit
// `b`; 1 when they agree or no power can be had. Near the ends of the double
// range a / b or its inverse overflows, and the difference of the logarithms
// gives the power instead.
double MagnitudeOf(double a, double b) {
  if (std::fabs(a - b) <= kAgree) return 1.0;
  double inverse = 1.0 / (a / b);
  if ((!std::isfinite(inverse) || inverse == 0.0) && (a > 0.0) == (b > 0.0)) {
    inverse = std::pow(10.0, std::log10(std::fabs(b)) - std::log10(std::fabs(a)));
  }
  const double m = std::fabs(std::pow(10.0, std::ceil(std::log10(inverse))));
  return std::isfinite(m) && m > 0.0 ? m : 1.0;
}

// A factor of one power of ten either way reads as well without a label.
bool IsSilentFactor(double m) {
  for (double f : {0.1, 10.0, 0.01, 100.0}) {
    if (std::fabs(m - f) <= 1e-9 * f) return true;
  }
  return false;
}

// n + 1 ticks from low to high, the ends exact, divided by the factor.
void FillTicks(PaneRecord& pane, int index, int32_t n, double low, double high, double factor) {
  double* ticks = pane.ticks[index];
  ticks[0] = n + 1;
  const double step = n > 0 ? (high - low) / n : 0.0;
  for (int32_t i = 0; i <= n; ++i) {
    const double value = i == 0 ? low : i == n ? high : low + i * step;
    ticks[1 + i] = value / factor;
  }
  pane.factor[index] = factor;
}

// Tick marks that the chart library draws on one axis: nine per decade on a
// logarithmic axis with minor ticks, less the one the frame or an outward
// tick already draws.
int32_t TickMarks(const PaneRecord& pane, int index, int32_t count) {
  const int32_t intervals = count - 1;
  if (pane.logScale[index] == 1 && pane.minorOn[index] != 0) {
    const bool shared =
        pane.threeD != 0 || pane.frameKind == 1 || pane.frameKind == 3 || pane.tickSide[index] != 0;
    return intervals * 9 - (shared ? 1 : 0);
  }
  return count - 2;
}

// Increments between the 17 ticks of the probability axis, in fractions of
// the axis; they add up to 1.
constexpr double kProbabilitySteps[16] = {0.18229, 0.07871, 0.18437, 0.08143, 0.08489, 0.05306,
                                          0.04063, 0.03453, 0.03159, 0.03089, 0.03283, 0.04051,
                                          0.02977, 0.04864, 0.01586, 0.03};

}  // namespace

int32_t NiceScale(double low, double high, double* outLow, double* outHigh, double* outFactor) {
  if ((low == kMissingValue && high == kMissingValue) || !std::isfinite(low) ||
      !std::isfinite(high)) {
    low = 0.0;
    high = 1.0;
  }
  if (high < low) std::swap(low, high);
  if (std::fabs(high - low) <= kAgree) {
    if (low == 0.0) {
      low = -0.1;
      high = 0.1;
    } else {
      low -= 0.1 * std::fabs(low);
      high += 0.1 * std::fabs(high);
    }
  }
  const double givenLow = low;
  const double givenHigh = high;

  // Limits in units of the leading power of ten, to one decimal.
  const double p = std::pow(10.0, std::floor(std::log10(high - low)));
  const double top = std::ceil(high / p * 10.0) * 0.1;
  double bottom =
      std::fabs(low / p) >= 10.0 ? std::floor(low / p) : std::floor(low / p * 10.0) * 0.1;
  if (bottom == 0.0) bottom = 0.001;
  if (top / bottom > 4.0) bottom = 0.0;  // a range far from 0 is shown from 0
  const double span = top - bottom;

  // Interval counts up to 6: span / k, then span / (k / 10).
  double candidates[10];
  int count = 0;
  for (int k = 5; k >= 1; --k) {
    const double c = span / k;
    if (c > 6.0) break;
    candidates[count++] = c;
  }
  if (count == 5) {
    for (int k = 5; k >= 1; --k) {
      const double c = SnapToWhole(span / (k * 0.1));
      if (c > 6.0) break;
      candidates[count++] = c;
    }
  }
  double best = 0.0;
  for (int i = 0; i < count; ++i) {
    if (candidates[i] == std::floor(candidates[i])) best = std::max(best, candidates[i]);
  }
  if (best < 4.0) {
    for (int i = 0; i < count; ++i) best = std::max(best, candidates[i]);
  }
  if (!(best > 0.0)) best = 1.0;
  const double step = span / best;
  const int32_t n = std::clamp(static_cast<int32_t>(std::ceil(best)), 1, kMaxIntervals);

  double ticks[kMaxIntervals + 1];
  for (int32_t i = 0; i <= n; ++i) ticks[i] = bottom + i * step;
  const double probe = ticks[0] > 0.0 ? ticks[0] : ticks[n];
  if (probe != std::floor(probe)) {
    for (int32_t i = 0; i <= n; ++i) ticks[i] *= 10.0;
  }
  double rounded[kMaxIntervals + 1];
  bool collide = false;
  for (int32_t i = 0; i <= n; ++i) {
    rounded[i] = std::floor(ticks[i] + 0.5);
    if (i > 0 && rounded[i] == rounded[i - 1]) collide = true;
  }
  if (collide) {  // whole numbers are too coarse: one decimal each
    for (int32_t i = 0; i <= n; ++i) {
      rounded[i] =
          std::min(std::ceil(10.0 * ticks[i]) * 0.1, std::ceil(10.0 * ticks[i] - 1e-10) * 0.1);
    }
  }

  double m;
  if (givenHigh <= 0.0 || rounded[n] <= 0.0) {
    m = MagnitudeOf(rounded[0], givenLow);
  } else {
    m = MagnitudeOf(rounded[n], givenHigh);
    // A negative low end may need more: when it agrees with the given low
    // this power is 1, so that m is then at least 1.
    if (rounded[0] < 0.0) m = std::max(m, MagnitudeOf(rounded[0], givenLow));
  }

  *outLow = rounded[0] * m;
  *outHigh = rounded[n] * m;
  *outFactor = IsSilentFactor(m) ? 1.0 : m;
  if (!(*outLow < *outHigh && std::isfinite(*outHigh - *outLow))) {
    // Near the ends of the double range the neat limits (or the span between
    // them) overflow: one interval over the given limits is all there is.
    *outLow = givenLow;
    *outHigh = givenHigh;
    *outFactor = 1.0;
    return 1;
  }
  return n;
}

bool AxisRangeFits(double low, double high) {
  if (!std::isfinite(low) || !std::isfinite(high)) return false;
  double outLow, outHigh, factor;
  NiceScale(low, high, &outLow, &outHigh, &factor);
  return outLow < outHigh && std::isfinite(outHigh - outLow);
}

void SetAxisAuto(int32_t axis, double low, double high, char type) {
  PaneRecord* pane = AxisPane(axis);
  if (pane == nullptr) return;
  const int a = axis - 1;
  if (pane->axisSet[a] == 1 || pane->axisFixed[a] == 1) return;
  if (low != kMissingValue && low <= 0.0) pane->logScale[a] = 0;

  double scaleLow = 0.0;
  double scaleHigh = 1.0;
  double factor = 1.0;
  int32_t n = 1;
  const bool log = pane->logScale[a] == 1;
  if (log) {
    if (low != kMissingValue && high != kMissingValue) {
      scaleLow = std::floor(std::log10(low));
      scaleHigh = std::ceil(std::log10(high));
    }
    if (!std::isfinite(scaleLow) || !std::isfinite(scaleHigh) || scaleHigh <= scaleLow) {
      scaleHigh = std::isfinite(scaleLow) ? scaleLow + 1.0 : 1.0;  // one decade at least
      if (!std::isfinite(scaleLow)) scaleLow = 0.0;
    }
    if (scaleHigh - scaleLow > kMaxIntervals) {
      n = 1;
    } else {
      n = static_cast<int32_t>(scaleHigh - scaleLow);
    }
  }
  pane->axisSet[a] = 1;
  pane->axisType[a] = type;
  if (!log) n = NiceScale(low, high, &scaleLow, &scaleHigh, &factor);
  if (pane->factorOn[a] == 0 || IsDateType(type)) factor = 1.0;

  if ((type == 'M' || type == 'Q') && low != kMissingValue) {
    // Start at the data's own first period, ticks whole years apart.
    const double period = type == 'M' ? 12.0 : 4.0;
    const double top = low - scaleLow + scaleHigh;
    scaleLow = low;
    const double step = (std::floor(((top - low) / n - 1.0) / period) + 1.0) * period;
    scaleHigh = low + n * step;
    while (n >= 3 && scaleHigh - step >= top) {
      --n;
      scaleHigh = low + n * step;
    }
  }

  pane->scale[a] = {scaleLow, scaleHigh - scaleLow};
  pane->dataRange[a] = {low, high};
  FillTicks(*pane, a, n, scaleLow, scaleHigh, factor);
}

int32_t SetAxisManual(int32_t axis, double low, double high, double step, int32_t useFactor,
                      int32_t log) {
  PaneRecord* pane = AxisPane(axis);
  if (pane == nullptr) return 1;
  const int a = axis - 1;
  if (pane->axisFixed[a] == 1) return 1;
  if (IsDateType(pane->axisType[a])) useFactor = 0;
  if (log) {
    if (low <= 0.0 || high <= 0.0) {
      ShowError(kLogAxisNeedsPositiveText);
      return 0;
    }
    low = std::floor(std::log10(low));
    high = std::ceil(std::log10(high));
    useFactor = 0;
    step = 1.0;  // (high - low) / n with n = high - low
  }
  const double q = (high - low) / step;
  int32_t n = kMaxIntervals + 1;  // also for an empty range or no step
  if (std::isfinite(q) && q > 0.0 && q <= kMaxIntervals) {
    n = static_cast<int32_t>(q);
    if (n != q) ++n;
  }
  if (n > kMaxIntervals) {
    n = 1;
    step = high - low;
  }
  pane->logScale[a] = log;
  double factor = 1.0;
  if (useFactor) {
    double niceLow, niceHigh;
    NiceScale(low, high, &niceLow, &niceHigh, &factor);
  }
  double* ticks = pane->ticks[a];
  ticks[0] = n + 1;
  for (int32_t i = 0; i <= n; ++i) ticks[1 + i] = (low + i * step) / factor;
  pane->factor[a] = factor;
  pane->scale[a] = {low, n * step};
  pane->dataRange[a] = {low, n * step};
  pane->axisSet[a] = 1;
  return 1;
}

int32_t PickMinorTicks(double step) {
  step = std::fabs(step);
  if (step == 0.0 || !std::isfinite(step)) return 1;
  // The step's leading digits as a number from 7 up to 70.
  double m = step * std::pow(10.0, std::ceil(std::log10(1.0 / step)));
  if (m < 7.0) m *= 10.0;
  const double whole = std::floor(m + 0.5);
  // A step too small for its reciprocal leaves no digits.
  if (!(whole >= 1.0 && whole <= 100.0) || std::fabs(m - whole) > 1e-9 * whole) return 1;
  const long digits = static_cast<long>(whole);
  for (int divisions : {7, 4, 3, 5, 2}) {
    if (digits % divisions == 0) return divisions;
  }
  return 1;
}

void SetAxisTicks(int32_t axis, int32_t majorTicks, int32_t minorTicks, int32_t tickOption) {
  PaneRecord* pane = AxisPane(axis);
  if (pane == nullptr) return;
  PaneAxis& target = pane->axes[axis - 1];
  target.visible = 1;
  target.majorTicks = majorTicks;
  target.minorTicks = minorTicks;
  target.tickOption = tickOption;
  if (axis == 4) target.type = 4;
}

void SetAxisTicksByScale(int32_t axis) {
  PaneRecord* pane = AxisPane(axis);
  if (pane == nullptr) return;
  const int32_t intervals = TickCount(*pane, axis - 1) - 1;
  const int32_t minor = intervals > 0 ? PickMinorTicks(pane->scale[axis - 1].span / intervals) : 1;
  SetAxisTicks(axis, intervals, minor, 0);
}

void ComputeFrame() {
  PaneRecord* pane = gCurrentPane;
  if (pane == nullptr) return;
  const int32_t countX = TickCount(*pane, 0);
  const int32_t countY = TickCount(*pane, 1);
  pane->intervalsX = countX - 1;
  pane->intervalsY = countY - 1;
  pane->majorX = TickMarks(*pane, 0, countX);
  pane->majorY = TickMarks(*pane, 1, countY);
  if (pane->threeD != 0) {
    // The third axis rides in the thousands of the y words.
    const int32_t countZ = TickCount(*pane, 2);
    pane->intervalsY += 1000 * (countZ - 1);
    pane->majorY += 1000 * TickMarks(*pane, 2, countZ);
  }
}

void DrawAxisLabels(int32_t position, int32_t titleFlag, int32_t labelMode) {
  if (gCurrentPane == nullptr || position < 1 || position > 3) return;
  PaneRecord& pane = *gCurrentPane;
  const bool threeD = pane.threeD != 0;
  if (position == 3 && !threeD) return;
  const int a = position - 1;

  // Sizes in the plot's unit square: a text of size S is 1.2 S / 385 high
  // and 0.002 S wide per character.
  const double size = pane.textStyleK[kTextTickLabel + a - 1];
  const double h = size * 0.003116883116883117;
  const double w = size * 0.002;
  const double g = std::max(h, w);
  const double e = pane.tickLength * 0.001;
  const double t = e + (pane.tickSide[a] == -1 ? pane.tickGap * 0.001 : 0.0);
  const double angle = threeD ? pane.viewAngle * 0.017453292519444445 : 0.0;
  const double sinA = std::sin(angle);
  const double cosA = std::cos(angle);
  const int32_t count = TickCount(pane, a);
  const int32_t n = std::max(count - 1, 0);
  const double q = n > 0 ? 1.0 / n : 0.0;

  // The labels, tiny ticks first made exact zeros.
  const char type = pane.axisType[a];
  const bool log = pane.logScale[a] == 1;
  std::string labels[kTickSlots];
  size_t longest = 0;
  for (int32_t i = 0; i < count; ++i) {
    double& tick = pane.ticks[a][1 + i];
    char text[kDateTextSize > kNumberTextSize ? kDateTextSize : kNumberTextSize];
    if (log) {
      FormatAxisNumber(text, std::pow(10.0, tick), kAxisNumberWidth);
    } else if (IsDateType(type)) {
      FormatDate(text, tick, type);
    } else {
      if (std::fabs(tick) < 1e-12 && std::fabs(tick) < 2e-08 * pane.scale[a].span) tick = 0.0;
      FormatAxisNumber(text, tick, kAxisNumberWidth);
    }
    labels[i] = text;
    longest = std::max(longest, labels[i].size());
  }
  const bool withLabels = labelMode == 1;
  if (!withLabels) longest = 0;
  const double L = static_cast<double>(longest);

  // Where tick i stands along the axis.
  const bool probability = position == 2 && pane.logScale[1] == 2 && n == 16;
  double along[kTickSlots];
  for (int32_t i = 0; i <= n; ++i) {
    along[i] = !probability ? i * q : i == 0 ? 0.0 : along[i - 1] + kProbabilitySteps[i - 1];
  }

  struct Place {
    double x, y, z;
  };
  double labelOffset = 0.0, crossOffset = 0.0, titleOffset = 0.0;
  Place factorAt{}, titleAt{};
  auto labelAt = [&](int32_t i) -> Place {
    if (position == 1) {
      if (!threeD) return {along[i], -t + labelOffset, 0.0};
      return {along[i] + labelOffset * sinA, -t + labelOffset * cosA, -t};
    }
    if (position == 2) {
      if (!threeD) return {-t + labelOffset, along[i], 0.0};
      return {1.0 + t + labelOffset * cosA, along[i] - labelOffset * sinA, -t};
    }
    return {-t + labelOffset, -e, along[i]};
  };
  if (position == 1 && !threeD) {
    labelOffset = -1.0 * h;
    crossOffset = -3.5 * h;
    titleOffset = -5.0 * h;
    factorAt = {1.0 + e, -t + crossOffset, 0.0};
    titleAt = {0.5, -t + titleOffset, 0.0};
  } else if (position == 1) {
    labelOffset = -1.0 * g;
    crossOffset = -3.5 * g;
    titleOffset = (-2.0 - L) * g;
    factorAt = {1.0 + e + labelOffset * sinA - crossOffset * cosA,
                -t + labelOffset * cosA + crossOffset * sinA, -t + crossOffset};
    titleAt = {0.5 + titleOffset * sinA, -t + titleOffset * cosA, -t + titleOffset};
  } else if (position == 2 && !threeD) {
    labelOffset = -1.0 * w;
    crossOffset = 1.5 * h;
    titleOffset = withLabels ? -(L + 4.0) * w : -1.0 * w;
    factorAt = {-t + labelOffset, 1.0 + e + crossOffset, 0.0};
    titleAt = {-t + titleOffset, 0.5, 0.0};
  } else if (position == 2) {
    labelOffset = 3.0 * g;
    crossOffset = 3.5 * g;
    titleOffset = withLabels ? (L + 7.5) * g : 7.5 * g;
    factorAt = {1.0 + t + labelOffset * cosA + crossOffset * sinA,
                1.0 + e - labelOffset * sinA + crossOffset * cosA, t + labelOffset};
    titleAt = {1.0 + t + titleOffset * cosA, 0.5 - titleOffset * sinA, -t};
  } else {
    labelOffset = -1.0 * w;
    crossOffset = 1.5 * h;
    titleOffset = -(L + 5.0) * w;
    factorAt = {-t + labelOffset, -e + crossOffset, 1.0 + e + 2.0 * crossOffset};
    titleAt = {-t + titleOffset, -e, 0.5};
  }

  if (withLabels) {
    for (int32_t i = 0; i < count; ++i) {
      const Place at = labelAt(i);
      AddText(labels[i], kTextTickLabel + a, at.x, at.y, at.z);
    }
    if (pane.factor[a] != 1.0) {
      char number[kNumberTextSize];
      FormatAxisNumber(number, pane.factor[a], kAxisNumberWidth);
      AddText("(X " + std::string(number) + ")", kTextFactor + a, factorAt.x, factorAt.y,
              factorAt.z);
    }
  }
  if (titleFlag == 1) {
    const std::string& title = position == 1 ? gXTitle : position == 2 ? gYTitle : gZTitle;
    AddText(title, kTextAxisTitle + a, titleAt.x, titleAt.y, titleAt.z);
  }
}

void FormatAxisNumber(char* buffer, double value, int32_t width) {
  // FormatNumber's text, with zero as "0" (or nothing without a leading
  // zero) and whole numbers without the point: "100", not "100.0".
  char text[kNumberTextSize];
  int32_t length = 0;
  if (value == 0.0) {
    if (gLeadingZero) text[length++] = '0';
  } else {
    length = FormatNumber(text, value, kNumberTextSize - 1);
    if (length >= 2 && text[length - 2] == gDecimalChar && text[length - 1] == '0') length -= 2;
  }
  if (length > width) length = 0;
  if (length > 0) std::memcpy(buffer, text, static_cast<size_t>(length));
  buffer[length] = '\0';
}

}  // namespace zv
