// Random operations on the packed types, with any coordinates, sizes and bandwidths.
#include "fuzz/input.h"
#include "structured/packed_model.h"

namespace {

using namespace nequar;
using namespace packed_test;
using nequar::fuzz::Input;

template <class Kind>
class Walk {
    using Real = typename Kind::Real;

public:
    explicit Walk(Input input) : input_(input) {}

    void run() {
        while (!input_.empty()) {
            step();
            model_.check();
        }
    }

private:
    Real number() { return Real(input_.byte() - 100); }

    // A shape that is refused leaves everything; a large legal one would take much memory.
    void create() {
        Shape s{input_.any_int(), input_.any_int(), input_.any_int(), input_.any_int()};
        if (Kind::is_mirrored && input_.coin()) s.width = s.height;
        if (Kind::is_legal(s) && (s.height > 32 || s.width > 32)) return;
        model_.create(s, number());
    }

    void import() {
        Shape s{1 + input_.below(12), 1 + input_.below(12), 0, 0};
        if (Kind::is_mirrored) s.width = s.height;
        s.p = input_.below(s.height);
        s.q = input_.below(s.width);
        Matrix<Real> dense;
        dense.c_Create(s.height, s.width);
        for (int y = 0; y < s.height; ++y)
            for (int x = 0; x < s.width; ++x) dense[y][x] = number();
        model_.import(s, dense);
    }

    void resize() {
        if (input_.below(4) != 0) return;
        model_.is_resized = true;
        static_cast<Vector<Real>&>(model_.m).c_Create(input_.below(20), Real(5));
    }

    void copy_and_move(int x, int y) {
        auto& m = model_.m;
        auto copy = m;
        NEQUAR_REQUIRE(model_.is_resized || copy == m);
        m = typename Kind::Packed(std::move(copy));
        NEQUAR_REQUIRE(copy.mh() == 0);
        copy.se_Set_Element(x, y, Real(1));
        copy.ge_Get_Element(x, y);
    }

    void step() {
        const int x = input_.any_int(), y = input_.any_int();
        const int choice = input_.below(12);
        const bool has_lines = !Kind::is_diagonal;
        if (choice == 0) return create();
        if (choice == 1) return import();
        if (choice == 2) {
            const Real v = number();
            return model_.band(x, y, v, !input_.coin());
        }
        if (choice == 3 || choice == 4) {
            const Real v = has_lines && !model_.is_resized ? number() : Real(0);
            return model_.line(x, y % 2 == 0, v, choice == 4);
        }
        if (choice == 5) return model_.find(x, y, has_lines ? input_.any_int() : 0);
        if (choice == 6) return copy_and_move(x, y);
        if (choice == 7) return resize();
        if (choice == 8) return model_.get_element(x, y);
        model_.set_element(x, y, number());
    }

    Input input_;
    PackedModel<Kind> model_;
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

template <class Kind>
void walk(Input input) {
    Walk<Kind>(input).run();
}

template <class Real>
constexpr void (*kWalks[])(Input) = {walk<Kind<Real, Form::lower>>,
                                     walk<Kind<Real, Form::upper>>,
                                     walk<Kind<Real, Form::diagonal>>,
                                     walk<Kind<Real, Form::symmetric>>,
                                     walk<Kind<Real, Form::band>>,
                                     walk<Kind<Real, Form::band_symmetric>>,
                                     walk_toeplitz<Real>};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const int kind = input.below(14);
    kind < 7 ? kWalks<double>[kind](input) : kWalks<float>[kind - 7](input);
    return 0;
}
