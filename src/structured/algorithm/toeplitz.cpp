#include "structured/algorithm/toeplitz.h"

#include "core/workspace.h"
#include "kernel/kernel.h"

namespace nequar {
namespace {

// So few elements go one by one: a vector of what was just written element by element would wait
// for its parts longer than this takes.
constexpr Size kFew = 12;

template <class Real>
Real dot(Size n, const Real* x, const Real* y) {
    if (n <= kFew) {
        Real even = 0;
        Real odd = 0;
        Size i = 0;
        for (; i + 1 < n; i += 2) {
            even += x[i] * y[i];
            odd += x[i + 1] * y[i + 1];
        }
        return i < n ? even + x[i] * y[i] + odd : even + odd;
    }
    return kernel::dot(Strided<const Real>(x, n), Strided<const Real>(y, n));
}

template <class Real>
void axpy(Size n, Real alpha, const Real* x, Real* y) {
    if (n <= kFew) {
        for (Size i = 0; i < n; ++i) y[i] += alpha * x[i];
        return;
    }
    kernel::axpy(alpha, Strided<const Real>(x, n), Strided<Real>(y, n));
}

// x_i += alpha x_(n-1-i)
template <class Real>
void add_reversed(Size n, Real alpha, Real* x) {
    if (n > kFew) return kernel::add_reversed(n, alpha, x);
    for (Size i = 0, j = n - 1; i <= j; ++i, --j) {
        const Real low = x[i];
        const Real high = x[j];
        x[i] = low + alpha * high;
        x[j] = high + alpha * low;
    }
}

// out := x / first
template <class Real>
void normalise(Size n, const Real* x, Real first, Real* out) {
    for (Size i = n - 1; i >= 0; --i) out[i] = x[i] / first;
}

// J y of growing order, in a buffer of the largest order.
template <class Real>
class ReversedSolution {
public:
    ReversedSolution(Real* buffer, Size largest, Real first) : end_(buffer + largest), order_(1) {
        end_[-1] = first;
    }

    Size order() const { return order_; }
    const Real* elements() const { return end_ - order_; }

    // y := ( y + alpha J y,  alpha )
    void grow(Real alpha) {
        add_reversed(order_, alpha, end_ - order_);
        ++order_;
        end_[-order_] = alpha;
    }

private:
    Real* end_;
    Size order_;
};

// The recursion on normalised r, m >= 1; `reversed` receives J y.
template <class Real>
Outcome durbin_normalised(Size m, const Real* r, Real* reversed) {
    Real alpha = -r[1];
    Real beta = 1;
    ReversedSolution<Real> y(reversed, m, alpha);
    for (Size k = 1; k < m; ++k) {
        beta *= Real(1) - alpha * alpha;
        if (!(beta > Real(0))) return {OutcomeKind::not_positive_definite, k};
        alpha = -(r[k + 1] + dot(k, y.elements(), r + 1)) / beta;
        y.grow(alpha);
    }
    return Outcome::success();
}

constexpr Size kMirrorTile = 32;

// The strict lower triangle of a square becomes the mirror image of the upper one.
template <class Real>
void mirror_upper(View<Real> a) {
    for (Size i0 = 0; i0 < a.height; i0 += kMirrorTile)
        for (Size j0 = 0; j0 <= i0; j0 += kMirrorTile)
            for (Size i = i0; i < i0 + kMirrorTile && i < a.height; ++i)
                for (Size j = j0; j < j0 + kMirrorTile && j < i; ++j) a(i, j) = a(j, i);
}

}  // namespace

template <class Real>
Outcome leading_element(Real first) {
    if (first == Real(0)) return {OutcomeKind::singular, 0};
    // Neither NaN nor infinite: only a finite number is one times itself.
    if (!(first / first == Real(1))) return {OutcomeKind::not_positive_definite, 0};
    return Outcome::success();
}

template <class Real>
Outcome durbin(Size m, const Real* r, Real* y) {
    if (const Outcome outcome = leading_element(r[0]); !outcome) return outcome;
    Workspace<Real> work(2 * m + 1);
    if (!work) return {OutcomeKind::no_memory};
    Real* const scaled = work.data();
    Real* const reversed = scaled + m + 1;
    normalise(m + 1, r, r[0], scaled);
    if (m == 0) return Outcome::success();
    if (const Outcome outcome = durbin_normalised(m, scaled, reversed); !outcome) return outcome;
    for (Size i = 0; i < m; ++i) y[i] = reversed[m - 1 - i];
    return Outcome::success();
}

template <class Real>
Outcome levinson(Size n, const Real* r, const Real* b, Real* x) {
    if (const Outcome outcome = leading_element(r[0]); !outcome) return outcome;
    Workspace<Real> work(4 * n);
    if (!work) return {OutcomeKind::no_memory};
    Real* const scaled = work.data();    // r / r[0]
    Real* const backwards = scaled + n;  // the same from its end to its beginning
    Real* const right = backwards + n;   // b / r[0]
    Real* const reversed = right + n;    // J y
    const Real first = r[0];
    normalise(n, r, first, scaled);
    normalise(n, b, first, right);
    for (Size i = 0; i < n; ++i) backwards[i] = scaled[n - 1 - i];

    x[0] = right[0];
    if (n == 1) return Outcome::success();
    Real alpha = -scaled[1];
    Real beta = 1;
    ReversedSolution<Real> y(reversed, n - 1, alpha);
    for (Size k = 1; k < n; ++k) {
        beta *= Real(1) - alpha * alpha;
        if (!(beta > Real(0))) return {OutcomeKind::not_positive_definite, k};
        // r[k] ... r[1] ends one place before r[0], the last of `backwards`.
        const Real mu = (right[k] - dot(k, backwards + (n - 1 - k), x)) / beta;
        axpy(k, mu, y.elements(), x);
        x[k] = mu;
        if (k == n - 1) break;
        alpha = -(scaled[k + 1] + dot(k, scaled + 1, y.elements())) / beta;
        y.grow(alpha);
    }
    return Outcome::success();
}

namespace {

// The border of the inverse, n > 1: y of order m = n-1, J y, and s = 1 / (gamma r[0]).
template <class Real>
class InverseBorder {
public:
    explicit InverseBorder(Size n) : m_(n - 1), work_(n + 2 * m_) {}

    Outcome find(const Real* r) {
        if (!work_) return {OutcomeKind::no_memory};
        Real* const scaled = work_.data();
        Real* const reversed = scaled + m_ + 1;
        Real* const y = reversed + m_;
        normalise(m_ + 1, r, r[0], scaled);
        if (const Outcome outcome = durbin_normalised(m_, scaled, reversed); !outcome)
            return outcome;
        for (Size i = 0; i < m_; ++i) y[i] = reversed[m_ - 1 - i];
        const Real gamma = Real(1) + dot(m_, y, scaled + 1);
        if (!(gamma > Real(0))) return {OutcomeKind::not_positive_definite, m_};
        s_ = Real(1) / gamma / r[0];
        return Outcome::success();
    }

    const Real* reversed() const { return work_.data() + m_ + 1; }
    const Real* y() const { return reversed() + m_; }
    Real s() const { return s_; }

private:
    Size m_;
    Workspace<Real> work_;
    Real s_ = 0;
};

}  // namespace

// Both triangles by two reflections:
//
//      s       s y^T
//      .   B(i, j) = B(i-1, j-1) + s (y[i-1] y[j-1] - y[m-i] y[m-j])
//
//      wedge   i <= j <= n-1-i      computed, row by row
//      left    j < i                B(i, j) = B(j, i)
//      right   j > n-1-i            B(i, j) = B(n-1-j, n-1-i)
//      below   i >= (n+1)/2         B(i, j) = B(n-1-i, n-1-j)
//
template <class Real>
Outcome trench(Size n, const Real* r, View<Real> b) {
    if (const Outcome outcome = leading_element(r[0]); !outcome) return outcome;
    if (n == 1) {
        b(0, 0) = Real(1) / r[0];
        return Outcome::success();
    }
    InverseBorder<Real> border(n);
    if (const Outcome outcome = border.find(r); !outcome) return outcome;
    const Real* const y = border.y();
    const Real s = border.s();
    b(0, 0) = s;
    kernel::scale(n - 1, y, s, &b(0, 1));
    const Size top = (n + 1) / 2;
    for (Size i = 1; i < top; ++i) {
        Real* const row = &b(i, i);
        const Size count = n - 2 * i;
        kernel::add_weighted(count, y + i - 1, border.reversed() + i - 1, s * y[i - 1],
                             -s * y[n - 1 - i], row);
        kernel::add<Real>(count, row, &b(i - 1, i - 1), row);
    }
    mirror_upper(b.block(0, 0, top, top));
    mirror_upper(View<Real>(&b(0, n - 1), top, top, b.row_stride, -1));
    for (Size i = top; i < n; ++i) {
        const Real* const from = &b(n - 1 - i, 0);
        Real* const to = &b(i, 0);
        for (Size j = 0; j < n; ++j) to[j] = from[n - 1 - j];
    }
    return Outcome::success();
}

// The same sums, diagonal by diagonal; the second half of each is the first backwards.
template <class Real>
Outcome trench_packed(Size n, const Real* r, Real* packed) {
    if (const Outcome outcome = leading_element(r[0]); !outcome) return outcome;
    if (n == 1) {
        packed[0] = Real(1) / r[0];
        return Outcome::success();
    }
    InverseBorder<Real> border(n);
    Workspace<Real> work(n);
    if (!work) return {OutcomeKind::no_memory};
    if (const Outcome outcome = border.find(r); !outcome) return outcome;
    const Real* const y = border.y();
    const Real* const reversed = border.reversed();
    Real* const terms = work.data();
    Real* band = packed;
    for (Size d = 0; d < n; ++d) {
        const Size length = n - d;
        const Size count = (length - 1) / 2;
        Real* const products = terms + count;
        kernel::multiply_elementwise(count, y, y + d, terms);
        kernel::multiply_elementwise(count, reversed, reversed + d, products);
        kernel::subtract<Real>(count, terms, products, terms);
        Real value = d == 0 ? border.s() : border.s() * y[d - 1];
        band[0] = band[length - 1] = value;
        for (Size p = 1; p <= count; ++p) {
            value += border.s() * terms[p - 1];
            band[p] = band[length - 1 - p] = value;
        }
        band += length;
    }
    return Outcome::success();
}

#define NEQUAR_INSTANTIATE(Real)                                      \
    template Outcome leading_element(Real);                           \
    template Outcome durbin(Size, const Real*, Real*);                \
    template Outcome levinson(Size, const Real*, const Real*, Real*); \
    template Outcome trench(Size, const Real*, View<Real>);           \
    template Outcome trench_packed(Size, const Real*, Real*);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
