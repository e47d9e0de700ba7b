#pragma once

#include "nequar_algebra/frame/class.h"
#include "nequar_algebra/frame/matrix.h"
#include "nequar_algebra/frame/vector.h"

namespace nequar {

/// Which vectors of its matrix a `GrowableMatrix` grows by.
enum class NEQUAR_API Growth {
    columns,  ///< the columns, as in `CNqXCmatrix`
    rows      ///< the rows, as in `CNqXRmatrix`
};

/// A collection of vectors of one size that grows: the columns (the rows) of a matrix, of which
/// the first `count` are stored and the rest is blank space, reserved for more.
///
///     CNqXCmatrix      count  blank             CNqXRmatrix       size
///                   +-------+-------+                        +-----------+
///              size |vectors|  ...  |                  count |  vectors  |
///                   +-------+-------+                        +-----------+
///                                                      blank |    ...    |
///                                                            +-----------+
///
/// Appending moves what is stored O(1) times on average. What the blank space holds is not
/// specified. A matrix or vector handed to an operation may be the container's own. Every operation
/// that answers bool leaves the container as it was when it answers false; the detail is "1" for an
/// argument that is out of range, "2" for room that cannot be had.
template <class Real, Growth growth>
class NEQUAR_API GrowableMatrix : public CNqClass {
public:
    GrowableMatrix();
    /// Copies the vectors and the size of the blank space.
    GrowableMatrix(const GrowableMatrix& other);
    GrowableMatrix(GrowableMatrix&& other) noexcept;
    ~GrowableMatrix() override;
    GrowableMatrix& operator=(const GrowableMatrix& other);
    GrowableMatrix& operator=(GrowableMatrix&& other) noexcept;
    /// Makes this container a copy of another, vectors and size of the blank space.
    bool cp_Copy(const GrowableMatrix* other);

    /// Empties the container and reserves room for `expected` vectors of the given size.
    bool in_Initialize(int size, int expected);
    /// Makes room for at least `expected` vectors in all; what is stored stays. An empty container
    /// takes the size; one that holds vectors of another size refuses it ("3").
    bool is_Initialize_Space(int size, int expected);
    /// Makes the blank space n vectors long.
    bool mbs_Modify_Blank_Space(int n);
    bool mbs(int n) { return mbs_Modify_Blank_Space(n); }
    /// The number of vectors that the blank space can take.
    int sbs_Size_of_Blank_Space() const noexcept;
    int sbs() const noexcept { return sbs_Size_of_Blank_Space(); }
    /// The number of stored vectors.
    int nee_Number_of_Enrolled_Elements() const noexcept;
    int nee() const noexcept { return nee_Number_of_Enrolled_Elements(); }
    /// The size of each vector.
    int vs_Vector_Size() const noexcept;
    int vs() const noexcept { return vs_Vector_Size(); }
    /// Makes the number of stored vectors n; vectors that come in are zero.
    bool z_cne_Change_Number_of_Elements(int n);
    bool z_cne(int n) { return z_cne_Change_Number_of_Elements(n); }

    /// Appends the first `count` columns (rows) of a matrix: "1" when it has fewer, "3" when they
    /// are not of the container's vector size. A container that was never initialized has the size
    /// 0.
    bool ap_Append(const Matrix<Real>* matrix, int count);
    /// Appends one vector, "3" when it is not of the container's vector size.
    bool ap_Append(const Vector<Real>* vector);

    /// Hands out, each through an optional argument (null: not wanted): the underlying matrix, its
    /// row pointers, its width and its height, the blank space included; the number of stored
    /// vectors; how many more the blank space can take. The matrix of a `CNqXCmatrix` is count +
    /// blank wide and as high as a vector is long; that of a `CNqXRmatrix` is count + blank high.
    /// Pointers hold until the container is next changed.
    void z_gii_Get_Informations_Internal(Matrix<Real>** matrix = nullptr, Real*** rows = nullptr,
                                         int* width = nullptr, int* height = nullptr,
                                         int* count = nullptr, int* blank = nullptr) noexcept;
    void z_gii_Get_Informations_Internal(const Matrix<Real>** matrix = nullptr,
                                         const Real* const** rows = nullptr, int* width = nullptr,
                                         int* height = nullptr, int* count = nullptr,
                                         int* blank = nullptr) const noexcept;
    void z_gii(Matrix<Real>** matrix = nullptr, Real*** rows = nullptr, int* width = nullptr,
               int* height = nullptr, int* count = nullptr, int* blank = nullptr) noexcept {
        z_gii_Get_Informations_Internal(matrix, rows, width, height, count, blank);
    }
    void z_gii(const Matrix<Real>** matrix = nullptr, const Real* const** rows = nullptr,
               int* width = nullptr, int* height = nullptr, int* count = nullptr,
               int* blank = nullptr) const noexcept {
        z_gii_Get_Informations_Internal(matrix, rows, width, height, count, blank);
    }

    /// Same number of vectors, same size, exactly equal elements; the blank space does not count.
    bool operator==(const GrowableMatrix& other) const noexcept;

private:
    int room() const noexcept;
    bool make_room(std::ptrdiff_t needed);
    bool move_to(int size, int room);
    void take_over(Matrix<Real>& larger) noexcept;
    void sizes(int* width, int* height, int* count, int* blank) const noexcept;

    Matrix<Real> matrix_;
    int count_ = 0;
};

}  // namespace nequar

using CNqXCmatrix = nequar::GrowableMatrix<double, nequar::Growth::columns>;
using CNqXCmatrixFloat = nequar::GrowableMatrix<float, nequar::Growth::columns>;
using CNqXRmatrix = nequar::GrowableMatrix<double, nequar::Growth::rows>;
using CNqXRmatrixFloat = nequar::GrowableMatrix<float, nequar::Growth::rows>;

extern template class nequar::GrowableMatrix<double, nequar::Growth::columns>;
extern template class nequar::GrowableMatrix<float, nequar::Growth::columns>;
extern template class nequar::GrowableMatrix<double, nequar::Growth::rows>;
extern template class nequar::GrowableMatrix<float, nequar::Growth::rows>;
