// Principal components of a table: the directions along which its rows differ most.
//
//   C = sum of (x - mean)(x - mean)^T / (n - 1),    C v_k = lambda_k v_k,  lambda descending
//
// lambda_k is the variance along v_k, lambda_k / sum of lambda the share that it explains, and
// c_k = (x - mean) . v_k the coordinate of a row. The first two coordinates of every row make the
// picture that shows most of the table.
//
//   principal_components table.csv     prints the components, and draws components.svg
#include <nequar_algebra/nequar_algebra.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Row {
    std::vector<double> values;
    std::string kind;
};

// Rows "1.5,2.5,...,kind"; # starts a comment.
bool read(const char* path, std::vector<Row>& rows) {
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        Row row;
        std::istringstream words(line);
        double value = 0;
        for (char comma = 0; words >> value; words >> comma) row.values.push_back(value);
        words.clear();
        words >> row.kind;
        if (row.values.empty() || row.values.size() != (rows.empty() ? row : rows[0]).values.size())
            return false;
        rows.push_back(row);
    }
    return rows.size() > 2;
}

// No operation throws: it answers false, and its object keeps the trace of what went wrong.
int failed(const CNqClass& object) {
    std::fprintf(stderr, "%s\n", object.gft_Get_Failure_Trace().c_str());
    return 1;
}

// A dot for each row, x to the right and y up; every kind of row has its colour.
bool draw(const char* path, const std::vector<Row>& rows, const CNqMatrix& at) {
    const char* colours[] = {"#b22", "#27b", "#393", "#a6a", "#888"};
    std::vector<std::string> kinds;
    std::ofstream out(path);
    out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"640\" height=\"320\">\n"
        << "<rect width=\"640\" height=\"320\" fill=\"#fff\"/>\n";
    for (size_t i = 0; i < rows.size(); ++i) {
        size_t kind = 0;
        while (kind < kinds.size() && kinds[kind] != rows[i].kind) ++kind;
        if (kind == kinds.size()) {
            kinds.push_back(rows[i].kind);
            out << "<text x=\"20\" y=\"" << 240 + 20 * kind << "\" fill=\"" << colours[kind % 5]
                << "\">" << rows[i].kind << "</text>\n";
        }
        const double* c = at[static_cast<int>(i)];
        out << "<circle r=\"4\" fill=\"" << colours[kind % 5] << "\" fill-opacity=\"0.7\" cx=\""
            << std::lround(300 + 75 * c[0]) << "\" cy=\"" << std::lround(150 - 75 * c[1])
            << "\"/>\n";
    }
    out << "</svg>\n";
    out.close();
    return out.good();
}

}  // namespace

int main(int count, char** arguments) {
    std::vector<Row> rows;
    if (count != 2) {
        std::fputs("principal_components table.csv\n", stderr);
        return 2;
    }
    if (!read(arguments[1], rows)) {
        std::fprintf(stderr, "%s: cannot be read as rows of equally many numbers\n", arguments[1]);
        return 2;
    }
    const int n = static_cast<int>(rows.size());
    const int d = static_cast<int>(rows[0].values.size());

    // Components of a variance below 1e-6 of the largest are dropped; 5 % of the variance may be
    // left unexplained.
    CNqPrPca analysis;
    if (!analysis.c_Create(n, d, 1e-6, 0.05)) return failed(analysis);
    CNqVector x;
    if (!x.c_Create(d)) return failed(x);
    for (const Row& row : rows) {
        for (int j = 0; j < d; ++j) x[j] = row.values[static_cast<size_t>(j)];
        if (!analysis.inv_INput_a_Vector(x, nullptr)) return failed(analysis);
    }
    if (!analysis.cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix())
        return failed(analysis);

    CNqVector mean;
    CNqXvector scatter;  // (n - 1) lambda_k
    CNqMatrix components;
    int kept = 0, principal = 0;
    if (!analysis.gi_Get_Information(&mean, &kept, &principal, &scatter, nullptr, &components,
                                     nullptr))
        return failed(analysis);

    std::printf("%d rows of %d numbers, mean", n, d);
    for (int j = 0; j < d; ++j) std::printf("%9.4f", mean[j]);
    double total = 0, explained = 0;
    for (int k = 0; k < kept; ++k) total += scatter[k];
    std::printf("\n%10s%12s%12s%10s   direction\n", "component", "variance", "deviation",
                "share, %");
    std::vector<double> signs;
    for (int k = 0; k < kept; ++k) {
        // An eigenvector may as well point the other way: its largest element is made positive.
        int largest = 0;
        for (int j = 1; j < d; ++j)
            if (std::fabs(components[j][k]) > std::fabs(components[largest][k])) largest = j;
        signs.push_back(components[largest][k] < 0 ? -1 : 1);
        const double variance = scatter[k] / (n - 1);
        std::printf("%10d%12.6f%12.6f%10.4f ", k + 1, variance, std::sqrt(variance),
                    100 * scatter[k] / total);
        for (int j = 0; j < d; ++j) std::printf("%10.6f", signs.back() * components[j][k]);
        std::printf("\n");
    }
    // The library counts the components before the one that crosses the wanted share; to reach it
    // one more is taken.
    const int needed = std::min(principal + 1, kept);
    for (int k = 0; k < needed; ++k) explained += scatter[k] / total;
    std::printf("%d of them explain %.2f %% of the variance\n", needed, 100 * explained);

    CNqMatrix at;
    if (!at.c_Create(n, 2, 0.0)) return failed(at);
    for (int i = 0; i < n; ++i) {
        CNqVector coordinates;
        for (int j = 0; j < d; ++j)
            x[j] = rows[static_cast<size_t>(i)].values[static_cast<size_t>(j)];
        int wanted = std::min(2, kept);
        if (!analysis.dar_Do_Analysis_and_Reconstruction(x, wanted, &coordinates, nullptr, nullptr,
                                                         nullptr, nullptr, nullptr))
            return failed(analysis);
        for (int k = 0; k < wanted; ++k) at[i][k] = signs[static_cast<size_t>(k)] * coordinates[k];
    }
    if (!draw("components.svg", rows, at)) {
        std::fputs("cannot write components.svg\n", stderr);
        return 2;
    }
    return 0;
}
