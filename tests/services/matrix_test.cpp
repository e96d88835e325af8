// Matrix inversion by LU decomposition.
#include "services/matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "frame/messages.h"
#include "support/module_fixture.h"

namespace {

using Matrix = std::vector<double>;

class Inversion : public zvtest::ModuleFixture {
 protected:
  // Inverts a copy of `a`; the input itself is destroyed by the call.
  int32_t Invert(const Matrix& a, Matrix* inverse) {
    Matrix work = a;
    inverse->assign(a.size(), -1.0);
    const int32_t n = static_cast<int32_t>(std::lround(std::sqrt(double(a.size()))));
    return zv::InvertMatrix(work.data(), inverse->data(), n);
  }
};

// Largest deviation of a x b from the identity.
double IdentityError(const Matrix& a, const Matrix& b, int n) {
  double worst = 0.0;
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) {
      double sum = 0.0;
      for (int k = 0; k < n; ++k) sum += a[i * n + k] * b[k * n + j];
      worst = std::max(worst, std::fabs(sum - (i == j ? 1.0 : 0.0)));
    }
  }
  return worst;
}

// Inverses worked by hand: the 2 x 2 by the adjugate over the determinant
// (det 10), the second-difference matrix (det 4) from its adjugate.
TEST_F(Inversion, HandWorkedInverses) {
  struct Row {
    int line;
    Matrix a, inverse;
  };
  const Row kRows[] = {
      {__LINE__, {5.0}, {0.2}},
      {__LINE__, {4, 7, 2, 6}, {0.6, -0.7, -0.2, 0.4}},
      {__LINE__, {0, 1, 1, 0}, {0, 1, 1, 0}},  // needs a row swap
      {__LINE__,
       {2, -1, 0, -1, 2, -1, 0, -1, 2},
       {0.75, 0.5, 0.25, 0.5, 1.0, 0.5, 0.25, 0.5, 0.75}},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    Matrix inverse;
    ASSERT_EQ(Invert(r.a, &inverse), 1);
    for (size_t i = 0; i < r.a.size(); ++i) EXPECT_NEAR(inverse[i], r.inverse[i], 1e-15);
  }
  EXPECT_TRUE(WinMessageBoxLog().empty());
}

TEST_F(Inversion, ProductWithTheMatrixIsTheIdentity) {
  for (int n : {3, 5, 8}) {
    SCOPED_TRACE(n);
    // Hilbert matrices: ill-conditioned, but far from the pivot limit.
    Matrix a(static_cast<size_t>(n * n));
    for (int i = 0; i < n; ++i) {
      for (int j = 0; j < n; ++j) a[i * n + j] = 1.0 / (i + j + 1);
    }
    Matrix inverse;
    ASSERT_EQ(Invert(a, &inverse), 1);
    EXPECT_LT(IdentityError(a, inverse, n), n < 8 ? 1e-9 : 1e-5);
  }
  // Rows of very different scales: the implicit scaling picks the pivots.
  const Matrix scaled{1e-8, 1, 3, 2e6, 1e6, 0, 5, 7, 1e-3};
  Matrix inverse;
  ASSERT_EQ(Invert(scaled, &inverse), 1);
  EXPECT_LT(IdentityError(scaled, inverse, 3), 1e-9);
}

TEST_F(Inversion, DeterminantFromTheFactors) {
  Matrix a{0, 1, 1, 0};
  std::vector<int32_t> permutation(2);
  double sign = 0.0;
  ASSERT_EQ(zv::LuDecompose(a.data(), 2, permutation.data(), &sign), 1);
  EXPECT_EQ(sign * a[0] * a[3], -1.0);
  Matrix b{2, -1, 0, -1, 2, -1, 0, -1, 2};
  permutation.resize(3);
  ASSERT_EQ(zv::LuDecompose(b.data(), 3, permutation.data(), &sign), 1);
  EXPECT_NEAR(sign * b[0] * b[4] * b[8], 4.0, 1e-14);
}

// A row of zeros, a pivot within 1e-10 of zero, or no number at all: string
// 1008, result 0.
TEST_F(Inversion, SingularMatricesAreRefused) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  struct Row {
    int line;
    Matrix a;
  };
  const Row kRows[] = {
      {__LINE__, {0.0}},          {__LINE__, {1e-11}},      {__LINE__, {-1e-10}},
      {__LINE__, {1, 2, 0, 0}},   {__LINE__, {1, 2, 2, 4}}, {__LINE__, {1, 2, 3, 4, 5, 6, 7, 8, 9}},
      {__LINE__, {nan, 1, 1, 1}},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    WinClearMessageBoxLog();
    Matrix inverse;
    EXPECT_EQ(Invert(r.a, &inverse), 0);
    ASSERT_EQ(WinMessageBoxLog().size(), 1u);
    EXPECT_EQ(LastMessage(), zv::LoadText(1008));
  }
  Matrix inverse;
  EXPECT_EQ(Invert({1.1e-10}, &inverse), 1);  // just past the limit
}

// Each of the three work blocks in turn is refused: string 1004, nothing kept.
TEST_F(Inversion, NoWorkMemory) {
  const size_t live = WinLiveBlockCount();
  for (int32_t k = 0; k < 3; ++k) {
    SCOPED_TRACE(k);
    WinClearMessageBoxLog();
    WinFailAllocationsAfter(k);
    Matrix inverse;
    EXPECT_EQ(Invert({4, 7, 2, 6}, &inverse), 0);
    EXPECT_EQ(LastMessage(), zv::LoadText(1004));
    EXPECT_EQ(WinLiveBlockCount(), live);
  }
  WinFailAllocationsAfter(-1);
}

}  // namespace
