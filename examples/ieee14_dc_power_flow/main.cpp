// DC power flow of the IEEE 14-bus test system:
//
//   B theta = P      B_ij = -sum of 1 / (x t) over the branches between i and j,   B_ii = -sum B_ij
//
// x reactance and t transformer tap of a branch, P the power injected at a bus (generation - load),
// theta the voltage angle. Bus 1 is the reference (theta = 0), so 13 unknowns remain; B is
// symmetric and positive definite, and Cholesky solves it. A branch then carries (theta_i -
// theta_j) / (x t).
//
//   ieee14_dc_power_flow              prints angles and flows beside the known ones
//   ieee14_dc_power_flow --write DIR  writes the system as DIR/A.mtx and DIR/b.mtx
#include <nequar_algebra/nequar_algebra.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <numbers>
#include <string>

namespace {

constexpr int kBuses = 14;
constexpr int kUnknowns = kBuses - 1;  // without the reference, bus 1
constexpr double kBaseMegawatts = 100;

struct Branch {
    int from, to;
    double reactance, tap;
};

constexpr Branch kBranches[] = {
    {1, 2, 0.05917, 1},     {1, 5, 0.22304, 1},     {2, 3, 0.19797, 1},   {2, 4, 0.17632, 1},
    {2, 5, 0.17388, 1},     {3, 4, 0.17103, 1},     {4, 5, 0.04211, 1},   {4, 7, 0.20912, 0.978},
    {4, 9, 0.55618, 0.969}, {5, 6, 0.25202, 0.932}, {6, 11, 0.1989, 1},   {6, 12, 0.25581, 1},
    {6, 13, 0.13027, 1},    {7, 8, 0.17615, 1},     {7, 9, 0.11001, 1},   {9, 10, 0.0845, 1},
    {9, 14, 0.27038, 1},    {10, 11, 0.19207, 1},   {12, 13, 0.19988, 1}, {13, 14, 0.34802, 1},
};

struct Bus {
    double generation, load;  // MW; the reference generates what the others leave
    double known_degrees;     // of this DC flow, from exact rational arithmetic
    double ac_degrees;        // of the full AC flow in the archive's solved case
};

constexpr Bus kBusData[kBuses] = {
    {0, 0, 0, 0},
    {40, 21.7, -5.0120, -4.98},
    {0, 94.2, -12.9537, -12.72},
    {0, 47.8, -10.5837, -10.33},
    {0, 7.6, -9.0939, -8.78},
    {0, 11.2, -14.8521, -14.22},
    {0, 0, -13.9071, -13.37},
    {0, 0, -13.9071, -13.36},
    {0, 29.5, -15.6947, -14.94},
    {0, 9.0, -15.9741, -15.10},
    {0, 3.5, -15.6189, -14.79},
    {0, 6.1, -15.9671, -15.07},
    {0, 13.5, -16.1397, -15.16},
    {0, 14.9, -17.1883, -16.04},
};

double susceptance(const Branch& branch) {
    return 1 / (branch.reactance * branch.tap);
}

// Bus k is unknown k - 2; the reference has none.
void assemble(CNqMatrix_Symmetric& b, CNqVector& p) {
    b.c_Create(kUnknowns, kUnknowns, 0.0);
    p.c_Create(kUnknowns);
    const auto add = [&b](int i, int j, double value) {
        b.se_Set_Element(i, j, b.ge_Get_Element(i, j) + value);
    };
    for (const Branch& branch : kBranches) {
        const int i = branch.from - 2, j = branch.to - 2;
        if (i >= 0) add(i, i, susceptance(branch));
        if (j >= 0) add(j, j, susceptance(branch));
        if (i >= 0 && j >= 0) add(i, j, -susceptance(branch));
    }
    for (int k = 0; k < kUnknowns; ++k)
        p[k] = (kBusData[k + 1].generation - kBusData[k + 1].load) / kBaseMegawatts;
}

// The fewest digits that read back to the same bits.
std::string digits_of(double value) {
    char text[32];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

bool write_system(const std::string& directory, CNqMatrix_Symmetric& b, const CNqVector& p) {
    std::string elements;
    int count = 0;
    for (int column = 0; column < kUnknowns; ++column) {
        for (int row = column; row < kUnknowns; ++row) {
            const double value = b.ge_Get_Element(column, row);
            if (value == 0) continue;
            elements += std::to_string(row + 1) + " " + std::to_string(column + 1) + " " +
                        digits_of(value) + "\n";
            ++count;
        }
    }
    std::ofstream matrix(directory + "/A.mtx");
    matrix << "%%MatrixMarket matrix coordinate real symmetric\n"
              "% IEEE 14-bus test system, DC power flow: susceptances of buses 2 to 14 (per unit)\n"
           << kUnknowns << " " << kUnknowns << " " << count << "\n"
           << elements;
    std::ofstream right_side(directory + "/b.mtx");
    right_side
        << "%%MatrixMarket matrix array real general\n"
           "% IEEE 14-bus test system: power injected at buses 2 to 14 (per unit of 100 MW)\n"
        << kUnknowns << " 1\n";
    for (int k = 0; k < kUnknowns; ++k) right_side << digits_of(p[k]) << "\n";
    matrix.close();
    right_side.close();
    return matrix.good() && right_side.good();
}

double in_degrees(double angle) {
    return angle * 180 / std::numbers::pi;
}

void print_flow(const CNqVector& theta) {
    std::printf("angles in degrees\n%6s%12s%12s%14s\n", "bus", "computed", "known", "AC solution");
    for (int k = 0; k < kUnknowns; ++k)
        std::printf("%6d%12.4f%12.4f%14.2f\n", k + 2, in_degrees(theta[k]),
                    kBusData[k + 1].known_degrees, kBusData[k + 1].ac_degrees);

    std::printf("\nflows in MW\n%6s%6s%12s\n", "from", "to", "flow");
    const auto angle = [&theta](int bus) { return bus == 1 ? 0.0 : theta[bus - 2]; };
    for (const Branch& branch : kBranches) {
        const double flow =
            kBaseMegawatts * susceptance(branch) * (angle(branch.from) - angle(branch.to));
        // Bus 8 has neither load nor generation here: what rounding leaves there is no flow.
        std::printf("%6d%6d%12.4f\n", branch.from, branch.to, std::fabs(flow) < 1e-9 ? 0.0 : flow);
    }
}

}  // namespace

int main(int argument_count, char** arguments) {
    CNqMatrix_Symmetric b;
    CNqVector p, theta;
    assemble(b, p);

    if (argument_count == 3 && std::string(arguments[1]) == "--write") {
        if (write_system(arguments[2], b, p)) return 0;
        std::fprintf(stderr, "cannot write A.mtx and b.mtx in %s\n", arguments[2]);
        return 2;
    }
    LCNqUtility_for_Linear_Equation solver;
    if (!solver.sll_Solve_based_on_LLD(&b, &p, &theta)) {
        std::fprintf(stderr, "%s\n", solver.gft_Get_Failure_Trace().c_str());
        return 1;
    }
    print_flow(theta);
    return 0;
}
