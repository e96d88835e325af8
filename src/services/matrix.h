// Inversion of a small dense matrix by LU decomposition (Crout's method with
// implicit row scaling and partial pivoting), for the covariance matrices of
// the group comparison tests.
#pragma once

#include <cstdint>

namespace zv {

// Inverts the n x n matrix `matrix` (row by row; replaced by its LU factors)
// into `inverse` (n x n, row by row). Result 1; 0 after ShowError 1008 for a
// row of zeros or a pivot within 1e-10 of zero, or ShowError 1004 when work
// memory is short.
int32_t InvertMatrix(double* matrix, double* inverse, int32_t n);

// Replaces `a` (n x n, row by row) by the LU factors of a row permutation of
// it; `permutation` (n int32) records the pivot row of each column and
// *sign the parity of the row swaps (1 or -1). Result 1, or 0 after
// ShowError 1008 (singular) or 1004 (no memory).
int32_t LuDecompose(double* a, int32_t n, int32_t* permutation, double* sign);

// Solves a x = b for the factors of LuDecompose; `b` (n doubles) is replaced
// by x.
void LuSolve(const double* a, int32_t n, const int32_t* permutation, double* b);

}  // namespace zv
