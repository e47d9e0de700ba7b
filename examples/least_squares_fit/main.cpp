// Least squares with certified answers: data sets of the Statistical Reference Datasets of NIST,
// whose coefficients are known to fifteen digits.
//
//   y = b0 + b1 x1 + ... + e,    sum of e^2 least
//
// With the columns A = (1 x1 x2 ...) one QR decomposition of (A y) holds all that is asked for,
//
//   (A y) = Q | R c |       R b = c,  rho^2 the sum of squares that is left,
//             | 0 rho |     standard deviations from the rows of R^-1,
//
// and Q need not be formed. The normal equations A^T A b = A^T y would lose twice the digits.
//
//   least_squares_fit norris.csv longley.csv
#include <nequar_algebra/nequar_algebra.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct DataSet {
    std::vector<double> estimate, deviation;  // certified, one for each coefficient
    double residual_deviation = 0;
    std::vector<std::vector<double>> rows;  // y x1 x2 ...
};

// Lines "certified,estimate,deviation", "residual,deviation" and "data,y,x1,..."; # is a comment.
bool read(const char* path, DataSet& data) {
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::replace(line.begin(), line.end(), ',', ' ');
        std::istringstream words(line);
        std::string kind;
        std::vector<double> numbers;
        words >> kind;
        for (double value; words >> value;) numbers.push_back(value);
        if (kind == "certified" && numbers.size() == 2) {
            data.estimate.push_back(numbers[0]);
            data.deviation.push_back(numbers[1]);
        } else if (kind == "residual" && numbers.size() == 1) {
            data.residual_deviation = numbers[0];
        } else if (kind == "data" && numbers.size() == data.estimate.size()) {
            data.rows.push_back(numbers);  // one number for y, and one for each coefficient but b0
        } else {
            return false;
        }
    }
    return !data.estimate.empty() && data.rows.size() > data.estimate.size();
}

// No operation throws: it answers false, and its object keeps the trace of what went wrong.
bool failed(const CNqClass& object) {
    std::fprintf(stderr, "%s\n", object.gft_Get_Failure_Trace().c_str());
    return false;
}

// The coefficients, their standard deviations, and that of the residuals.
bool fit(const DataSet& data, CNqVector& b, CNqVector& deviation, double& residual_deviation) {
    const int m = static_cast<int>(data.rows.size());
    const int n = static_cast<int>(data.estimate.size());
    CNqMatrix columns;
    if (!columns.c_Create(m, n + 1)) return failed(columns);
    for (int i = 0; i < m; ++i) {
        const std::vector<double>& row = data.rows[static_cast<size_t>(i)];
        columns[i][0] = 1;
        for (int j = 1; j < n; ++j) columns[i][j] = row[static_cast<size_t>(j)];
        columns[i][n] = row[0];  // y
    }
    const LCNqUtility_for_Linear_Equation solver;
    if (!solver.u_dqrh_Decompose_into_QR_matrices_based_on_Householder(&columns, nullptr))
        return failed(solver);
    residual_deviation = std::fabs(columns[n][n]) / std::sqrt(m - n);

    // The upper triangle of the leading n x n part is R; what lies below it is not looked at.
    CNqMatrix R, R_inverse;
    if (!R.c_Create(n, n)) return failed(R);
    for (int i = 0; i < n; ++i) std::copy_n(columns[i], n, R[i]);
    columns.gc_Get_Column(n, 0, n, &b);  // c, which becomes b
    const LCNqAlgebra_for_Matrix_Special algebra;
    if (!algebra.slet_Solve_Linear_Equation_for_Triangular_matrix(false, &R, &b, &b) ||
        !algebra.imt_Inverse_Matrix_for_Triangular_matrix(false, &R, &R_inverse))
        return failed(algebra);
    if (!deviation.c_Create(n)) return failed(deviation);
    for (int i = 0; i < n; ++i) {
        double square = 0;
        for (int j = i; j < n; ++j) square += R_inverse[i][j] * R_inverse[i][j];
        deviation[i] = residual_deviation * std::sqrt(square);
    }
    return true;
}

// How many digits of a value are right: -log10 of its relative error, 15 at most.
double right_digits(double value, double certified) {
    return std::min(15.0, -std::log10(std::fabs((value - certified) / certified)));
}

void print(const char* name, double certified, double found) {
    std::printf("%-22s%24.14e%16.8e%8.1f\n", name, certified, found,
                right_digits(found, certified));
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::fputs("least_squares_fit data.csv...   (with certified values, as in norris.csv)\n",
                   stderr);
        return 2;
    }
    for (int k = 1; k < count; ++k) {
        DataSet data;
        if (!read(arguments[k], data)) {
            std::fprintf(stderr, "%s: cannot be read as a data set with certified coefficients\n",
                         arguments[k]);
            return 2;
        }
        CNqVector b, deviation;
        double residual_deviation = 0;
        if (!fit(data, b, deviation, residual_deviation)) return 1;

        const std::string path = arguments[k];
        std::printf("%s%s: %zu observations, %d coefficients\n", k > 1 ? "\n" : "",
                    path.substr(path.find_last_of('/') + 1).c_str(), data.rows.size(), b.vs());
        std::printf("%-22s%24s%16s%8s\n", "", "certified", "found", "digits");
        for (int i = 0; i < b.vs(); ++i) {
            const size_t at = static_cast<size_t>(i);
            print(std::string("b").append(std::to_string(i)).c_str(), data.estimate[at], b[i]);
            print("  standard deviation", data.deviation[at], deviation[i]);
        }
        print("of the residuals", data.residual_deviation, residual_deviation);
    }
    return 0;
}
