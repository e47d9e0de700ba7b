#include "nequar_algebra/structured/vandermonde.h"

#include <ostream>

#include "core/overlap.h"
#include "core/twin_name.h"
#include "core/wrap.h"
#include "frame/print.h"
#include "frame/views.h"
#include "kernel/kernel.h"
#include "structured/algorithm/vandermonde.h"

namespace nequar {
namespace {

constexpr const char* kEqualNodes = "All the elements should be different !!!";

}  // namespace

template <class Real>
MatrixVandermonde<Real>::MatrixVandermonde() {
    this->set_class_name(twin_name<Real>("CNqMatrix_Vandermonde", "CNqMatrixFloat_Vandermonde"));
    nodes_.c_Create(1, Real(1));
}

template <class Real>
MatrixVandermonde<Real>::~MatrixVandermonde() = default;

template <class Real>
void MatrixVandermonde<Real>::cp_Copy(const MatrixVandermonde* source) {
    nodes_.cp_Copy(&source->nodes_);
}

template <class Real>
void MatrixVandermonde<Real>::ms_Matrix_Width_Height(int& width, int& height) const noexcept {
    width = height = nodes_.vs();
}

template <class Real>
bool MatrixVandermonde<Real>::im_Import(const Vector<Real>& nodes) {
    if (nodes_.cp_Copy(&nodes) == nullptr) {
        this->report("out of memory", "im_Import");
        return false;
    }
    if (u_tse_Test_Set_of_Elements(nodes_)) return true;
    this->report(kEqualNodes, "im_Import");
    return false;
}

template <class Real>
void MatrixVandermonde<Real>::ex_Export(Matrix<Real>* matrix, Matrix<Real>* transposed,
                                        Vector<Real>* nodes) const {
    const int n = nodes_.vs();
    if (matrix != nullptr && matrix == transposed) return this->report("1", "ex_Export");
    if (matrix != nullptr) {
        if (matrix->c_Create(n, n) == nullptr) return this->report("1", "ex_Export");
        vandermonde_matrix(nodes_.p(), view_of(matrix));
    }
    if (transposed != nullptr) {
        if (transposed->c_Create(n, n) == nullptr) return this->report("1", "ex_Export");
        for (int j = 0; j < n; ++j) powers_of_node(Size(n), nodes_[j], (*transposed)[j]);
    }
    if (nodes != nullptr && nodes->cp_Copy(&nodes_) == nullptr) this->report("1", "ex_Export");
}

template <class Real>
void MatrixVandermonde<Real>::ex_Export(bool row_major, Real* elements, int* order) const {
    const Size n = nodes_.vs();
    if (row_major)
        vandermonde_matrix(nodes_.p(), View<Real>(elements, n, n, n));
    else
        for (Size j = 0; j < n; ++j) powers_of_node(n, nodes_[int(j)], elements + j * n);
    *order = nodes_.vs();
}

template <class Real>
Real MatrixVandermonde<Real>::ge_Get_Element(int x, int y) const {
    const int n = nodes_.vs();
    if (n == 0) {
        this->report("1", "ge_Get_Element");
        return Real(0);
    }
    return power(nodes_[wrapped(x, n)], Size(wrapped(y, n)));
}

template <class Real>
void MatrixVandermonde<Real>::gr_Get_Row(int index, Real* out) const {
    const int n = nodes_.vs();
    if (n == 0) return this->report("1", "gr_Get_Row");
    powers_of_nodes(Size(n), nodes_.p(), Size(wrapped(index, n)), out);
}

template <class Real>
void MatrixVandermonde<Real>::gc_Get_Column(int index, Real* out) const {
    const int n = nodes_.vs();
    if (n == 0) return this->report("1", "gc_Get_Column");
    powers_of_node(Size(n), nodes_[wrapped(index, n)], out);
}

template <class Real>
void MatrixVandermonde<Real>::gr_Get_Row(int index, Vector<Real>* out) const {
    if (nodes_.vs() == 0 || out->c_Create(nodes_.vs()) == nullptr)
        return this->report("1", "gr_Get_Row");
    gr_Get_Row(index, out->p());
}

template <class Real>
void MatrixVandermonde<Real>::gc_Get_Column(int index, Vector<Real>* out) const {
    if (nodes_.vs() == 0 || out->c_Create(nodes_.vs()) == nullptr)
        return this->report("1", "gc_Get_Column");
    gc_Get_Column(index, out->p());
}

// ---- the algorithms -----------------------------------------------------------------------------

template <class Real>
bool MatrixVandermonde<Real>::u_tse_Test_Set_of_Elements(const Vector<Real>& nodes) const {
    return are_distinct(Size(nodes.vs()), nodes.p());
}

template <class Real>
bool MatrixVandermonde<Real>::run(const Vector<Real>& nodes, Vector<Real>& data, bool test,
                                  InPlace algorithm, const char* method) const {
    if (test && !u_tse_Test_Set_of_Elements(nodes)) return this->fail(kEqualNodes, method);
    const Size n = nodes.vs();
    if (data.vs() != n) return this->fail("1", method);
    const Apart<Real> apart(nodes.p(), n, data.p(), n);
    if (!apart) return this->fail("out of memory", method);
    algorithm(n, apart.data(), data.p());
    return true;
}

template <class Real>
bool MatrixVandermonde<Real>::u_fcp_Find_Coefficients_of_Polynomial(const Vector<Real>& nodes,
                                                                    Vector<Real>& f,
                                                                    bool test) const {
    return run(nodes, f, test, interpolate<Real>, "u_fcp_Find_Coefficients_of_Polynomial");
}

template <class Real>
bool MatrixVandermonde<Real>::u_sle_Solve_Linear_Equation(const Vector<Real>& nodes,
                                                          Vector<Real>& b, bool test) const {
    return run(nodes, b, test, solve_vandermonde<Real>, "u_sle_Solve_Linear_Equation");
}

template <class Real>
bool MatrixVandermonde<Real>::fcp_Find_Coefficients_of_Polynomial(Vector<Real>& f) const {
    return u_fcp_Find_Coefficients_of_Polynomial(nodes_, f, true);
}

template <class Real>
bool MatrixVandermonde<Real>::sle_Solve_Linear_Equation(Vector<Real>& b) const {
    return u_sle_Solve_Linear_Equation(nodes_, b, true);
}

template <class Real>
std::ostream& operator<<(std::ostream& out, const MatrixVandermonde<Real>& matrix) {
    return print_matrix(out, matrix.mh(), matrix.mw(),
                        [&matrix](int y, int x) { return matrix.ge_Get_Element(x, y); });
}

#define NEQUAR_INSTANTIATE(Real)            \
    template class MatrixVandermonde<Real>; \
    template NEQUAR_API std::ostream& operator<<(std::ostream&, const MatrixVandermonde<Real>&);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
