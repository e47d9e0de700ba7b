// SparseVector: statistics and arithmetic. Included by sparse_vector.cpp alone.
#pragma once

#include "kernel/kernel.h"
#include "nequar_algebra/sparse/sparse_vector.h"
#include "sparse/algorithm/compare.h"
#include "sparse/algorithm/reduce.h"
#include "sparse/inside.h"

namespace nequar {

// ---- statistics ---------------------------------------------------------------------------------

template <class Real>
Real SparseVector<Real>::extremum(bool largest, int* i, const char* method) const {
    const Run<Real> run = SparseInside<Real>::run(*this);
    if (run.count == 0) {
        give(i, 0);
        return Real(0);
    }
    const Size at = largest ? position_of_largest(run.values, run.count)
                            : position_of_smallest(run.values, run.count);
    const Real value = run.values[at];
    if ((largest ? value < Real(0) : value > Real(0)) && itze()) {
        if (i != nullptr && !fize(*i)) this->report("impossible", method);
        return Real(0);
    }
    give(i, run.indices[at]);
    return value;
}

template <class Real>
Real SparseVector<Real>::max(int* i) const {
    return extremum(true, i, "max_Maximum");
}

template <class Real>
Real SparseVector<Real>::min(int* i) const {
    return extremum(false, i, "min_Minimum");
}

template <class Real>
Real SparseVector<Real>::maxmin(Real& minimum, int* imax, int* imin) const {
    constexpr const char* kName = "maxmin_Maximum_and_Minimum";
    const CNqClass::CallScope scope(this);
    minimum = extremum(false, imin, kName);
    return extremum(true, imax, kName);
}

template <class Real>
Real SparseVector<Real>::m() const {
    return mean(values_.p(), Size(nee()), Size(dimension_));
}

template <class Real>
Real SparseVector<Real>::mst(Real& stdev) const {
    const Real average = m();
    stdev = deviation(values_.p(), Size(nee()), Size(dimension_), average);
    return average;
}

template <class Real>
Real SparseVector<Real>::ds(const SparseVector* b) const {
    if (b->dimension_ != dimension_) {
        this->report("different dimensions", "ds_Distance_Squared");
        return Real(0);
    }
    return distance_squared(SparseInside<Real>::run(*this), SparseInside<Real>::run(*b));
}

template <class Real>
Real SparseVector<Real>::mse(const SparseVector* b) const {
    const CNqClass::CallScope scope(this);
    if (b->dimension_ != dimension_) {
        this->report("different dimensions", "ds_Distance_Squared");
        this->report("different dimensions", "mse_Mean_Squared_Error");
        return Real(0);
    }
    return dimension_ == 0 ? Real(0) : ds(b) / static_cast<Real>(dimension_);
}

template <class Real>
Real SparseVector<Real>::ps(const SparseVector* b) const {
    if (b->dimension_ != dimension_) {
        this->report("different dimensions", "ps_Product_Scalar");
        return Real(0);
    }
    return product(SparseInside<Real>::run(*this), SparseInside<Real>::run(*b));
}

template <class Real>
Real SparseVector<Real>::n1() const {
    return kernels_.n1_Norm_1(nee(), values_.p(), 3);
}

template <class Real>
Real SparseVector<Real>::n2() const {
    return kernels_.n2_Norm_2(nee(), values_.p(), 3);
}

template <class Real>
Real SparseVector<Real>::ng(int p) const {
    return kernels_.np_Norm_p(static_cast<Real>(p), nee(), values_.p(), 3);
}

// ---- arithmetic ---------------------------------------------------------------------------------

template <class Real>
bool SparseVector<Real>::add(const SparseVector* b, Real factor, const char* method) {
    const CNqClass::CallScope scope(this);
    zet_xm();
    if (b->dimension_ != dimension_) return this->fail("different dimensions", method);
    const AddElementsRule<Real> rule{factor};
    const Run<Real> source = SparseInside<Real>::run(*b);
    const Size count = nee();
    const Size absent = count_absent(rule, indices_.p(), count, source, 0);
    if (absent > 0) {
        const Stored outcome = grow_by(values_, indices_, absent);
        if (outcome != Stored::done) {
            this->fail(code_of(outcome), "se_Set_Element");
            return this->fail("se_Set_Element", method);
        }
    }
    merge_from_end(rule, elements_of(indices_), elements_of(values_), Range{0, count}, absent,
                   source, 0);
    return true;
}

template <class Real>
bool SparseVector<Real>::avv(const SparseVector* b) {
    return add(b, Real(1), "avv_Add_Vector_Vector");
}

template <class Real>
bool SparseVector<Real>::avvw(const SparseVector* b, Real w) {
    return add(b, w, "avvw_Add_Vector_Vector_with_Weight");
}

template <class Real>
bool SparseVector<Real>::svv(const SparseVector* b) {
    return add(b, Real(-1), "svv_Subtract_Vector_Vector");
}

template <class Real>
bool SparseVector<Real>::mvve(const SparseVector* b) {
    zet_xm();
    if (b->dimension_ != dimension_)
        return this->fail("different dimensions", "mvve_Multiply_Vector_Vector_Elementwise");
    multiply_elementwise(SparseInside<Real>::run(*this), SparseInside<Real>::run(*b),
                         elements_of(values_));
    return true;
}

template <class Real>
bool SparseVector<Real>::mvc(Real c) {
    zet_xm();
    Real* const values = elements_of(values_);
    kernel::scale(Size(nee()), values, c, values);
    return true;
}

template <class Real>
bool SparseVector<Real>::operator/=(Real c) {
    zet_xm();
    if (c == Real(0)) return this->fail("divide by zero", "operator/=");
    Real* const values = elements_of(values_);
    divide(values, Size(nee()), c, values);
    return true;
}

template <class Real>
bool SparseVector<Real>::copy_indices(SparseVector& out, const char* method) const {
    out.zet_s(this->get_Get_Error_Trace_mode());
    if (!out.czv(dimension_, nee())) {
        this->adopt_failure_of(out);
        return this->fail("czv", method);
    }
    if (!out.z_cne(nee())) {
        this->adopt_failure_of(out);
        return this->fail("z_cne", method);
    }
    std::copy(indices_.p(), indices_.p() + nee(), elements_of(out.indices_));
    return true;
}

template <class Real>
SparseVector<Real> SparseVector<Real>::operator*(Real c) const {
    const CNqClass::CallScope scope(this);
    SparseVector out;
    if (copy_indices(out, "operator*"))
        kernel::scale(Size(nee()), values_.p(), c, elements_of(out.values_));
    return out;
}

template <class Real>
SparseVector<Real> SparseVector<Real>::operator/(Real c) const {
    const CNqClass::CallScope scope(this);
    SparseVector out;
    if (c == Real(0)) {
        if (!out.czv(dimension_, 0)) this->adopt_failure_of(out);
        this->fail("divide by zero", "operator/");
        return out;
    }
    if (copy_indices(out, "operator/"))
        divide(values_.p(), Size(nee()), c, elements_of(out.values_));
    return out;
}

template <class Real>
bool SparseVector<Real>::operator==(const SparseVector& b) const {
    return dimension_ == b.dimension_ &&
           are_equal(SparseInside<Real>::run(*this), SparseInside<Real>::run(b));
}

}  // namespace nequar
