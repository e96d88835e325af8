#include "survival/group_tests.h"

#include "frame/host_records.h"
#include "services/matrix.h"

namespace zv {
namespace {

bool Withdrawn(const SurvivalSample& s, int32_t position) {
  return s.censor != nullptr && s.censor[s.order[position]] > 0.0;
}

double TimeAt(const SurvivalSample& s, int32_t position) {
  return s.time[s.order[position]];
}

// Adds the terms of one risk set: r at risk and d failures in the groups
// listed in `groups` (the others have none at risk and add nothing), R and D
// their sums. The Wilcoxon weight is the size of the whole risk set.
void AddRiskSet(const SurvivalSample& s, const int32_t* groups, int32_t listed, const int32_t* r,
                const int32_t* d, double total, double deaths, const GroupTestSums& sums) {
  const int32_t g = s.groupCount;
  if (total == 0.0) return;
  for (int32_t li = 0; li < listed; ++li) {
    const int32_t i = groups[li];
    const double share = r[i] / total;
    const double excess = d[i] - share * deaths;
    sums.logrankScore[i] += excess;
    sums.wilcoxonScore[i] += excess * total;
    if (total == 1.0) continue;
    for (int32_t lj = 0; lj < listed; ++lj) {
      const int32_t j = groups[lj];
      const double a = j == i ? 1.0 - share : -share;
      sums.logrankCovariance[i * g + j] +=
          a / (total * (total - 1.0)) * r[j] * (total - deaths) * deaths;
      sums.wilcoxonCovariance[i * g + j] +=
          a * r[j] / (total - 1.0) * (total - deaths) * total * deaths;
    }
  }
}

}  // namespace

void AccumulateGroupTestsDirect(const SurvivalSample& s, const GroupTestWork& work,
                                const GroupTestSums& sums) {
  const int32_t groups = s.groupCount;
  // Every group takes part in every update; `active` lists them all.
  int32_t start = 0;
  for (int32_t g = 0; g < groups; ++g) {
    work.position[g] = start;
    work.active[g] = g;
    start += s.groupSize[g];
  }
  for (;;) {
    bool any = false;
    double t = kMissingValue;
    start = 0;
    for (int32_t g = 0; g < groups; ++g) {
      const int32_t end = start + s.groupSize[g];
      work.nextTime[g] = work.position[g] < end ? TimeAt(s, work.position[g]) : kMissingValue;
      if (work.position[g] < end && (!any || work.nextTime[g] < t)) {
        t = work.nextTime[g];
        any = true;
      }
      start = end;
    }
    if (!any) break;
    double total = 0.0;
    double deaths = 0.0;
    start = 0;
    for (int32_t g = 0; g < groups; ++g) {
      const int32_t end = start + s.groupSize[g];
      int32_t r = 0;
      int32_t d = 0;
      for (int32_t k = start; k < end; ++k) {
        const double time = TimeAt(s, k);
        if (time >= t) ++r;
        if (time == t) {
          if (!Withdrawn(s, k)) ++d;
          work.position[g] = k + 1;
        }
      }
      work.atRisk[g] = r;
      work.failures[g] = d;
      total += r;
      deaths += d;
      start = end;
    }
    AddRiskSet(s, work.active, groups, work.atRisk, work.failures, total, deaths, sums);
  }
}

void AccumulateGroupTestsSweep(const SurvivalSample& s, const GroupTestWork& work,
                               const GroupTestSums& sums) {
  // Within a group the rows before its position are earlier than the current
  // time and the rest are not, so the group's risk set is the rows from its
  // position on, and its failures at the time follow the position directly.
  int32_t listed = 0;
  int32_t start = 0;
  for (int32_t g = 0; g < s.groupCount; ++g) {
    work.position[g] = start;
    start += s.groupSize[g];
    work.end[g] = start;
    if (s.groupSize[g] > 0) work.active[listed++] = g;
  }
  while (listed > 0) {
    double t = TimeAt(s, work.position[work.active[0]]);
    for (int32_t l = 1; l < listed; ++l) {
      const double next = TimeAt(s, work.position[work.active[l]]);
      if (next < t) t = next;
    }
    double total = 0.0;
    double deaths = 0.0;
    for (int32_t l = 0; l < listed; ++l) {
      const int32_t g = work.active[l];
      int32_t k = work.position[g];
      work.atRisk[g] = work.end[g] - k;
      int32_t d = 0;
      for (; k < work.end[g] && TimeAt(s, k) == t; ++k) {
        if (!Withdrawn(s, k)) ++d;
      }
      work.failures[g] = d;
      work.position[g] = k;
      total += work.atRisk[g];
      deaths += d;
    }
    AddRiskSet(s, work.active, listed, work.atRisk, work.failures, total, deaths, sums);
    // Drop the groups that have no rows left; the order of the list does not
    // matter, since each cell receives one term per time.
    for (int32_t l = 0; l < listed;) {
      if (work.position[work.active[l]] >= work.end[work.active[l]]) {
        work.active[l] = work.active[--listed];
      } else {
        ++l;
      }
    }
  }
}

double GroupChiSquare(const double* covariance, const double* score, int32_t groupCount,
                      double* matrix, double* inverse) {
  const int32_t m = groupCount - 1;
  for (int32_t i = 0; i < m; ++i) {
    for (int32_t j = 0; j < m; ++j) matrix[i * m + j] = covariance[i * groupCount + j];
  }
  if (InvertMatrix(matrix, inverse, m) == 0) return kMissingValue;
  double chiSquare = 0.0;
  for (int32_t i = 0; i < m; ++i) {
    for (int32_t j = 0; j < m; ++j) chiSquare += inverse[i * m + j] * score[j] * score[i];
  }
  return chiSquare;
}

}  // namespace zv
