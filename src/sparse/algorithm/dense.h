// Between dense and compressed columns. The dense matrix is walked in the order in which it lies,
// row by row.
#pragma once

#include "sparse/algorithm/columns.h"

namespace nequar {

// start[c + 1] := the number of elements of column c other than 0.0, start[0] := 0; answers their
// sum.
template <class Real>
Size count_nonzeros(View<const Real> a, int* start);

// Fills rows and values from what count_nonzeros found; start[c + 1] becomes the end of column c.
template <class Real>
void fill_from_dense(View<const Real> a, int* start, int* rows, Real* values);

// Writes the stored elements into a dense matrix (a dense vector) that holds zeros. Row numbers
// outside of it are passed over.
template <class Real>
void write_to_dense(const Columns<Real>& a, View<Real> out);
template <class Real>
void write_to_dense(const Run<Real>& a, Strided<Real> out);

template <class Real>
Size count_nonzeros(Strided<const Real> a);
template <class Real>
void fill_from_dense(Strided<const Real> a, int* indices, Real* values);

}  // namespace nequar
