#include "services/matrix.h"

#include <cmath>
#include <cstddef>

#include "frame/messages.h"
#include "frame/string_ids.h"
#include "services/movable_block.h"
#include "services/variables.h"

namespace zv {
namespace {

constexpr double kPivotFloor = 1e-10;

// Work memory of the inversion; a failure is reported with string 1004 (not
// by AllocGlobal, whose string 1001 is for the columns and results).
Handle AllocWork(int32_t count, size_t size) {
  const uint32_t bytes = BlockBytes(static_cast<uint64_t>(count < 1 ? 1 : count), size);
  const Handle block = bytes == 0 ? 0 : WinGlobalAlloc(bytes);
  if (block == 0) ShowError(kNoMemoryForCalculationText);
  return block;
}

// Frees a work block on every path out.
struct WorkBlock {
  Handle handle;
  ~WorkBlock() { WinGlobalFree(handle); }
};

}  // namespace

// Crout's method with implicit row scaling and partial pivoting, as in the
// routine ludcmp of Numerical Recipes, except that a pivot within 1e-10 of
// zero fails instead of being replaced by a tiny number.
int32_t LuDecompose(double* a, int32_t n, int32_t* permutation, double* sign) {
  const WorkBlock work{AllocWork(n, sizeof(double))};
  if (work.handle == 0) return 0;
  LockedBlock<double> scale(work.handle);
  auto at = [a, n](int32_t i, int32_t j) -> double& {
    return a[static_cast<size_t>(i) * static_cast<size_t>(n) + static_cast<size_t>(j)];
  };
  *sign = 1.0;
  for (int32_t i = 0; i < n; ++i) {
    double big = 0.0;
    for (int32_t j = 0; j < n; ++j) {
      const double v = std::fabs(at(i, j));
      if (v > big) big = v;
    }
    if (big == 0.0) {
      ShowError(kSingularMatrixText);
      return 0;
    }
    scale[i] = 1.0 / big;
  }
  for (int32_t j = 0; j < n; ++j) {
    for (int32_t i = 0; i < j; ++i) {
      double sum = at(i, j);
      for (int32_t k = 0; k < i; ++k) sum -= at(i, k) * at(k, j);
      at(i, j) = sum;
    }
    // The pivot: the greatest scaled entry; among equals the later row.
    double big = 0.0;
    int32_t pivot = j;
    for (int32_t i = j; i < n; ++i) {
      double sum = at(i, j);
      for (int32_t k = 0; k < j; ++k) sum -= at(i, k) * at(k, j);
      at(i, j) = sum;
      const double merit = scale[i] * std::fabs(sum);
      if (merit >= big) {
        big = merit;
        pivot = i;
      }
    }
    if (pivot != j) {
      for (int32_t k = 0; k < n; ++k) std::swap(at(pivot, k), at(j, k));
      *sign = -*sign;
      scale[pivot] = scale[j];
    }
    permutation[j] = pivot;
    // Written as "neither below nor above" so that a NaN pivot fails too.
    if (!(at(j, j) < -kPivotFloor) && !(at(j, j) > kPivotFloor)) {
      ShowError(kSingularMatrixText);
      return 0;
    }
    if (j != n - 1) {
      const double inverse = 1.0 / at(j, j);
      for (int32_t i = j + 1; i < n; ++i) at(i, j) *= inverse;
    }
  }
  return 1;
}

// Forward and back substitution, as in lubksb of Numerical Recipes: the
// forward pass skips the products until the first non-zero entry of b.
void LuSolve(const double* a, int32_t n, const int32_t* permutation, double* b) {
  auto at = [a, n](int32_t i, int32_t j) {
    return a[static_cast<size_t>(i) * static_cast<size_t>(n) + static_cast<size_t>(j)];
  };
  int32_t first = -1;
  for (int32_t i = 0; i < n; ++i) {
    const int32_t p = permutation[i];
    double sum = b[p];
    b[p] = b[i];
    if (first >= 0) {
      for (int32_t j = first; j < i; ++j) sum -= at(i, j) * b[j];
    } else if (sum != 0.0) {
      first = i;
    }
    b[i] = sum;
  }
  for (int32_t i = n - 1; i >= 0; --i) {
    double sum = b[i];
    for (int32_t j = i + 1; j < n; ++j) sum -= at(i, j) * b[j];
    b[i] = sum / at(i, i);
  }
}

int32_t InvertMatrix(double* matrix, double* inverse, int32_t n) {
  if (n < 0) return 0;
  if (n == 0) return 1;
  const WorkBlock permutationBlock{AllocWork(n, sizeof(int32_t))};
  if (permutationBlock.handle == 0) return 0;
  const WorkBlock columnBlock{AllocWork(n, sizeof(double))};
  if (columnBlock.handle == 0) return 0;
  LockedBlock<int32_t> permutation(permutationBlock.handle);
  LockedBlock<double> column(columnBlock.handle);
  double sign = 1.0;
  if (!LuDecompose(matrix, n, permutation.get(), &sign)) return 0;
  for (int32_t j = 0; j < n; ++j) {
    for (int32_t i = 0; i < n; ++i) column[i] = i == j ? 1.0 : 0.0;
    LuSolve(matrix, n, permutation.get(), column.get());
    for (int32_t i = 0; i < n; ++i) inverse[static_cast<size_t>(i) * n + j] = column[i];
  }
  return 1;
}

}  // namespace zv
