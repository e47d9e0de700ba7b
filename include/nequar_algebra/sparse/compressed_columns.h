#pragma once

#include "nequar_algebra/frame/algebra_basic.h"
#include "nequar_algebra/frame/class.h"
#include "nequar_algebra/frame/growable_vector.h"
#include "nequar_algebra/frame/matrix.h"
#include "nequar_algebra/frame/vector.h"

namespace nequar {

// The library's own way to the storage of sparse objects; defined beside their sources.
template <class Real>
struct SparseInside;

/// What sparse matrices share: the compressed-column storage and what can be said of it without
/// knowing which half of the matrix is stored.
///
///     start   | 0 | 2 | 2 | 5 |          width + 1 pointers; the last is the number of elements
///               |    \____  \___________
///     rows    | 1 | 3 | 0 | 2 | 3 |    \    row numbers, strictly increasing within a column
///     values  | a | b | c | d | e | blank space reserved for more |
///
/// Column c holds the elements start[c] … start[c+1]-1. A stored element may be 0.0 (an "explicit
/// zero"); what is not stored reads as 0.0. Elements are named (x, y) = (column, row) from 0,
/// shapes height first. Each operation has a short name, and a long one that forwards to it.
///
/// Failures answer false and leave the object as it was. `ivip…` to `ivrb…` save the message of
/// what is wrong; the operation that asked then reports under its own name. Copies are deep; a move
/// leaves an empty 0 x 0 matrix. Changing the number of elements by `z_cne` alone can put it out of
/// step with the start pointers: nothing is then read or written outside the storage, but what the
/// operations give is not specified.
///
/// Cost, where an operation does not name it: O(stored elements + width) for what speaks of the
/// whole matrix, O(1) for sizes and tests of indices.
template <class Real>
class NEQUAR_API CompressedColumns : public CNqClass {
public:
    /// Hands the error-trace flag to values, row numbers, start pointers and kernels.
    void zet_xm() noexcept;
    void zet_xm_Error_Trace_mode_Transfer_to_its_Members() noexcept { zet_xm(); }

    /// Gives the width, then the height.
    void ms(int& width, int& height) const noexcept {
        width = mw();
        height = mh();
    }
    void ms_Matrix_Size(int& width, int& height) const noexcept { ms(width, height); }
    int mw() const noexcept { return start_.vs() > 0 ? start_.vs() - 1 : 0; }
    int mw_Matrix_Width() const noexcept { return mw(); }
    int mh() const noexcept { return height_; }
    int mh_Matrix_Height() const noexcept { return mh(); }
    /// The number of stored elements.
    int nee() const noexcept { return values_.nee(); }
    int nee_Number_of_Enrolled_Elements() const noexcept { return nee(); }
    /// The number of reserved positions that are empty.
    int sbs() const noexcept { return values_.sbs(); }
    int sbs_Size_of_Blank_Space() const noexcept { return sbs(); }

    /// Makes the blank space n positions long; "1" when the values, "2" when the row numbers
    /// refuse.
    bool mbs(int n);
    bool mbs_Modify_Blank_Space(int n) { return mbs(n); }
    /// Sets the number of values and of row numbers ("1", "2"). The start pointers are not touched:
    /// this ends the filling of storage that `z_gii` gave out. A matrix that was moved from has no
    /// columns and takes no elements ("1").
    bool z_cne(int n);
    bool z_cne_Change_Number_of_Elements(int n) { return z_cne(n); }
    /// Hands out the start-pointer vector; the element pointers of values, row numbers and start
    /// pointers; width, height, number of elements, blank space. Null: not wanted. The pointers
    /// reach the blank space and hold until the matrix is next changed.
    void z_gii(Vector<int>** start_vector = nullptr, Real** values = nullptr, int** rows = nullptr,
               int** start = nullptr, int* width = nullptr, int* height = nullptr,
               int* count = nullptr, int* blank = nullptr);
    void z_gii(const Vector<int>** start_vector, const Real** values = nullptr,
               const int** rows = nullptr, const int** start = nullptr, int* width = nullptr,
               int* height = nullptr, int* count = nullptr, int* blank = nullptr) const;
    void z_gii_Get_Informations_Internal(Vector<int>** start_vector = nullptr,
                                         Real** values = nullptr, int** rows = nullptr,
                                         int** start = nullptr, int* width = nullptr,
                                         int* height = nullptr, int* count = nullptr,
                                         int* blank = nullptr) {
        z_gii(start_vector, values, rows, start, width, height, count, blank);
    }
    void z_gii_Get_Informations_Internal(const Vector<int>** start_vector,
                                         const Real** values = nullptr, const int** rows = nullptr,
                                         const int** start = nullptr, int* width = nullptr,
                                         int* height = nullptr, int* count = nullptr,
                                         int* blank = nullptr) const {
        z_gii(start_vector, values, rows, start, width, height, count, blank);
    }

    /// Whether (x, y) is an element; "x<0", "x>=width", "y<0", "y>=height" in this order.
    bool ivip(int x, int y) const;
    bool ivip_Is_Valid_Index_for_Pixel(int x, int y) const { return ivip(x, y); }
    /// Whether x is a column, y a row.
    bool ivic(int x) const;
    bool ivic_Is_Valid_Index_for_Column(int x) const { return ivic(x); }
    bool ivir(int y) const;
    bool ivir_Is_Valid_Index_for_Row(int y) const { return ivir(y); }
    /// Whether (x, y) is an element and dx more columns (dy more rows, both) fit: "dx<=0",
    /// "(x+dx)>width", "dy<=0", "(y+dy)>height".
    bool ivrr(int x, int y, int dx) const;
    bool ivrr_Is_Valid_Range_for_Row(int x, int y, int dx) const { return ivrr(x, y, dx); }
    bool ivrc(int x, int y, int dy) const;
    bool ivrc_Is_Valid_Range_for_Column(int x, int y, int dy) const { return ivrc(x, y, dy); }
    bool ivrb(int x, int y, int dx, int dy) const;
    bool ivrb_Is_Valid_Range_for_Block(int x, int y, int dx, int dy) const {
        return ivrb(x, y, dx, dy);
    }

    /// Removes the explicit zeros, O(stored + width). ("dec[ww-1]!=count", a failed check of the
    /// count, does not occur.)
    bool rze();
    bool rze_Remove_Zero_Elements() { return rze(); }

    /// Multiplies every stored value by c; a value that becomes 0.0 stays stored.
    bool mmc(Real c);
    bool mmc_Multiply_Matrix_Constant(Real c) { return mmc(c); }
    bool operator*=(Real c) { return mmc(c); }
    /// Divides every stored value by c; c = 0.0 is reported ("divide by zero") and changes nothing.
    bool operator/=(Real c);

protected:
    explicit CompressedColumns(const char* class_name);
    CompressedColumns(const CompressedColumns& other);
    CompressedColumns(CompressedColumns&& other) noexcept;
    ~CompressedColumns() override;
    CompressedColumns& operator=(const CompressedColumns& other);
    CompressedColumns& operator=(CompressedColumns&& other) noexcept;

    friend struct SparseInside<Real>;

    /// The work of `czm…`, `cim…` and `cp_Copy`, with their reports.
    bool create(int height, int width, int expected);
    bool create_identity(int n, int extra);
    bool copy_columns(const CompressedColumns& source);
    /// Copies in what `tip…` has found good.
    bool copy_arrays(int height, const GrowableVector<Real>& values,
                     const GrowableVector<int>& rows, const Vector<int>& start);
    /// Takes over the storage of another matrix, which becomes empty.
    void take_columns(CompressedColumns& other) noexcept;

    /// Element (x, y), which has to be one, as it is stored.
    Real element(int x, int y) const noexcept;
    /// Overwrites or inserts; codes "1" and "2" under the name of the operation.
    bool write_element(int x, int y, Real v, const char* method);

    /// this += factor b, on the stored elements; shapes have to agree.
    bool add(const CompressedColumns& b, Real factor, const char* method);
    bool multiply_elementwise(const CompressedColumns& b, const char* method);
    bool has_equal_elements(const CompressedColumns& b) const;
    /// `out` gets the structure of this matrix and its values times (divided by) c.
    bool multiply_into(Real c, CompressedColumns& out) const;
    bool divide_into(Real c, CompressedColumns& out) const;

    /// Brings the start pointers behind the last column that was written up to date.
    void settle() const noexcept;

private:
    bool refuse(const char* message, const char* method) const;
    bool check_point(int x, int y, const char* method) const;
    bool check_width(int x, int dx, const char* method) const;
    bool check_height(int y, int dy, const char* method) const;
    bool copy_structure(CompressedColumns& out, const char* method) const;

    int height_ = 0;
    GrowableVector<Real> values_;
    GrowableVector<int> rows_;
    mutable Vector<int> start_;
    LCNqAlgebra_Basic kernels_;
    // start[c] for c > settled_ is the number of elements and is written only when somebody needs
    // it, so that a matrix built in the order of its columns costs no pass over the pointers for
    // each element. Once the pointers have been handed out they are always up to date.
    mutable int settled_ = 0;
    mutable bool start_is_shared_ = false;
};

}  // namespace nequar

extern template class nequar::CompressedColumns<double>;
extern template class nequar::CompressedColumns<float>;
