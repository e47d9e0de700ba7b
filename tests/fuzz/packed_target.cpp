// Random operations on the packed types, with any coordinates, sizes and bandwidths: reads and
// writes go where a dense mirror has them, or are refused; nothing else changes. A vector that was
// resized behind the matrix's back is never read or written outside.
#include <memory>
#include <vector>

#include "fuzz/input.h"
#include "nequar_algebra/structured.h"

namespace {

using namespace nequar;
using nequar::fuzz::Input;

int wrapped(int i, int n) {
    return n == 0 ? 0 : (i % n + n) % n;
}

// What the classes differ in: their shapes, and the order of the arguments. Elements are stored
// where -q <= y - x <= p; of symmetric ones those of either half are one.
struct Shape {
    int height = 1, width = 1, p = 0, q = 0;
    bool has(int x, int y) const { return y - x <= p && x - y <= q; }
    long long cells() const { return 1LL * height * width; }
};

template <class Real>
struct Lower {
    using Class = MatrixTriangular<Real, TriangleSide::lower>;
    static constexpr bool is_symmetric = false, is_square = false, has_bands = true;
    static bool is_legal(const Shape& s) { return s.height > 0 && s.width > 0; }
    static Shape limited(Shape s) { return {s.height, s.width, s.height, 0}; }
    static void create(Class& m, const Shape& s, Real v) { m.c_Create(s.height, s.width, v); }
    static void import(Class& m, const Matrix<Real>& d, const Shape&) { m.i_Import(&d); }
};
template <class Real>
struct Upper {
    using Class = MatrixTriangular<Real, TriangleSide::upper>;
    static constexpr bool is_symmetric = false, is_square = false, has_bands = true;
    static bool is_legal(const Shape& s) { return s.height > 0 && s.width > 0; }
    static Shape limited(Shape s) { return {s.height, s.width, 0, s.width}; }
    static void create(Class& m, const Shape& s, Real v) { m.c_Create(s.height, s.width, v); }
    static void import(Class& m, const Matrix<Real>& d, const Shape&) { m.i_Import(&d); }
};
template <class Real>
struct Diagonal {
    using Class = MatrixDiagonal<Real>;
    static constexpr bool is_symmetric = false, is_square = false, has_bands = false;
    static bool is_legal(const Shape& s) { return s.height > 0 && s.width > 0; }
    static Shape limited(Shape s) { return {s.height, s.width, 0, 0}; }
    static void create(Class& m, const Shape& s, Real v) { m.c_Create(s.height, s.width, v); }
    static void import(Class& m, const Matrix<Real>& d, const Shape&) { m.i_Import(&d); }
};
template <class Real>
struct Symmetric {
    using Class = MatrixSymmetric<Real>;
    static constexpr bool is_symmetric = true, is_square = true, has_bands = true;
    static bool is_legal(const Shape& s) { return s.height > 0 && s.height == s.width; }
    static Shape limited(Shape s) { return {s.height, s.height, s.height, s.height}; }
    static void create(Class& m, const Shape& s, Real v) { m.c_Create(s.height, s.width, v); }
    static void import(Class& m, const Matrix<Real>& d, const Shape&) {
        m.iu_Import_Upper_part_of(&d);
    }
};
template <class Real>
struct Band {
    using Class = MatrixBand<Real>;
    static constexpr bool is_symmetric = false, is_square = false, has_bands = true;
    static bool is_legal(const Shape& s) {
        return s.height > 0 && s.width > 0 && s.p >= 0 && s.p < s.height && s.q >= 0 &&
               s.q < s.width;
    }
    static Shape limited(Shape s) { return s; }
    static void create(Class& m, const Shape& s, Real v) {
        m.c_Create(s.height, s.width, s.p, s.q, v);
    }
    static void import(Class& m, const Matrix<Real>& d, const Shape& s) {
        m.i_Import(&d, s.p, s.q);
    }
};
template <class Real>
struct BandSymmetric {
    using Class = MatrixBandSymmetric<Real>;
    static constexpr bool is_symmetric = true, is_square = true, has_bands = true;
    static bool is_legal(const Shape& s) { return s.height > 0 && s.p >= 0 && s.p < s.height; }
    static Shape limited(Shape s) { return {s.height, s.height, s.p, s.p}; }
    static void create(Class& m, const Shape& s, Real v) { m.c_Create(s.height, s.p, v); }
    static void import(Class& m, const Matrix<Real>& d, const Shape& s) {
        m.iu_Import_Upper_part_of(&d, s.p);
    }
};

// The kinds that a dense matrix has all elements of are exported without a flag.
template <class Real>
Matrix<Real> exported(const MatrixSymmetric<Real>& m) {
    Matrix<Real> dense;
    m.e_Export(&dense);
    return dense;
}
template <class Class, class Real = std::remove_cvref_t<decltype(*std::declval<Class&>().p())>>
Matrix<Real> exported(const Class& m) {
    Matrix<Real> dense;
    m.e_Export(&dense, true);
    return dense;
}

template <class Real, template <class> class Kind>
class Walk {
    using K = Kind<Real>;
    using Class = typename K::Class;

public:
    explicit Walk(Input input) : input_(input) {}

    void run() {
        while (!input_.empty()) {
            step();
            if (is_resized_) continue;
            NEQUAR_REQUIRE(m_.mh() == shape_.height && m_.mw() == shape_.width);
            const Matrix<Real> dense = exported(m_);
            for (int y = 0; y < shape_.height; ++y)
                for (int x = 0; x < shape_.width; ++x)
                    NEQUAR_REQUIRE(dense[y][x] == (shape_.has(x, y) ? mirror(x, y) : Real(0)));
        }
    }

private:
    Real& mirror(int x, int y) {
        if (K::is_symmetric && x > y) std::swap(x, y);
        return mirror_[std::size_t(y * shape_.width + x)];
    }
    Real number() { return Real(input_.byte() - 100); }

    // A shape that is refused leaves everything; a large legal one would take much memory.
    void create() {
        Shape s{input_.any_int(), input_.any_int(), input_.any_int(), input_.any_int()};
        if (K::is_square && input_.coin()) s.width = s.height;
        const bool is_legal = K::is_legal(s);
        if (is_legal && (s.height > 32 || s.width > 32)) return;
        const Real value = number();
        K::create(m_, s, value);
        if (!is_legal) return;
        shape_ = K::limited(s);
        mirror_.assign(std::size_t(shape_.cells()), value);
        is_resized_ = false;
    }

    void import() {
        Shape s{1 + input_.below(12), 1 + input_.below(12), 0, 0};
        if (K::is_square) s.width = s.height;
        s.p = input_.below(s.height);
        s.q = input_.below(s.width);
        Matrix<Real> dense;
        dense.c_Create(s.height, s.width);
        for (int y = 0; y < s.height; ++y)
            for (int x = 0; x < s.width; ++x) dense[y][x] = number();
        K::import(m_, dense, s);
        shape_ = K::limited(s);
        mirror_.assign(std::size_t(shape_.cells()), Real(0));
        // The upper half of a symmetric matrix is read, the lower one of the mirror is kept.
        for (int y = 0; y < s.height; ++y)
            for (int x = 0; x < s.width; ++x)
                if (!K::is_symmetric || x >= y) mirror(x, y) = dense[y][x];
        is_resized_ = false;
    }

    void set_element(int x, int y) {
        const Real v = number();
        m_.se_Set_Element(x, y, v);
        if (is_resized_) return;
        x = wrapped(x, shape_.width);
        y = wrapped(y, shape_.height);
        if (shape_.has(x, y)) mirror(x, y) = v;
    }
    void get_element(int x, int y) {
        const Real got = m_.ge_Get_Element(x, y);
        if (is_resized_) return;
        x = wrapped(x, shape_.width);
        y = wrapped(y, shape_.height);
        NEQUAR_REQUIRE(got == (shape_.has(x, y) ? mirror(x, y) : Real(0)));
    }

    // The band through (x, y), read and then filled.
    void band(int x, int y) {
        const auto room = std::make_unique<Real[]>(std::size_t(2 + shape_.height + shape_.width));
        int count = -1;
        m_.gb_Get_Band(x, y, room.get(), count);
        const bool is_read = count >= 0;
        const std::vector<Real> read(room.get(), room.get() + std::max(count, 0));
        const Real v = number();
        count = -1;
        if (input_.coin())
            m_.sb_Set_Band(x, y, v, count);
        else
            m_.sb_Set_Band(x, y, std::vector<Real>(std::size_t(64), v).data(), count);
        NEQUAR_REQUIRE((count >= 0) == is_read);
        if (is_resized_) return;
        x = wrapped(x, shape_.width);
        y = wrapped(y, shape_.height);
        NEQUAR_REQUIRE(is_read == shape_.has(x, y));
        if (!is_read) return;
        const int d = K::is_symmetric ? std::abs(x - y) : x - y;
        int k = 0;
        for (int row = 0; row < shape_.height; ++row) {
            const int column = row + d;
            if (column < 0 || column >= shape_.width) continue;
            NEQUAR_REQUIRE(k < count && read[std::size_t(k++)] == mirror(column, row));
            mirror(column, row) = v;
        }
        NEQUAR_REQUIRE(k == count);
    }

    // A row or a column, read and (where the class can) filled.
    void line(int index, bool is_row) {
        if constexpr (K::has_bands) {
            std::vector<Real> room(std::size_t(2 + shape_.height + shape_.width), Real(-1000));
            int first = -1, last = -1;
            if (is_row)
                m_.gr_Get_Row(index, room.data(), first, last);
            else
                m_.gc_Get_Column(index, room.data(), first, last);
            if (is_resized_) {
                set_line(index, is_row, 0);
                return;
            }
            const int size = is_row ? shape_.width : shape_.height;
            const int at = wrapped(index, is_row ? shape_.height : shape_.width);
            bool has_any = false;
            for (int k = 0; k < size; ++k) {
                const int x = is_row ? k : at, y = is_row ? at : k;
                has_any = has_any || shape_.has(x, y);
                if (first < 0) continue;
                NEQUAR_REQUIRE(room[std::size_t(k)] == (shape_.has(x, y) ? mirror(x, y) : Real(0)));
                NEQUAR_REQUIRE(shape_.has(x, y) == (k >= first && k <= last));
            }
            NEQUAR_REQUIRE(has_any == (first >= 0) && room[std::size_t(size)] == Real(-1000));
            const Real v = number();
            if (!set_line(index, is_row, v)) return;
            for (int k = 0; k < size; ++k) {
                const int x = is_row ? k : at, y = is_row ? at : k;
                if (shape_.has(x, y)) mirror(x, y) = v;
            }
        }
    }
    bool set_line(int index, bool is_row, Real v) {
        if constexpr (K::has_bands && !K::is_symmetric) {
            int first = 0, last = 0;
            if (is_row)
                m_.sr_Set_Row(index, v, first, last);
            else
                m_.sc_Set_Column(index, v, first, last);
            return true;
        }
        return false;
    }

    // An index and a position are each other's inverse.
    void find(int x, int y) {
        if constexpr (K::has_bands) {
            int index = -1, back_x = -1, back_y = -1, first = 0, last = 0;
            m_.fi_Find_Index_of_element(x, y, index);
            m_.fib_Find_Index_range_of_a_Band(x, y, first, last);
            m_.fp_Find_Position_of_element(input_.any_int(), back_x, back_y);
            if (index < 0 || is_resized_) return;
            m_.fp_Find_Position_of_element(index, back_x, back_y);
            if (K::is_symmetric && x > y) std::swap(x, y);
            NEQUAR_REQUIRE(back_x == x && back_y == y && index >= first && index <= last);
            NEQUAR_REQUIRE(m_[index] == mirror(x, y));
        }
    }

    void step() {
        const int x = input_.any_int(), y = input_.any_int();
        switch (input_.below(12)) {
            case 0:
                return create();
            case 1:
                return import();
            case 2:
                return band(x, y);
            case 3:
            case 4:
                return line(x, y % 2 == 0);
            case 5:
                return find(x, y);
            case 6: {
                Class copy(m_);
                NEQUAR_REQUIRE(is_resized_ || copy == m_);
                m_ = Class(std::move(copy));
                NEQUAR_REQUIRE(copy.mh() == 0);
                copy.se_Set_Element(x, y, Real(1));
                copy.ge_Get_Element(x, y);
                return;
            }
            case 7:
                if (input_.below(4) != 0) return;
                is_resized_ = true;
                static_cast<Vector<Real>&>(m_).c_Create(input_.below(20), Real(5));
                return;
            case 8:
                return get_element(x, y);
            default:
                return set_element(x, y);
        }
    }

    Input input_;
    Class m_;
    Shape shape_ = K::limited({1, 1, 0, 0});
    std::vector<Real> mirror_ = {Real(0)};
    bool is_resized_ = false;
};

// The matrix of a first row: elements by coordinates, and what it is exported as.
template <class Real>
void walk_toeplitz(Input input) {
    MatrixToeplitzSymmetric<Real> t;
    Vector<Real> row;
    Matrix<Real> dense;
    while (!input.empty()) {
        const int size = input.below(8);
        row.c_Create(size);
        for (int i = 0; i < size; ++i) row[i] = Real(input.byte() - 100);
        const int n = input.any_int();
        if (!t.im_Import(n, row)) NEQUAR_REQUIRE(n <= 0 || n > size);
        t.ex_Export(&dense, nullptr, nullptr);
        const int x = input.any_int(), y = input.any_int();
        NEQUAR_REQUIRE(t.ge_Get_Element(x, y) == dense[wrapped(y, t.mh())][wrapped(x, t.mw())]);
        t.gr_Get_Row(x, &row);
        for (int k = 0; k < t.mw(); ++k) NEQUAR_REQUIRE(row[k] == dense[wrapped(x, t.mh())][k]);
    }
}

template <class Real>
void walk(int kind, Input input) {
    switch (kind) {
        case 0:
            return Walk<Real, Lower>(input).run();
        case 1:
            return Walk<Real, Upper>(input).run();
        case 2:
            return Walk<Real, Diagonal>(input).run();
        case 3:
            return Walk<Real, Symmetric>(input).run();
        case 4:
            return Walk<Real, Band>(input).run();
        case 5:
            return Walk<Real, BandSymmetric>(input).run();
        default:
            return walk_toeplitz<Real>(input);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const int kind = input.below(14);
    if (kind < 7)
        walk<double>(kind, input);
    else
        walk<float>(kind - 7, input);
    return 0;
}
