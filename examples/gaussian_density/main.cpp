// The density from which points were drawn, estimated in three ways and compared with the true one:
//
//   Gaussian    sum of w_c exp(-(x - m_c)^T C_c^-1 (x - m_c) / 2) / (2 pi det(C_c)^1/2)
//               with weight, mean and covariance of each cloud taken from its points
//   nearest     k / (n V), V the area of the disc around x that reaches the k-th nearest point
//   window      the number of points in the disc of radius h around x / (n V)  (Parzen)
//
// The first knows the shape of the density, the others take no part of it for granted.
//
//   gaussian_density clouds.txt     prints the estimates along the line through both centres, and
//                                   draws them in profile.svg
#include <nequar_algebra/nequar_algebra.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int kNearest = 40;
constexpr double kRadius = 0.4;
constexpr int kSteps = 120;  // of the profile

// No operation throws: it answers false, and its object keeps the trace of what went wrong.
bool failed(const CNqClass& object) {
    std::fprintf(stderr, "%s\n", object.gft_Get_Failure_Trace().c_str());
    return false;
}

struct Cloud {
    double weight = 0;
    CNqVector mean;
    CNqMatrix covariance;
};

// The clouds that the points were drawn from, and the points: all of them as rows, and for each
// cloud a mask that chooses its own.
bool read(const char* path, std::vector<Cloud>& clouds, CNqMatrix& points,
          std::vector<CNqVectorBool>& masks) {
    std::ifstream in(path);
    std::vector<double> x, y;
    std::vector<size_t> of;
    for (std::string word; in >> word;) {
        if (word == "cloud") {
            Cloud c;
            if (!c.mean.c_Create(2) || !c.covariance.c_Create(2, 2)) return false;
            in >> c.weight >> c.mean[0] >> c.mean[1];
            in >> c.covariance[0][0] >> c.covariance[0][1] >> c.covariance[1][1];
            c.covariance[1][0] = c.covariance[0][1];
            clouds.push_back(c);
        } else {
            x.push_back(0), y.push_back(0), of.push_back(0);
            if (!(in >> x.back() >> y.back() >> of.back())) return false;
        }
    }
    const int n = static_cast<int>(x.size());
    if (clouds.empty() || n < kNearest || !points.c_Create(n, 2)) return false;
    masks.resize(clouds.size());
    for (CNqVectorBool& mask : masks)
        if (!mask.c_Create(n, false)) return false;
    for (int i = 0; i < n; ++i) {
        const size_t at = static_cast<size_t>(i), cloud = of[at] - 1;
        if (cloud >= clouds.size()) return false;
        points[i][0] = x[at], points[i][1] = y[at], masks[cloud][i] = true;
    }
    return true;
}

// density += w times the Gaussian density at every row of `at`.
bool add_gaussian(CNqRandom_Number_Generator_Advanced& statistics, const Cloud& c,
                  const CNqMatrix& at, CNqVector& density) {
    const LCNqUtility_for_Linear_Equation solver;
    CNqMatrix_Symmetric covariance, inverse;
    CNqMatrix dense;
    covariance.i_Import(&c.covariance);
    if (!solver.ill_Inverse_matrix_based_on_LLD(&covariance, &dense)) return failed(solver);
    inverse.i_Import(&dense);
    CNqVector one;
    // The form for many points, of which each is a row: it takes the INVERSE of the covariance.
    if (!statistics.cpgm(at, false, c.mean, inverse, one)) return failed(statistics);
    for (int i = 0; i < one.vs(); ++i) density[i] += c.weight * one[i];
    return true;
}

bool draw(const char* path, const std::vector<const CNqVector*>& curves) {
    const char* colours[] = {"#888", "#b22", "#27b", "#393"};
    const char* names[] = {"true", "Gaussian", "nearest", "window"};
    std::ofstream out(path);
    out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"640\" height=\"320\" fill=\"none\">\n"
        << "<rect width=\"640\" height=\"320\" fill=\"#fff\"/>\n";
    for (size_t c = 0; c < curves.size(); ++c) {
        out << "<text x=\"520\" y=\"" << 40 + 20 * c << "\" fill=\"" << colours[c] << "\">"
            << names[c] << "</text>\n<polyline stroke=\"" << colours[c]
            << "\" stroke-width=\"2\" points=\"";
        for (int i = 0; i <= kSteps; ++i)
            out << 20 + 5 * i << ',' << std::lround(300 - 1800 * (*curves[c])[i]) << ' ';
        out << "\"/>\n";
    }
    out << "</svg>\n";
    out.close();
    return out.good();
}

}  // namespace

int main(int count, char** arguments) {
    std::vector<Cloud> clouds;
    std::vector<CNqVectorBool> masks;
    CNqMatrix points, at;
    if (count != 2) {
        std::fputs("gaussian_density clouds.txt\n", stderr);
        return 2;
    }
    if (!read(arguments[1], clouds, points, masks)) {
        std::fprintf(stderr, "%s: cannot be read as clouds of points\n", arguments[1]);
        return 2;
    }
    // The line through the first and the last centre, and half as much on either side.
    const CNqVector &from = clouds.front().mean, &to = clouds.back().mean;
    CNqVector known, fitted, nearest, window;
    if (!at.c_Create(kSteps + 1, 2) || !known.c_Create(kSteps + 1, 0.0) ||
        !fitted.c_Create(kSteps + 1, 0.0)) {
        failed(at);
        return 1;
    }
    for (int i = 0; i <= kSteps; ++i)
        for (int j = 0; j < 2; ++j)
            at[i][j] = from[j] + (to[j] - from[j]) * (2.0 * i / kSteps - 0.5);

    CNqRandom_Number_Generator_Advanced statistics;
    const int n = points.mh();
    for (size_t c = 0; c < clouds.size(); ++c) {
        Cloud found;
        int number = 0;
        if (!statistics.csv(points, false, &masks[c], 0, n, &number, &found.mean,
                            &found.covariance)) {
            failed(statistics);
            return 1;
        }
        found.weight = static_cast<double>(number) / n;
        std::printf("cloud %zu%34s%10s\n", c + 1, "true", "found");
        std::printf("  weight%33.4f%10.4f\n", clouds[c].weight, found.weight);
        for (int j = 0; j < 2; ++j)
            std::printf("  mean %c%33.4f%10.4f\n", "xy"[j], clouds[c].mean[j], found.mean[j]);
        for (int j = 0; j < 3; ++j)
            std::printf("  covariance %c%c%26.4f%10.4f\n", "xxy"[j], "xyy"[j],
                        clouds[c].covariance[j / 2][(j + 1) / 2],
                        found.covariance[j / 2][(j + 1) / 2]);
        if (!add_gaussian(statistics, clouds[c], at, known) ||
            !add_gaussian(statistics, found, at, fitted))
            return 1;
    }
    if (!statistics.epknne(at, points, false, kNearest, nearest) ||
        !statistics.eppwh(at, points, false, kRadius, window)) {
        failed(statistics);
        return 1;
    }

    std::printf("\n%10s%10s%10s%10s%10s%10s\n", "x", "y", "true", "Gaussian", "nearest", "window");
    double error[3] = {};
    for (int i = 0; i <= kSteps; ++i) {
        const double estimates[3] = {fitted[i], nearest[i], window[i]};
        for (int e = 0; e < 3; ++e) error[e] += std::fabs(estimates[e] - known[i]) / (kSteps + 1);
        if (i % 10 == 0)
            std::printf("%10.4f%10.4f%10.5f%10.5f%10.5f%10.5f\n", at[i][0], at[i][1], known[i],
                        fitted[i], nearest[i], window[i]);
    }
    std::printf("mean error%30.5f%10.5f%10.5f\n", error[0], error[1], error[2]);
    if (!draw("profile.svg", {&known, &fitted, &nearest, &window})) {
        std::fputs("cannot write profile.svg\n", stderr);
        return 2;
    }
    return 0;
}
