// Free vibrations of a plane truss of pin-jointed bars:
//
//   K phi = omega^2 M phi        frequency = omega / (2 pi)
//
// A bar of length L, stiffness E A and density rho between two joints, its direction d = (c, s),
// adds to the stiffness and the (consistent) mass of the four displacements of its ends
//
//   E A / L |  d d^T  -d d^T |        rho A L / 6 | 2 I   I |
//           | -d d^T   d d^T |                    |  I  2 I |
//
// Displacements that a support prevents are left out. K and M are symmetric, M is positive
// definite.
//
//   truss_vibration truss.txt...
//
// prints the lowest frequencies of each truss, and draws the lowest mode of the last one in
// first_mode.svg.
#include <nequar_algebra/nequar_algebra.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

namespace {

struct Truss {
    double modulus = 0, area = 0, density = 0;
    struct Joint {
        double at[2];
        int unknown[2];  // its number, or -1 where a support holds the joint
    };
    std::vector<Joint> joints;
    std::vector<std::pair<size_t, size_t>> bars;
    std::vector<std::pair<int, double>> known;  // number of a frequency and its value in Hz
    int unknowns = 0;
};

// "material E A rho", "joint x y", "bar from to", "fix joint x|y|xy", "known number Hz"; joints are
// numbered from 1 in the order in which they come, and # starts a comment.
bool read(const char* path, Truss& truss) {
    std::ifstream in(path);
    for (std::string word; in >> word;) {
        if (word[0] == '#') {
            std::getline(in, word);
        } else if (word == "material") {
            in >> truss.modulus >> truss.area >> truss.density;
        } else if (word == "joint") {
            Truss::Joint joint = {};
            in >> joint.at[0] >> joint.at[1];
            truss.joints.push_back(joint);
        } else if (word == "known") {
            std::pair<int, double> known;
            in >> known.first >> known.second;
            truss.known.push_back(known);
        } else {
            size_t from = 0, to = 0;
            std::string axes;
            if (!(in >> from) || from < 1 || from > truss.joints.size()) return false;
            if (word == "bar" && in >> to && to >= 1 && to <= truss.joints.size()) {
                const double *a = truss.joints[from - 1].at, *b = truss.joints[to - 1].at;
                if (a[0] == b[0] && a[1] == b[1]) return false;
                truss.bars.emplace_back(from - 1, to - 1);
            } else if (word == "fix" && in >> axes) {
                for (char axis : axes) truss.joints[from - 1].unknown[axis == 'y'] = -1;
            } else {
                return false;
            }
        }
    }
    for (Truss::Joint& joint : truss.joints)
        for (int& unknown : joint.unknown)
            if (unknown == 0) unknown = truss.unknowns++;
    return truss.unknowns > 0 && truss.modulus > 0 && truss.area > 0 && truss.density > 0;
}

// No operation throws: it answers false, and its object keeps the trace of what went wrong.
bool failed(const CNqClass& object) {
    std::fprintf(stderr, "%s\n", object.gft_Get_Failure_Trace().c_str());
    return false;
}

bool assemble(const Truss& truss, CNqMatrix_Symmetric& K, CNqMatrix_Symmetric& M) {
    for (CNqMatrix_Symmetric* matrix : {&K, &M}) {
        matrix->c_Create(truss.unknowns, truss.unknowns, 0.0);
        if (matrix->mh() != truss.unknowns)
            return failed(*matrix);  // c_Create answers nothing here
    }
    const auto add = [](CNqMatrix_Symmetric& to, int i, int j, double value) {
        to.se_Set_Element(i, j, to.ge_Get_Element(i, j) + value);
    };
    for (const auto& bar : truss.bars) {
        const Truss::Joint* ends[2] = {&truss.joints[bar.first], &truss.joints[bar.second]};
        const double dx = ends[1]->at[0] - ends[0]->at[0], dy = ends[1]->at[1] - ends[0]->at[1];
        const double length = std::hypot(dx, dy), direction[2] = {dx / length, dy / length};
        const double stiffness = truss.modulus * truss.area / length;
        const double mass = truss.density * truss.area * length / 6;
        for (int a = 0; a < 4; ++a)  // a, b: two displacements of the bar, end 0 x y, end 1 x y
            for (int b = 0; b <= a; ++b) {
                const int i = ends[a / 2]->unknown[a % 2], j = ends[b / 2]->unknown[b % 2];
                if (i < 0 || j < 0) continue;
                const double sign = a / 2 == b / 2 ? 1 : -1;
                add(K, i, j, sign * stiffness * direction[a % 2] * direction[b % 2]);
                if (a % 2 == b % 2) add(M, i, j, mass * (a == b ? 2 : 1));
            }
    }
    return true;
}

// The truss at rest in grey, and displaced by the mode in red.
bool draw(const char* path, const Truss& truss, const CNqMatrix& modes, int mode) {
    double low[2] = {1e300, 1e300}, high[2] = {-1e300, -1e300};
    for (const Truss::Joint& joint : truss.joints)
        for (int axis = 0; axis < 2; ++axis) {
            low[axis] = std::min(low[axis], joint.at[axis]);
            high[axis] = std::max(high[axis], joint.at[axis]);
        }
    const double size = std::max(high[0] - low[0], high[1] - low[1]), scale = 600 / size;
    // Of the displacements, with its sign: a mode may as well point the other way.
    double largest = 0;
    for (int i = 0; i < truss.unknowns; ++i)
        if (std::fabs(modes[i][mode]) > std::fabs(largest)) largest = modes[i][mode];
    std::ofstream out(path);
    out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"700\" height=\""
        << std::lround((high[1] - low[1]) * scale) + 160 << "\" stroke-linecap=\"round\">\n";
    for (const double shift : {0.0, -0.06 * size / largest}) {
        out << "<g stroke=\"" << (shift == 0 ? "#bbb" : "#b22") << "\" stroke-width=\"3\">\n";
        for (const auto& bar : truss.bars) {
            const auto place = [&](size_t end, int axis) {
                const Truss::Joint& joint = truss.joints[end];
                const int unknown = joint.unknown[axis];
                const double at = joint.at[axis] + (unknown < 0 ? 0 : shift * modes[unknown][mode]);
                return std::lround(axis == 0 ? 50 + scale * (at - low[0])
                                             : 80 + scale * (high[1] - at));
            };
            out << "<polyline points=\"" << place(bar.first, 0) << ',' << place(bar.first, 1) << ' '
                << place(bar.second, 0) << ',' << place(bar.second, 1) << "\"/>\n";
        }
        out << "</g>\n";
    }
    out << "</svg>\n";
    out.close();
    return out.good();
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::fputs("truss_vibration truss.txt...   (material, joints and bars, as in rod.txt)\n",
                   stderr);
        return 2;
    }
    for (int k = 1; k < count; ++k) {
        Truss truss;
        if (!read(arguments[k], truss)) {
            std::fprintf(
                stderr, "%s: cannot be read as a truss: material, joints, bars and what is fixed\n",
                arguments[k]);
            return 2;
        }
        CNqMatrix_Symmetric K, M;
        if (!assemble(truss, K, M)) return 1;
        const LCNqUtility_for_Linear_Equation solver;
        CNqMatrix modes;
        CNqMatrix_Diagonal squares;  // omega^2, the largest first
        if (!solver.dgea_Do_Generalized_Eigen_Analysis(&K, &M, &modes, &squares)) {
            failed(solver);
            return 1;
        }
        const std::string path = arguments[k];
        std::printf("%s%s: %zu joints, %zu bars, %d unknowns\n%6s%14s%14s\n", k > 1 ? "\n" : "",
                    path.substr(path.find_last_of('/') + 1).c_str(), truss.joints.size(),
                    truss.bars.size(), truss.unknowns, "mode", "Hz", "known, Hz");
        for (int mode = 1; mode <= std::min(6, truss.unknowns); ++mode) {
            // A truss that can move without straining has the frequency 0, or what rounding makes
            // of it.
            const double square = std::fmax(0, squares[truss.unknowns - mode]);
            std::printf("%6d%14.5f", mode, std::sqrt(square) / (2 * std::numbers::pi));
            for (const auto& [number, frequency] : truss.known)
                if (number == mode) std::printf("%14.5f", frequency);
            std::printf("\n");
        }
        if (k == count - 1 && !draw("first_mode.svg", truss, modes, truss.unknowns - 1)) {
            std::fputs("cannot write first_mode.svg\n", stderr);
            return 2;
        }
    }
    return 0;
}
