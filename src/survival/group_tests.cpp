#include "survival/group_tests.h"

#include <utility>

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

// The running sums over the times, in the order of GroupSweepEntry::mark:
// D / R and D for the scores, c = (R - D) D / (R (R - 1)) and
// w = (R - D) R D / (R - 1) for the diagonal, c / R and w / R for the pairs.
enum Running { kRate, kDeaths, kLogrankVar, kWilcoxonVar, kLogrankPair, kWilcoxonPair };

// A binary heap of groups by the time at their position.
struct GroupHeap {
  const SurvivalSample& s;
  const GroupSweepEntry* groups;
  int32_t* heap;
  int32_t size = 0;

  double Key(int32_t slot) const { return TimeAt(s, groups[heap[slot]].position); }
  void Push(int32_t g) {
    int32_t k = size++;
    heap[k] = g;
    while (k > 0 && Key((k - 1) / 2) > Key(k)) {
      std::swap(heap[k], heap[(k - 1) / 2]);
      k = (k - 1) / 2;
    }
  }
  int32_t Pop() {
    const int32_t top = heap[0];
    heap[0] = heap[--size];
    for (int32_t k = 0;;) {
      const int32_t l = 2 * k + 1;
      int32_t least = k;
      if (l < size && Key(l) < Key(least)) least = l;
      if (l + 1 < size && Key(l + 1) < Key(least)) least = l + 1;
      if (least == k) break;
      std::swap(heap[k], heap[least]);
      k = least;
    }
    return top;
  }
};

// Brings group i's sums up to the current time, before its number at risk
// changes: its scores and diagonal terms, and the pair terms with every
// group j still at risk over the times since the later change of the two.
void Catch(GroupSweepEntry* e, int32_t i, const int32_t* active, int32_t activeCount,
           const long double* run, int64_t now, double total, int32_t groups,
           const GroupTestSums& sums) {
  GroupSweepEntry& a = e[i];
  const long double r = a.atRisk;
  a.logrankScore += a.failures - r * (run[kRate] - a.mark[kRate]);
  a.wilcoxonScore +=
      static_cast<long double>(a.failures) * total - r * (run[kDeaths] - a.mark[kDeaths]);
  a.logrankVariance += r * (run[kLogrankVar] - a.mark[kLogrankVar]);
  a.wilcoxonVariance += r * (run[kWilcoxonVar] - a.mark[kWilcoxonVar]);
  a.logrankSelf += r * r * (run[kLogrankPair] - a.mark[kLogrankPair]);
  a.wilcoxonSelf += r * r * (run[kWilcoxonPair] - a.mark[kWilcoxonPair]);
  for (int32_t l = 0; l < activeCount; ++l) {
    const int32_t j = active[l];
    const GroupSweepEntry& b = e[j];
    // A group already caught up at this time has nothing left to add.
    if (j == i || b.lastChange == now) continue;
    const long double* since = b.lastChange > a.lastChange ? b.mark : a.mark;
    const long double rr = r * b.atRisk;
    const double logrank = static_cast<double>(rr * (run[kLogrankPair] - since[kLogrankPair]));
    const double wilcoxon = static_cast<double>(rr * (run[kWilcoxonPair] - since[kWilcoxonPair]));
    sums.logrankCovariance[i * groups + j] -= logrank;
    sums.logrankCovariance[j * groups + i] -= logrank;
    sums.wilcoxonCovariance[i * groups + j] -= wilcoxon;
    sums.wilcoxonCovariance[j * groups + i] -= wilcoxon;
  }
  for (int k = 0; k < 6; ++k) a.mark[k] = run[k];
  a.lastChange = now;
}

}  // namespace

void AccumulateGroupTests(const SurvivalSample& s, const GroupTestWork& work,
                          const GroupTestSums& sums) {
  const int32_t groups = s.groupCount;
  GroupSweepEntry* e = work.groups;
  int32_t* active = work.lists + groups;
  int32_t* changed = work.lists + 2 * static_cast<int64_t>(groups);
  GroupHeap heap{s, e, work.lists};
  int32_t activeCount = 0;
  double total = 0.0;  // R: rows at risk
  int32_t start = 0;
  for (int32_t g = 0; g < groups; ++g) {
    e[g] = GroupSweepEntry{};
    e[g].position = start;
    start += s.groupSize[g];
    e[g].end = start;
    e[g].atRisk = s.groupSize[g];
    total += s.groupSize[g];
    if (s.groupSize[g] > 0) {
      heap.Push(g);
      e[g].activeSlot = activeCount;
      active[activeCount++] = g;
    }
  }
  long double run[6] = {};
  int64_t now = 0;
  while (heap.size > 0) {
    // The groups with rows at the least next time t: their failures, and the
    // rows that leave the risk set after t.
    const double t = heap.Key(0);
    int32_t changedCount = 0;
    double deaths = 0.0;
    while (heap.size > 0 && heap.Key(0) == t) {
      const int32_t g = heap.Pop();
      int32_t k = e[g].position;
      int32_t d = 0;
      for (; k < e[g].end && TimeAt(s, k) == t; ++k) {
        if (!Withdrawn(s, k)) ++d;
      }
      e[g].failures = d;
      e[g].leaving = k - e[g].position;
      e[g].position = k;
      if (k < e[g].end) heap.Push(g);
      changed[changedCount++] = g;
      deaths += d;
    }
    // This time's coefficients, with the arithmetic of the direct form.
    ++now;
    const double R = total;
    const double D = deaths;
    run[kRate] += D / R;
    run[kDeaths] += D;
    if (R != 1.0) {
      const double c = (R - D) * D / (R * (R - 1.0));
      const double w = (R - D) * R * D / (R - 1.0);
      run[kLogrankVar] += c;
      run[kWilcoxonVar] += w;
      run[kLogrankPair] += static_cast<long double>(c) / R;
      run[kWilcoxonPair] += static_cast<long double>(w) / R;
    }
    for (int32_t l = 0; l < changedCount; ++l) {
      Catch(e, changed[l], active, activeCount, run, now, R, groups, sums);
    }
    for (int32_t l = 0; l < changedCount; ++l) {
      GroupSweepEntry& a = e[changed[l]];
      a.atRisk -= a.leaving;
      total -= a.leaving;
      if (a.atRisk == 0) {
        const int32_t last = active[--activeCount];
        active[a.activeSlot] = last;
        e[last].activeSlot = a.activeSlot;
      }
    }
  }
  for (int32_t g = 0; g < groups; ++g) {
    sums.logrankScore[g] += static_cast<double>(e[g].logrankScore);
    sums.wilcoxonScore[g] += static_cast<double>(e[g].wilcoxonScore);
    sums.logrankCovariance[g * groups + g] +=
        static_cast<double>(e[g].logrankVariance - e[g].logrankSelf);
    sums.wilcoxonCovariance[g * groups + g] +=
        static_cast<double>(e[g].wilcoxonVariance - e[g].wilcoxonSelf);
  }
}

double GroupChiSquare(const double* covariance, const double* score, int32_t groupCount,
                      double* matrix, double* solution, int32_t* permutation) {
  const int32_t m = groupCount - 1;
  for (int32_t i = 0; i < m; ++i) {
    for (int32_t j = 0; j < m; ++j) matrix[i * m + j] = covariance[i * groupCount + j];
    solution[i] = score[i];
  }
  double sign = 1;
  if (LuDecompose(matrix, m, permutation, &sign) == 0) return kMissingValue;
  LuSolve(matrix, m, permutation, solution);
  double chiSquare = 0.0;
  for (int32_t i = 0; i < m; ++i) chiSquare += solution[i] * score[i];
  return chiSquare;
}

}  // namespace zv
