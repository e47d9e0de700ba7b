// A clamped beam under load by finite elements: the stiffness matrix is assembled element by
// element in the sparse symmetric type, carried over to a band, and solved by Cholesky.
//
//   E I v'''' = w       v(0) = v'(0) = 0, and at x = L no moment, and the load P
//
// An element of length h has the deflections and slopes of its two ends as unknowns, between which
// v is the cubic:
//
//             |  12   6h  -12   6h  |
//   E I / h^3 |  6h  4h^2 -6h  2h^2 |          w h / 12 (6, h, 6, -h)^T  for the uniform load w
//             | -12  -6h   12  -6h  |
//             |  6h  2h^2 -6h  4h^2 |
//
// These elements are exact at the joints for both loads, so that the answers have to agree with the
// closed forms to the rounding errors of the solution:
//
//   P at the end   v = P x^2 (3 L - x) / (6 E I)                    v' = P x (2 L - x) / (2 E I)
//   uniform w      v = w x^2 (6 L^2 - 4 L x + x^2) / (24 E I)       v' = w x (3 L^2 - 3 L x + x^2)
//   / (6 E I)
//
//   sparse_stiffness beam.txt
#include <nequar_algebra/nequar_algebra.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <string>

namespace {

struct Beam {
    double modulus = 0, moment = 0, length = 0;  // E, I, L
    double end_load = 0, uniform_load = 0;       // P, w
    int elements = 0;
};

// Lines "name value # unit".
bool read(const char* path, Beam& beam) {
    std::ifstream in(path);
    for (std::string name, rest; in >> name; std::getline(in, rest)) {
        if (name[0] == '#') continue;
        double value = 0;
        if (!(in >> value)) return false;
        if (name == "modulus") beam.modulus = value;
        if (name == "moment") beam.moment = value;
        if (name == "length") beam.length = value;
        if (name == "end_load") beam.end_load = value;
        if (name == "uniform_load") beam.uniform_load = value;
        if (name == "elements") beam.elements = static_cast<int>(value);
    }
    return beam.modulus > 0 && beam.moment > 0 && beam.length > 0 && beam.elements > 0 &&
           beam.elements <= 1000;
}

// No operation throws: it answers false, and its object keeps the trace of what went wrong.
bool failed(const CNqClass& object) {
    std::fprintf(stderr, "%s\n", object.gft_Get_Failure_Trace().c_str());
    return false;
}

// The unknowns are v and v' at the joints 1 ... n; the clamped joint 0 has none. Column 0 of
// `loads` is the load at the end, column 1 the uniform one.
bool assemble(const Beam& beam, CNqSmatrix_Symmetric& K, CNqMatrix& loads) {
    const int unknowns = 2 * beam.elements;
    const double h = beam.length / beam.elements;
    const double factor = beam.modulus * beam.moment / (h * h * h);
    const double element[4][4] = {{12, 6 * h, -12, 6 * h},
                                  {6 * h, 4 * h * h, -6 * h, 2 * h * h},
                                  {-12, -6 * h, 12, -6 * h},
                                  {6 * h, 2 * h * h, -6 * h, 4 * h * h}};
    const double uniform[4] = {6, h, 6, -h};
    // Seven elements a pair of columns in the lower half, which alone is stored.
    if (!K.czm(unknowns, 7 * beam.elements)) return failed(K);
    if (!loads.c_Create(unknowns, 2, 0.0)) return failed(loads);
    for (int e = 0; e < beam.elements; ++e)
        for (int a = 0; a < 4; ++a) {
            const int row = 2 * e - 2 + a;
            if (row < 0) continue;
            loads[row][1] += beam.uniform_load * h / 12 * uniform[a];
            for (int b = 0; b <= a; ++b) {
                const int column = 2 * e - 2 + b;
                if (column < 0) continue;
                // ace_Add_Constant_to_an_Element would REPLACE the element: read, add, write.
                double value = 0;
                if (!K.ge(column, row, &value) ||
                    !K.se(column, row, value + factor * element[a][b]))
                    return failed(K);
            }
        }
    loads[unknowns - 2][0] = beam.end_load;
    return true;
}

bool solve(const CNqSmatrix_Symmetric& K, const CNqMatrix& loads, CNqMatrix_Band_Symmetric& band,
           CNqMatrix& solution) {
    CNqMatrix dense, again;
    if (!K.ex(&dense)) return failed(K);
    // What lies outside of the bands is left out without a word, so look whether anything does.
    band.i_Import(&dense, std::min(3, dense.mh() - 1));
    band.e_Export(&again, true);
    if (!(again == dense)) {
        std::fputs("the matrix is wider than its band\n", stderr);
        return false;
    }
    CNqMatrix_Symmetric symmetric;
    band.e_Export(&symmetric);
    const LCNqUtility_for_Linear_Equation solver;
    if (!solver.sll_Solve_based_on_LLD(&symmetric, &loads, &solution)) return failed(solver);
    return true;
}

}  // namespace

int main(int count, char** arguments) {
    Beam beam;
    if (count != 2) {
        std::fputs("sparse_stiffness beam.txt\n", stderr);
        return 2;
    }
    if (!read(arguments[1], beam)) {
        std::fprintf(stderr, "%s: cannot be read as a beam of 1 to 1000 elements\n", arguments[1]);
        return 2;
    }
    CNqSmatrix_Symmetric K;
    CNqMatrix_Band_Symmetric band;
    CNqMatrix loads, solution;
    if (!assemble(beam, K, loads) || !solve(K, loads, band, solution)) return 1;
    std::printf("%d unknowns; elements stored: sparse %d, band %d, dense %d\n", K.mw(), K.nee(),
                band.vs(), K.mw() * K.mh());

    const double EI = beam.modulus * beam.moment, L = beam.length;
    for (int load = 0; load < 2; ++load) {
        std::printf("\n%s\n%10s%16s%16s%16s%16s\n", load == 0 ? "load at the end" : "uniform load",
                    "x, m", "v, mm", "closed form", "slope, mrad", "closed form");
        double worst = 0;
        for (int joint = 1; joint <= beam.elements; ++joint) {
            const double x = L * joint / beam.elements, P = beam.end_load, w = beam.uniform_load;
            const double v[2] = {load == 0
                                     ? P * x * x * (3 * L - x) / (6 * EI)
                                     : w * x * x * (6 * L * L - 4 * L * x + x * x) / (24 * EI),
                                 load == 0 ? P * x * (2 * L - x) / (2 * EI)
                                           : w * x * (3 * L * L - 3 * L * x + x * x) / (6 * EI)};
            const double found[2] = {solution[2 * joint - 2][load], solution[2 * joint - 1][load]};
            for (int i = 0; i < 2; ++i)
                worst = std::fmax(worst, std::fabs(found[i] - v[i]) / std::fabs(v[i]));
            if (4 * joint % beam.elements == 0)
                std::printf("%10.3f%16.7f%16.7f%16.7f%16.7f\n", x, 1e3 * found[0], 1e3 * v[0],
                            1e3 * found[1], 1e3 * v[1]);
        }
        std::printf("largest relative error at a joint: %.1e\n", worst);
    }
    return 0;
}
