// The elimination schemes as they are described, element by element, in plain loops: what the fast
// forms are held against.
#pragma once

#include <cmath>
#include <utility>
#include <vector>

#include "nequar_algebra/frame.h"

namespace nequar::test {

template <class Real>
struct StatedLu {
    Matrix<Real> a;  // packed factors, or what a failure leaves
    std::vector<int> perm;
    int interchanges = 0;
    int zero_pivot = -1;  // the column that failed
};

// Crout's scheme, the pivot of a column chosen before the column is updated, the last of equals.
template <class Real>
StatedLu<Real> stated_crout(const Matrix<Real>& input) {
    StatedLu<Real> lu;
    lu.a = input;
    Matrix<Real>& a = lu.a;
    const int n = a.mh();
    for (int i = 0; i < n; ++i) lu.perm.push_back(i);
    for (int j = 0; j < n; ++j) {
        int r = j;
        Real max = 0;
        for (int i = j; i < n; ++i)
            if (std::abs(a[i][j]) >= max) {
                r = i;
                max = std::abs(a[i][j]);
            }
        if (r != j) {
            for (int k = 0; k < n; ++k) std::swap(a[r][k], a[j][k]);
            std::swap(lu.perm[static_cast<std::size_t>(r)], lu.perm[static_cast<std::size_t>(j)]);
            ++lu.interchanges;
        }
        for (int i = 0; i < n; ++i)
            for (int k = 0; k < i && k < j; ++k) a[i][j] -= a[i][k] * a[k][j];
        if (a[j][j] == 0) {
            lu.zero_pivot = j;
            return lu;
        }
        const Real reciprocal = 1 / a[j][j];
        for (int i = j + 1; i < n; ++i) {
            if (std::isinf(reciprocal))
                a[i][j] /= a[j][j];
            else
                a[i][j] *= reciprocal;
        }
    }
    return lu;
}

// Gauss-Jordan with a full search, B n x k; false when what remains is zero.
template <class Real>
bool stated_gauss_jordan(Matrix<Real>& a, Matrix<Real>& b) {
    const int n = a.mh();
    std::vector<bool> used(static_cast<std::size_t>(n), false);
    for (int step = 0; step < n; ++step) {
        Real best = 0;
        int pr = -1;
        int pc = -1;
        for (int r = 0; r < n; ++r) {
            if (used[static_cast<std::size_t>(r)]) continue;
            for (int c = 0; c < n; ++c) {
                if (used[static_cast<std::size_t>(c)] || !(std::abs(a[r][c]) > best)) continue;
                best = std::abs(a[r][c]);
                pr = r;
                pc = c;
            }
        }
        if (pr < 0) return false;
        used[static_cast<std::size_t>(pc)] = true;
        const Real scale = 1 / std::abs(a[pr][pc]);
        for (Matrix<Real>* m : {&a, &b})
            for (int j = 0; j < m->mw(); ++j) {
                if (pr != pc) std::swap((*m)[pr][j], (*m)[pc][j]);
                (*m)[pc][j] *= scale;
            }
        for (int r = 0; r < n; ++r) {
            if (r == pc) continue;
            const Real f = a[r][pc];
            for (Matrix<Real>* m : {&a, &b})
                for (int j = 0; j < m->mw(); ++j) (*m)[r][j] -= f * (*m)[pc][j];
        }
    }
    return true;
}

}  // namespace nequar::test
