// What is asked of matrices that are given by a few numbers, of any of them.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "nequar_algebra/structured.h"
#include "support/residual.h"

namespace nequar::test {

template <class Real, class Function>
Vector<Real> generated_vector(int n, const Function& element) {
    Vector<Real> v;
    v.c_Create(n);
    for (int i = 0; i < n; ++i) v[i] = Real(element(i));
    return v;
}

// Elements, rows and columns, at coordinates that wrap, and raw exports are those of `dense`.
template <class Generated, class Real>
void expect_elements(const Generated& generated, const Matrix<Real>& dense) {
    const int n = dense.mh();
    Matrix<Real> by_rows = identity_of<Real>(n), by_columns = by_rows;
    int order = 0;
    generated.ex_Export(true, by_rows.p()[0], &order);
    EXPECT_EQ(order, n);
    generated.ex_Export(false, by_columns.p()[0], &order);
    EXPECT_TRUE(by_rows == dense && by_columns == transposed(dense));
    for (int index = -n - 1; index < 2 * n; ++index) {
        const int at = (index + 2 * n) % n;
        Vector<Real> row, column;
        std::vector<Real> raw_row(std::size_t(n) + 1, Real(7)), raw_column = raw_row;
        generated.gr_Get_Row(index, &row);
        generated.gr_Get_Row(index, raw_row.data());
        generated.gc_Get_Column(index, &column);
        generated.gc_Get_Column(index, raw_column.data());
        ASSERT_TRUE(row.vs() == n && column.vs() == n);
        EXPECT_TRUE(raw_row.back() == 7 && raw_column.back() == 7);
        for (int j = 0; j < n; ++j) {
            EXPECT_EQ(row[j], dense[at][j]);
            EXPECT_EQ(raw_row[std::size_t(j)], dense[at][j]);
            EXPECT_EQ(column[j], dense[j][at]);
            EXPECT_EQ(raw_column[std::size_t(j)], dense[j][at]);
            EXPECT_EQ(generated.ge_Get_Element(j - n, index), dense[at][j]);
        }
    }
}

}  // namespace nequar::test
