// Random operations on the sparse types: legal ones, after each of which the storage has to be in
// order and equal to its mirror; and any ones, with any arguments and values, after which it has to
// be in order (unless z_cne has put it out of step: then nothing may be touched outside of it).
#include "fuzz/input.h"
#include "sparse/matrix_steps.h"
#include "sparse/symmetric_steps.h"

namespace {

using namespace sparse_test;
using nequar::fuzz::Input;

template <class Real>
void walk_with_mirror(const std::uint8_t* data, std::size_t size) {
    Matrices<Real> m;
    m.dice = Dice(data, size);
    m.renew();
    m.renew(m.b, m.mb);
    while (!m.dice.is_used_up() && m.ma.largest_magnitude() < 1000) {
        NEQUAR_REQUIRE(m.step());
        // A look at the start pointers brings them up to date: sometimes only a copy is looked at.
        const nequar::SparseMatrix<Real> copy = m.a;
        NEQUAR_REQUIRE(fault_of(copy, m.ma) == "");
        if (m.dice(0, 3) == 0) NEQUAR_REQUIRE(fault_of(m.a, m.ma) == "");
        NEQUAR_REQUIRE(fault_of(m.b, m.mb) == "");
    }
}

template <class Real>
void walk_with_symmetric_mirror(const std::uint8_t* data, std::size_t size) {
    Symmetrics<Real> m;
    m.dice = Dice(data, size);
    m.renew();
    m.mb = m.ma;
    m.b = m.a;
    while (!m.dice.is_used_up() && m.ma.largest_magnitude() < 200) {
        NEQUAR_REQUIRE(m.step());
        const nequar::SparseSymmetricMatrix<Real> copy = m.a;
        NEQUAR_REQUIRE(fault_of(copy, m.ma) == "");
        if (m.dice(0, 3) == 0) NEQUAR_REQUIRE(fault_of(m.a, m.ma) == "");
    }
}

template <class Real>
bool is_in_order(const nequar::CompressedColumns<Real>& s, bool is_lower) {
    const nequar::Vector<int>* start_vector = nullptr;
    const int *rows = nullptr, *start = nullptr;
    int width = 0, height = 0, count = 0, blank = 0;
    s.z_gii(&start_vector, nullptr, &rows, &start, &width, &height, &count, &blank);
    if (width == 0) return count == 0;  // moved from
    if (start_vector->vs() != width + 1 || start[0] != 0 || start[width] != count || blank < 0)
        return false;
    for (int c = 0; c < width; ++c) {
        if (start[c] > start[c + 1]) return false;
        int last = is_lower ? c - 1 : -1;
        for (int k = start[c]; k < start[c + 1]; ++k) {
            if (rows[k] <= last || rows[k] >= height) return false;
            last = rows[k];
        }
    }
    return true;
}

// Sizes that can be had, or that are refused.
int some_size(Input& input) {
    const int size = input.any_int();
    return size > 40 ? std::numeric_limits<int>::max() : size;
}

template <class Real>
class AnyCalls {
public:
    explicit AnyCalls(Input input) : input_(input) {}

    void run() {
        while (!input_.empty()) {
            call();
            if (loose_) continue;
            NEQUAR_REQUIRE(is_in_order(m_, false) && is_in_order(other_, false));
            NEQUAR_REQUIRE(is_in_order(s_, true));
        }
    }

private:
    void call() {
        const int x = input_.any_int(), y = input_.any_int();
        const int dx = input_.any_int(), dy = input_.any_int();
        const Real v = input_.value<Real>();
        const nequar::SparseMatrix<Real>& b = input_.coin() ? m_ : other_;
        const int choice = input_.below(64);
        switch (choice) {
            case 0:
                m_.czm(some_size(input_), some_size(input_), std::min(x, 1000));
                break;
            case 1:
                s_.czm(some_size(input_), std::min(x, 1000));
                break;
            case 2:
                u_.czv(input_.any_int(), std::min(x, 1000));
                break;
            case 3:
                m_.cim(some_size(input_), std::min(x, 1000));
                s_.cim(some_size(input_), std::min(y, 1000));
                break;
            case 4:
                m_.mbs(std::min(x, 1000));
                s_.mbs(std::min(y, 1000));
                u_.mbs(std::min(dx, 1000));
                break;
            case 5:
                loose_ = true;
                if (input_.coin()) m_.z_cne(std::min(x, 100));
                if (input_.coin()) s_.z_cne(std::min(y, 100));
                if (input_.coin()) u_.z_cne(std::min(dx, 100));
                break;
            case 6:
                std::swap(m_, other_);
                break;
            case 7:
                m_ = nequar::SparseMatrix<Real>(std::move(other_));
                break;
            case 8:
                NEQUAR_REQUIRE(loose_ || m_.gb(x, y, dx, dy, &other_) == m_.ivrb(x, y, dx, dy));
                break;
            case 9:
                m_.sb(x, y, &b);
                break;
            case 10:
                b.gc(x, y, dy, &u_);
                break;
            case 11:
                b.gr(x, y, dx, &u_);
                break;
            case 12:
                m_.sc(x, y, &u_);
                break;
            case 13:
                m_.sr(x, y, &u_);
                break;
            case 14:
                m_.mvva(&u_, input_.coin() ? &u_ : &w_);
                break;
            case 15:
                s_.mvva(&u_);
                break;
            case 16:
                b.t(input_.coin() ? &m_ : &other_);
                break;
            case 17:
                m_.ammw(&b, v);
                break;
            case 18:
                m_.mmme(&b);
                break;
            case 19:
                m_ *= v;
                m_ = m_ / v;
                break;
            case 20:
                m_.rze();
                s_.rze();
                u_.rze();
                break;
            case 21:
                s_.im(&b, input_.coin());
                break;
            case 22:
                if (s_.mh() <= 64) s_.ex(&m_, nullptr);
                break;
            case 23:
                s_.gb(x, y, dx, dy, &m_);
                s_.gc(x, y, dy, &u_);
                break;
            case 24:
                s_.smm(&s_);
                s_.mmme(&s_);
                break;
            case 25:
                u_.g(x, dx, input_.coin() ? &u_ : &w_);
                break;
            case 26:
                u_.s(x, &w_);
                break;
            case 27:
                u_.avvw(&w_, v);
                break;
            case 28:
                u_.mvve(&w_);
                break;
            case 29:
                std::swap(u_, w_);
                break;
            case 30:
                import_arrays(x);
                break;
            case 31:
                ask(b);
                break;
            default:
                if (choice % 3 == 0) m_.se(x, y, v);
                if (choice % 3 == 1) s_.se(x, y, v);
                if (choice % 3 == 2) u_.se(x, v);
        }
    }

    // What is imported from arrays is in order, or refused.
    void import_arrays(int size) {
        nequar::GrowableVector<Real> values;
        CNqXvectorInt rows;
        CNqVectorInt start;
        const int count = input_.below(8), width = input_.below(5);
        for (int k = 0; k < count; ++k) {
            values.ae_Append_Element(input_.value<Real>());
            rows.ae_Append_Element(input_.any_int());
        }
        start.c_Create(width);
        for (int c = 0; c < width; ++c) start[c] = input_.any_int();
        m_.im(size, &values, &rows, &start);
        s_.im(size, &values, &rows, &start);
        u_.im(size, &values, &rows);
    }

    void ask(const nequar::SparseMatrix<Real>& b) {
        int x = 0, y = 0;
        Real r = 0;
        m_.mse(&b), m_.mst(r), m_.nf(), m_.maxmin(r, &x, &y, &x, &y), m_.itze(), m_.fize(x, y);
        s_.mse(&s_), s_.mst(r), s_.nf(), s_.maxmin(r, &x, &y, &x, &y), s_.itze(), s_.fize(x, y);
        u_.mse(&w_), u_.mst(r), u_.ng(x), u_.ps(&w_), u_.maxmin(r, &x, &y), u_.itze(), u_.fize(x);
        NEQUAR_REQUIRE(m_ == m_);
        nequar::Matrix<Real> dense;
        if (b.mh() <= 64) b.ex(&dense);
    }

    Input input_;
    nequar::SparseMatrix<Real> m_, other_;
    nequar::SparseSymmetricMatrix<Real> s_;
    nequar::SparseVector<Real> u_, w_;
    bool loose_ = false;
};

template <class Real>
void walk(int way, const std::uint8_t* data, std::size_t size) {
    if (way == 0) return walk_with_mirror<Real>(data, size);
    if (way == 1) return walk_with_symmetric_mirror<Real>(data, size);
    AnyCalls<Real>(Input(data, size)).run();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    if (data[0] % 8 < 6)
        walk<double>(data[0] % 8 / 2, data + 1, size - 1);
    else
        walk<float>(data[0] / 8 % 3, data + 1, size - 1);
    return 0;
}
