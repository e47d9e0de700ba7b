// AlgebraForVector: geometry. Included by vector_algebra.cpp alone.
//
// Sizing an output may move the storage of an operand that is the same object, so results are
// computed into a few local coordinates first.
#pragma once

#include "frame/algorithm/geometry.h"
#include "nequar_algebra/algebra/vector_algebra.h"

namespace nequar {

template <class Real>
bool AlgebraForVector<Real>::pv3_Product_Vector_of_vector_3D(const VectorReal* a,
                                                             const VectorReal* b,
                                                             VectorReal* out) const {
    constexpr const char* kName = "pv3_Product_Vector_of_vector_3D";
    if (a->vs() != 3) return fail("1", kName);
    if (b->vs() != 3) return fail("2", kName);
    Real product[3];
    basic_.pv3_Product_Vector_of_vector_3D(a->p(), b->p(), product);
    return store(product, 3, out, kName);
}

template <class Real>
bool AlgebraForVector<Real>::nvt_Normal_Vector_of_Triangle_3D(const VectorReal* p0,
                                                              const VectorReal* p1,
                                                              const VectorReal* p2,
                                                              VectorReal* n) const {
    constexpr const char* kName = "nvt_Normal_Vector_of_Triangle_3D";
    if (p0->vs() != 3) return fail("1", kName);
    if (p1->vs() != 3) return fail("2", kName);
    if (p2->vs() != 3) return fail("3", kName);
    Real normal[3];
    basic_.nvt_Normal_Vector_of_Triangle_3D(p0->p(), p1->p(), p2->p(), normal);
    return store(normal, 3, n, kName);
}

template <class Real>
bool AlgebraForVector<Real>::fl_Find_Line_equation_of_segment_2D(const VectorReal* p0,
                                                                 const VectorReal* p1,
                                                                 VectorReal* line) const {
    constexpr const char* kName = "fl_Find_Line_equation_of_segment_2D";
    if (p0->vs() != 2) return fail("1", kName);
    if (p1->vs() != 2) return fail("2", kName);
    Real coefficients[3];
    basic_.fl_Find_Line_equation_of_segment_2D(p0->p(), p1->p(), coefficients);
    return store(coefficients, 3, line, kName);
}

template <class Real>
bool AlgebraForVector<Real>::fp_Find_Plane_equation_of_triangle_3D(const VectorReal* p0,
                                                                   const VectorReal* p1,
                                                                   const VectorReal* p2,
                                                                   VectorReal* plane) const {
    constexpr const char* kName = "fp_Find_Plane_equation_of_triangle_3D";
    if (p0->vs() != 3) return fail("1", kName);
    if (p1->vs() != 3) return fail("2", kName);
    if (p2->vs() != 3) return fail("3", kName);
    Real coefficients[4];
    basic_.fp_Find_Plane_equation_of_triangle_3D(p0->p(), p1->p(), p2->p(), coefficients);
    return store(coefficients, 4, plane, kName);
}

template <class Real>
bool AlgebraForVector<Real>::nvs_Normal_Vector_of_Segment_2D(const VectorReal* p0,
                                                             const VectorReal* p1,
                                                             VectorReal* n) const {
    constexpr const char* kName = "nvs_Normal_Vector_of_Segment_2D";
    if (p0->vs() != 2) return fail("1", kName);
    if (p1->vs() != 2) return fail("2", kName);
    Real normal[2];
    normal_of_segment(p0->p(), p1->p(), normal);
    return store(normal, 2, n, kName);
}

template <class Real>
Real AlgebraForVector<Real>::dspl_Distance_Squared_between_Point_2D_and_Line(
    const VectorReal* p, const VectorReal* line) const {
    constexpr const char* kName = "dspl_Distance_Squared_between_Point_2D_and_Line";
    if (p->vs() != 2) end_process("1", kName);
    if (line->vs() != 3) end_process("2", kName);
    return basic_.dspl_Distance_Squared_between_Point_2D_and_Line(p->p(), line->p());
}

template <class Real>
Real AlgebraForVector<Real>::dspp_Distance_Squared_between_Point_3D_and_Plane(
    const VectorReal* p, const VectorReal* plane) const {
    constexpr const char* kName = "dspp_Distance_Squared_between_Point_3D_and_Plane";
    if (p->vs() != 3) end_process("1", kName);
    if (plane->vs() != 4) end_process("2", kName);
    return basic_.dspp_Distance_Squared_between_Point_3D_and_Plane(p->p(), plane->p());
}

template <class Real>
bool AlgebraForVector<Real>::store(const Real* elements, int n, VectorReal* out,
                                   const char* method) const {
    if (out->c_Create(n) == nullptr) return fail_sizing(*out, method);
    for (int i = 0; i < n; ++i) (*out)[i] = elements[i];
    return true;
}

}  // namespace nequar
