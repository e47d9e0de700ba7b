// Facts about a matrix from its stored elements alone, whatever its shape:
//
//   ||A||_1   = max over columns of sum |a_ij|        ||A||_F   = sqrt(sum a_ij^2)
//   ||A||_inf = max over rows of sum |a_ij|           ||A||_max = max |a_ij|
//
// Sums run in long double, whose range keeps squares of doubles from over- and underflowing.
#pragma once

#include <cstddef>

#include "files/file_matrix.h"

namespace program {

struct MatrixFacts {
    std::size_t nonzeros = 0;  // elements that are not zero, both halves of a symmetric file
    long double norm_1 = 0;
    long double norm_infinity = 0;
    long double norm_frobenius = 0;
    long double norm_max = 0;
    bool symmetric = false;   // a_ij == a_ji for all, exactly
    bool skew = false;        // a_ij == -a_ji for all, exactly
    int lower_bandwidth = 0;  // the largest i - j and j - i of a nonzero
    int upper_bandwidth = 0;
};

MatrixFacts find_facts(const FileMatrix<double>& matrix);

}  // namespace program
