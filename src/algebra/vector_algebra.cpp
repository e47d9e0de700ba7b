// AlgebraForVector: sums, products, scalars and raw arrays; the geometry is in its own file.
#include "nequar_algebra/algebra/vector_algebra.h"

#include "algebra/algorithm/sums.h"
#include "algebra/details.h"
#include "algebra/raw_arrays.h"
#include "algebra/vector_geometry_impl.h"
#include "core/twin_name.h"
#include "frame/views.h"
#include "kernel/kernel.h"

namespace nequar {
namespace {

constexpr const char* kAdd = "avv_Add_Vector_Vector";
constexpr const char* kAddWeighted = "avvw_Add_Vector_Vector_with_Weight";

template <class Real, class... Others>
bool same_size(const Vector<Real>* a, const Others*... others) {
    return ((a->vs() == others->vs()) && ...);
}

// out gets the size of a; out may be any object that has this size already.
template <class Real>
bool size_as(const Vector<Real>* a, Vector<Real>* out) {
    return out->vs() == a->vs() || out->c_Create(a->vs()) != nullptr;
}

template <class From, class To>
bool export_vector(int n, const From* src, Vector<To>* out) {
    if (out->c_Create(n) == nullptr) return false;
    carry(n, src, out->p());
    return true;
}

template <class From, class To>
void import_vector(const Vector<From>* a, To* dst, int& n) {
    n = a->vs();
    carry(n, a->p(), dst);
}

}  // namespace

template <class Real>
AlgebraForVector<Real>::AlgebraForVector() {
    set_class_name(twin_name<Real>("LCNqAlgebra_for_Vector", "LCNqAlgebra_for_VectorFloat"));
}

template <class Real>
AlgebraForVector<Real>::~AlgebraForVector() = default;

template <class Real>
void AlgebraForVector<Real>::zet_xm_Error_Trace_mode_Transfer_to_its_Members() {
    zet_x(&basic_);
}

template <class Real>
void AlgebraForVector<Real>::report_sizing(const CNqClass& output, const char* method) const {
    adopt_failure_of(output);
    report(kCannotSizeOutput, method);
}

template <class Real>
bool AlgebraForVector<Real>::fail_sizing(const CNqClass& output, const char* method) const {
    adopt_failure_of(output);
    return fail(kCannotSizeOutput, method);
}

// ---- sums and products ----

template <class Real>
void AlgebraForVector<Real>::avv_Add_Vector_Vector(const VectorReal* a, const VectorReal* b,
                                                   VectorReal* out) const {
    if (!same_size(a, b)) return report("1", kAdd);
    if (!size_as(a, out)) return report_sizing(*out, kAdd);
    kernel::add(Size(a->vs()), a->p(), b->p(), out->p());
}

template <class Real>
void AlgebraForVector<Real>::avv_Add_Vector_Vector(const VectorReal* a, const VectorReal* b,
                                                   const VectorReal* c, VectorReal* out) const {
    if (!same_size(a, b, c)) return report("1", kAdd);
    if (!size_as(a, out)) return report_sizing(*out, kAdd);
    sum<Real, 3>(a->vs(), {a->p(), b->p(), c->p()}, out->p());
}

template <class Real>
void AlgebraForVector<Real>::avv_Add_Vector_Vector(const VectorReal* a, const VectorReal* b,
                                                   const VectorReal* c, const VectorReal* d,
                                                   VectorReal* out) const {
    if (!same_size(a, b, c, d)) return report("1", kAdd);
    if (!size_as(a, out)) return report_sizing(*out, kAdd);
    sum<Real, 4>(a->vs(), {a->p(), b->p(), c->p(), d->p()}, out->p());
}

template <class Real>
void AlgebraForVector<Real>::avvw_Add_Vector_Vector_with_Weight(const VectorReal* a,
                                                                const VectorReal* b, Real wa,
                                                                Real wb, VectorReal* out) const {
    if (!same_size(a, b)) return report("1", kAddWeighted);
    if (!size_as(a, out)) return report_sizing(*out, kAddWeighted);
    kernel::add_weighted(Size(a->vs()), a->p(), b->p(), wa, wb, out->p());
}

template <class Real>
void AlgebraForVector<Real>::avvw_Add_Vector_Vector_with_Weight(const VectorReal* a,
                                                                const VectorReal* b,
                                                                const VectorReal* c, Real wa,
                                                                Real wb, Real wc,
                                                                VectorReal* out) const {
    if (!same_size(a, b, c)) return report("1", kAddWeighted);
    if (!size_as(a, out)) return report_sizing(*out, kAddWeighted);
    weighted_sum<Real, 3>(a->vs(), {a->p(), b->p(), c->p()}, {wa, wb, wc}, out->p());
}

template <class Real>
void AlgebraForVector<Real>::avvw_Add_Vector_Vector_with_Weight(
    const VectorReal* a, const VectorReal* b, const VectorReal* c, const VectorReal* d, Real wa,
    Real wb, Real wc, Real wd, VectorReal* out) const {
    if (!same_size(a, b, c, d)) return report("1", kAddWeighted);
    if (!size_as(a, out)) return report_sizing(*out, kAddWeighted);
    weighted_sum<Real, 4>(a->vs(), {a->p(), b->p(), c->p(), d->p()}, {wa, wb, wc, wd}, out->p());
}

template <class Real>
void AlgebraForVector<Real>::svv_Subtract_Vector_Vector(const VectorReal* a, const VectorReal* b,
                                                        VectorReal* out) const {
    constexpr const char* kName = "svv_Subtract_Vector_Vector";
    if (!same_size(a, b)) return report("1", kName);
    if (!size_as(a, out)) return report_sizing(*out, kName);
    kernel::subtract(Size(a->vs()), a->p(), b->p(), out->p());
}

template <class Real>
void AlgebraForVector<Real>::mvve_Multiply_Vector_Vector_Elementwise(const VectorReal* a,
                                                                     const VectorReal* b,
                                                                     VectorReal* out) const {
    constexpr const char* kName = "mvve_Multiply_Vector_Vector_Elementwise";
    if (!same_size(a, b)) return report("1", kName);
    if (!size_as(a, out)) return report_sizing(*out, kName);
    kernel::multiply_elementwise(Size(a->vs()), a->p(), b->p(), out->p());
}

template <class Real>
void AlgebraForVector<Real>::avc_Add_Vector_Constant(const VectorReal* a, Real c,
                                                     VectorReal* out) const {
    if (!size_as(a, out)) return report_sizing(*out, "avc_Add_Vector_Constant");
    kernel::add_constant(Size(a->vs()), a->p(), c, out->p());
}

template <class Real>
void AlgebraForVector<Real>::mvc_Multiply_Vector_Constant(const VectorReal* a, Real c,
                                                          VectorReal* out) const {
    if (!size_as(a, out)) return report_sizing(*out, "mvc_Multiply_Vector_Constant");
    kernel::scale(Size(a->vs()), a->p(), c, out->p());
}

// ---- scalars ----

template <class Real>
Real AlgebraForVector<Real>::ps_Product_Scalar(const VectorReal* a, const VectorReal* b) const {
    if (!same_size(a, b)) end_process("1", "ps_Product_Scalar");
    return kernel::dot(view_of(a), view_of(b));
}

template <class Real>
Real AlgebraForVector<Real>::ms_Magnitude_Squared(const VectorReal* a) const {
    return kernel::dot(view_of(a), view_of(a));
}

template <class Real>
Real AlgebraForVector<Real>::ds_Distance_Squared_between_two_points(const VectorReal* a,
                                                                    const VectorReal* b) const {
    if (!same_size(a, b)) {
        report("1", "ds_Distance_Squared_between_two_points");
        return -1;
    }
    return kernel::distance_squared(view_of(a), view_of(b));
}

template <class Real>
bool AlgebraForVector<Real>::n_Normalize_vector(VectorReal* a) const {
    return basic_.n_Normalize_vector(a->vs(), a->p());
}

// ---- raw arrays ----

template <class Real>
void AlgebraForVector<Real>::ev_Export_Vector(int n, const double* src, Vector<double>* out) const {
    if (!export_vector(n, src, out)) report_sizing(*out, "ev_Export_Vector");
}

template <class Real>
void AlgebraForVector<Real>::ev_Export_Vector(int n, const double* src, Vector<float>* out) const {
    if (!export_vector(n, src, out)) report_sizing(*out, "ev_Export_Vector");
}

template <class Real>
void AlgebraForVector<Real>::ev_Export_Vector(int n, const float* src, Vector<double>* out) const {
    if (!export_vector(n, src, out)) report_sizing(*out, "ev_Export_Vector");
}

template <class Real>
void AlgebraForVector<Real>::ev_Export_Vector(int n, const float* src, Vector<float>* out) const {
    if (!export_vector(n, src, out)) report_sizing(*out, "ev_Export_Vector");
}

template <class Real>
void AlgebraForVector<Real>::iv_Import_Vector(const Vector<double>* a, double* dst, int& n) const {
    import_vector(a, dst, n);
}

template <class Real>
void AlgebraForVector<Real>::iv_Import_Vector(const Vector<double>* a, float* dst, int& n) const {
    import_vector(a, dst, n);
}

template <class Real>
void AlgebraForVector<Real>::iv_Import_Vector(const Vector<float>* a, double* dst, int& n) const {
    import_vector(a, dst, n);
}

template <class Real>
void AlgebraForVector<Real>::iv_Import_Vector(const Vector<float>* a, float* dst, int& n) const {
    import_vector(a, dst, n);
}

template class AlgebraForVector<double>;
template class AlgebraForVector<float>;

}  // namespace nequar
