#include "frame/algorithm/bilinear_form.h"

#include <algorithm>

#include "kernel/kernel.h"

namespace nequar {

template <class Real>
Real bilinear_form(Strided<const Real> x, View<const Real> a, Strided<const Real> y) {
    constexpr Size kPanel = 256;
    Real buffer[kPanel];
    Real sum = 0;
    for (Size i = 0; i < a.height; i += kPanel) {
        const Size height = std::min(kPanel, a.height - i);
        const Strided<Real> t(buffer, height);
        kernel::gemv(Real(1), a.rows(i, height), y, kernel::Update::set, t);
        sum += kernel::dot(x.part(i, height), reading(t));
    }
    return sum;
}

template double bilinear_form(Strided<const double>, View<const double>, Strided<const double>);
template float bilinear_form(Strided<const float>, View<const float>, Strided<const float>);

}  // namespace nequar
