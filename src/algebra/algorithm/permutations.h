// Rows and columns exchanged by a list, and moved by a permutation. Matrices are row-major without
// gaps in their rows (column stride 1).
#pragma once

#include "core/view.h"

namespace nequar {

// The interchanges (first_k, second_k), k = 0 … count-1; first_k = k when `first` is null. Indices
// wrap around, so any list is safe.
struct Interchanges {
    const int* first = nullptr;
    const int* second = nullptr;
    int count = 0;
    bool backwards = false;  // the last one first, which undoes the list
};

template <class Real>
void interchange_rows(View<Real> a, const Interchanges& list);
template <class Real>
void interchange_columns(View<Real> a, const Interchanges& list);

// A relocation r moves line k to position r_k; it must be a permutation of 0 … n-1.
enum class RelocationFault { none, out_of_range, repeated };

// Every range is checked before any repetition. `seen` has n elements of scratch.
RelocationFault check_relocation(int n, const int* r, bool* seen);

// Column (row) r_k of b := column (row) k of a where r_k differs from k; the others are not
// written. b must not overlap a.
template <class Real>
void relocate_columns(View<const Real> a, const int* r, View<Real> b);
template <class Real>
void relocate_rows(View<const Real> a, const int* r, View<Real> b);

// The same, and its inverse (line k := line r_k), within a. `row` has a.width elements of scratch,
// `moved` a.height.
template <class Real>
void relocate_columns_in_place(View<Real> a, const int* r, Real* row);
template <class Real>
void relocate_columns_back(View<Real> a, const int* r, Real* row);
template <class Real>
void relocate_rows_in_place(View<Real> a, const int* r, Real* row, bool* moved);
template <class Real>
void relocate_rows_back(View<Real> a, const int* r, Real* row, bool* moved);

}  // namespace nequar
