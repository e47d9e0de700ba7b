// Between dense and compressed columns. The dense matrix is walked in the order in which it lies,
// row by row.
#pragma once

#include "sparse/algorithm/columns.h"

namespace nequar {

// The elements of a dense matrix are looked at once: `marks` gets a bit for each, a row of it
// marks_in_row(width) bytes.
inline Size marks_in_row(Size width) {
    return (width + 7) / 8;
}

// start[c + 1] := the number of elements of column c other than 0.0, start[0] := 0; answers their
// sum.
template <class Real>
Size count_nonzeros(View<const Real> a, unsigned char* marks, int* start);

// Fills rows and values from what count_nonzeros found; start[c + 1] becomes the end of column c.
template <class Real>
void fill_from_dense(View<const Real> a, const unsigned char* marks, int* start, int* rows,
                     Real* values);

// Sets a dense matrix to the sparse one, a band of rows after the other that stays in the cache;
// `next` holds a.width pointers. Row numbers outside of it are passed over.
template <class Real>
void write_to_dense(const Columns<Real>& a, int* next, View<Real> out);
// Writes the stored elements into a dense vector that holds zeros.
template <class Real>
void write_to_dense(const Run<Real>& a, Strided<Real> out);

template <class Real>
Size count_nonzeros(Strided<const Real> a);
template <class Real>
void fill_from_dense(Strided<const Real> a, int* indices, Real* values);

}  // namespace nequar
