#pragma once

#include <cstddef>
#include <iosfwd>

#include "nequar_algebra/frame/class.h"
#include "nequar_algebra/frame/matrix.h"
#include "nequar_algebra/frame/vector.h"

namespace nequar {

/// The Vandermonde matrix V of n nodes a_0 … a_{n-1}: element (column x, row y) is a_x^y. Only the
/// nodes are stored.
///
/// Interpolation (V^T c = f) and systems V z = b cost O(n^2). These matrices are among the worst
/// conditioned there are; with nodes in increasing order the results are often far better than the
/// condition number lets expect.
///
/// The two algorithms work in place and leave the data as it was when they fail: "All the elements
/// should be different !!!", "1" (the data has not as many elements as there are nodes), "out of
/// memory". A node that is infinite or NaN makes the whole result NaN.
///
/// Source: Bjorck and Pereyra 1970; Golub and Van Loan, Matrix Computations, 4.6.
template <class Real>
class NEQUAR_API MatrixVandermonde : public CNqClass {
public:
    /// One node, 1.0.
    MatrixVandermonde();
    MatrixVandermonde(const MatrixVandermonde&) = default;
    /// A move leaves a matrix without nodes.
    MatrixVandermonde(MatrixVandermonde&&) noexcept = default;
    ~MatrixVandermonde() override;
    MatrixVandermonde& operator=(const MatrixVandermonde&) = default;
    MatrixVandermonde& operator=(MatrixVandermonde&&) noexcept = default;
    /// Makes this matrix a copy of another.
    void cp_Copy(const MatrixVandermonde* source);

    /// Gives the width, then the height; both are the number of nodes.
    void ms_Matrix_Width_Height(int& width, int& height) const noexcept;
    void ms(int& width, int& height) const noexcept { ms_Matrix_Width_Height(width, height); }
    int mw() const noexcept { return nodes_.vs(); }
    int mh() const noexcept { return nodes_.vs(); }

    /// Takes the nodes. Beware: equal nodes are reported ("All the elements should be different
    /// !!!", answer false) but taken all the same.
    bool im_Import(const Vector<Real>& nodes);
    /// Writes V, its transpose (the matrix of the interpolation), and the nodes, each sized here;
    /// null: not wanted. "1": an output cannot be sized, or both matrices are one object.
    void ex_Export(Matrix<Real>* matrix, Matrix<Real>* transposed, Vector<Real>* nodes) const;
    /// Writes V into an array of order * order elements: element (row r, column c) is
    /// elements[r * order + c] when row_major is true, elements[c * order + r] when it is false.
    void ex_Export(bool row_major, Real* elements, int* order) const;

    /// Element a_x^y, x and y wrapped: -1 is the last. By squarings, so rounding differs from that
    /// of repeated products. 0.0 and detail "1" without nodes, as for rows and columns.
    Real ge_Get_Element(int x, int y) const;
    /// Row `index` (wrapped), that power of all nodes; column `index`, all powers of that node.
    void gr_Get_Row(int index, Real* out) const;
    void gr_Get_Row(int index, Vector<Real>* out) const;
    void gc_Get_Column(int index, Real* out) const;
    void gc_Get_Column(int index, Vector<Real>* out) const;

    /// True when no two nodes are exactly equal (a NaN equals nothing). O(n^2).
    bool u_tse_Test_Set_of_Elements(const Vector<Real>& nodes) const;

    /// f becomes the coefficients c of the polynomial p(t) = sum c_k t^k with p(a_j) = f_j. With
    /// `test` equal nodes are refused; without it they divide by zero. f may be `nodes`.
    bool u_fcp_Find_Coefficients_of_Polynomial(const Vector<Real>& nodes, Vector<Real>& f,
                                               bool test) const;
    /// b becomes z with sum_j a_j^i z_j = b_i for every i. b may be `nodes`.
    bool u_sle_Solve_Linear_Equation(const Vector<Real>& nodes, Vector<Real>& b, bool test) const;
    /// The same with this object's nodes, which are tested.
    bool fcp_Find_Coefficients_of_Polynomial(Vector<Real>& f) const;
    bool sle_Solve_Linear_Equation(Vector<Real>& b) const;

    /// Exactly the same nodes in the same order (a NaN equals nothing).
    bool operator==(const MatrixVandermonde& other) const noexcept {
        return nodes_ == other.nodes_;
    }

private:
    using InPlace = void (*)(std::ptrdiff_t, const Real*, Real*);
    bool run(const Vector<Real>& nodes, Vector<Real>& data, bool test, InPlace algorithm,
             const char* method) const;

    Vector<Real> nodes_;
};

/// Prints the matrix like a dense one.
template <class Real>
NEQUAR_API std::ostream& operator<<(std::ostream& out, const MatrixVandermonde<Real>& matrix);

}  // namespace nequar

using CNqMatrix_Vandermonde = nequar::MatrixVandermonde<double>;
using CNqMatrixFloat_Vandermonde = nequar::MatrixVandermonde<float>;

extern template class nequar::MatrixVandermonde<double>;
extern template class nequar::MatrixVandermonde<float>;
