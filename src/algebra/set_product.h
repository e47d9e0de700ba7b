// The set forms of products, on views that do not overlap the output: sizing, check, product. What
// stopped one is reported by the caller.
#pragma once

#include "algebra/temporary.h"
#include "core/view.h"
#include "kernel/kernel.h"
#include "nequar_algebra/frame/matrix.h"
#include "nequar_algebra/frame/vector.h"

namespace nequar {

enum class ProductFault {
    none,
    mismatch,   // the sizes do not fit: the output is sized and all zero
    not_sized,  // the output refused its size
    no_memory,  // a copy or a temporary could not be had
};

template <class Real>
ProductFault refuse_product(Size height, Size width, Matrix<Real>* out) {
    const bool sized =
        out->c_Create(static_cast<int>(height), static_cast<int>(width), Real(0)) != nullptr;
    return sized ? ProductFault::mismatch : ProductFault::not_sized;
}

template <class Real>
ProductFault refuse_product(Size size, Vector<Real>* out) {
    const bool sized = out->c_Create(static_cast<int>(size), Real(0)) != nullptr;
    return sized ? ProductFault::mismatch : ProductFault::not_sized;
}

// C := A B. Inlined, since for the smallest matrices handing views on costs as much as the product.
template <class Real>
[[gnu::always_inline]] inline ProductFault set_product(View<const Real> a, View<const Real> b,
                                                       Matrix<Real>* C) {
    if (a.width != b.height) return refuse_product(a.height, b.width, C);
    if (!size_to(static_cast<int>(a.height), static_cast<int>(b.width), C))
        return ProductFault::not_sized;
    kernel::gemm(Real(1), a, b, kernel::Update::set, view_of(C));
    return ProductFault::none;
}

// y := A x
template <class Real>
[[gnu::always_inline]] inline ProductFault set_product(View<const Real> a, Strided<const Real> x,
                                                       Vector<Real>* y) {
    if (a.width != x.size) return refuse_product(a.height, y);
    if (!size_to(static_cast<int>(a.height), y)) return ProductFault::not_sized;
    kernel::gemv(Real(1), a, x, kernel::Update::set, view_of(y));
    return ProductFault::none;
}

// The same where the output is an input, from copies. Not inlined, so that the forms which need no
// copy keep small frames.
template <class Real>
[[gnu::noinline]] ProductFault set_product_of_copies(const Matrix<Real>* A, bool transpose_a,
                                                     const Matrix<Real>* B, bool transpose_b,
                                                     Matrix<Real>* C) {
    const KeptMatrix<Real> a(A, C);
    const KeptMatrix<Real> b(B, C);
    if (!a || !b) return ProductFault::no_memory;
    return set_product(transpose_a ? a.view().transposed() : a.view(),
                       transpose_b ? b.view().transposed() : b.view(), C);
}

template <class Real>
[[gnu::noinline]] ProductFault set_product_of_copy(View<const Real> a, Vector<Real>* x) {
    const KeptVector<Real> kept(x, x);
    return kept ? set_product(a, kept.view(), x) : ProductFault::no_memory;
}

}  // namespace nequar
