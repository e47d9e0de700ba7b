// Where a camera stands and how it looks, from points whose places in space and in the picture are
// known:
//
//   s (u, v, 1)^T = P (X, Y, Z, 1)^T     P = M (I | -centre), M = K R, known up to its scale
//
// Each point gives two homogeneous equations for the twelve elements of P; the unit vector that
// leaves least of them is the solution. RQ of the 3 x 3 matrix M then gives the calibration K,
// upper triangular, and the rotation R = Rz Ry Rx with its angles.
//
//   camera_pose points.txt...
#include <nequar_algebra/nequar_algebra.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <numbers>
#include <string>
#include <vector>

namespace {

constexpr const char* kNames[11] = {"fx",       "skew",         "fy",           "cx",
                                    "cy",       "angle x, deg", "angle y, deg", "angle z, deg",
                                    "centre X", "centre Y",     "centre Z"};

struct Point {
    double world[3], image[2];
};

bool read(const char* path, double (&known)[11], std::vector<Point>& points) {
    std::ifstream in(path);
    std::string word;
    in >> word;
    for (double& value : known) in >> value;
    for (Point p; in >> word >> p.world[0] >> p.world[1] >> p.world[2] >> p.image[0] >> p.image[1];)
        points.push_back(p);
    return in.eof() && points.size() >= 6;  // P has eleven unknowns
}

// The mean of the points and the factor that brings their mean distance from it to one. Without
// this, columns of the equations differ by the square of the picture's size, and noise in the
// pixels is weighed wrongly.
struct Scaling {
    double mean[3] = {}, factor = 0;
};

template <class Get>
Scaling scaling_of(const std::vector<Point>& points, int dimension, const Get& get) {
    Scaling s;
    const double n = static_cast<double>(points.size());
    for (const Point& p : points)
        for (int i = 0; i < dimension; ++i) s.mean[i] += get(p)[i] / n;
    double distance = 0;
    for (const Point& p : points) {
        double square = 0;
        for (int i = 0; i < dimension; ++i) square += std::pow(get(p)[i] - s.mean[i], 2);
        distance += std::sqrt(square) / n;
    }
    s.factor = 1 / distance;
    return s;
}

// No operation throws: it answers false, and its object keeps the trace of what went wrong.
bool failed(const CNqClass& object) {
    std::fprintf(stderr, "%s\n", object.gft_Get_Failure_Trace().c_str());
    return false;
}

bool find_projection(const std::vector<Point>& points, CNqMatrix& P) {
    const Scaling world = scaling_of(points, 3, [](const Point& p) { return p.world; });
    const Scaling image = scaling_of(points, 2, [](const Point& p) { return p.image; });

    // (X^T 0 -u X^T) p = 0 and (0 X^T -v X^T) p = 0, where p holds the rows of P.
    CNqMatrix equations;
    if (!equations.c_Create(2 * static_cast<int>(points.size()), 12, 0.0)) return failed(equations);
    for (size_t k = 0; k < points.size(); ++k)
        for (int i = 0; i < 2; ++i) {
            const double seen = (points[k].image[i] - image.mean[i]) * image.factor;
            double* row = equations[2 * static_cast<int>(k) + i];
            for (int j = 0; j < 4; ++j) {
                const double X = j == 3 ? 1 : (points[k].world[j] - world.mean[j]) * world.factor;
                row[4 * i + j] = X;
                row[8 + j] = -seen * X;
            }
        }
    const LCNqUtility_for_Linear_Equation solver;
    CNqVector p;
    int rank = 0;
    if (!solver.shle_Solve_Homogeneous_Linear_Equation(&equations, 1e-2, &p, rank))
        return failed(solver);
    // A singular value below a hundredth of the largest is taken for noise. More than one of them
    // leaves more than one solution: points in a plane, or on a twisted cubic through the camera.
    if (rank < 11) {
        std::fprintf(stderr, "the points do not determine the camera (rank %d)\n", rank);
        return false;
    }

    // Back to pixels and to the world's coordinates: P = T^-1 P' U.
    const LCNqAlgebra_for_Matrix algebra;
    CNqMatrix scaled, T_inverse, U;
    algebra.em_Export_Matrix(true, 3, 4, p.p(), &scaled);
    algebra.ci_Create_Identity_matrix(3, &T_inverse);
    algebra.ci_Create_Identity_matrix(4, &U);
    for (int i = 0; i < 2; ++i) {
        T_inverse[i][i] = 1 / image.factor;
        T_inverse[i][2] = image.mean[i];
    }
    for (int i = 0; i < 3; ++i) {
        U[i][i] = world.factor;
        U[i][3] = -world.factor * world.mean[i];
    }
    algebra.mmm_Multiply_Matrix_Matrix(&T_inverse, &scaled, &U, &P);
    return true;
}

bool find_camera(CNqMatrix P, double (&camera)[11]) {
    const LCNqUtility_for_Linear_Equation solver;
    CNqMatrix M, K, R, Rx, Ry, Rz;
    CNqVector last, centre;
    if (!M.c_Create(3, 3)) return failed(M);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) M[i][j] = P[i][j];
    P.gc_Get_Column(3, 0, 3, &last);
    if (!solver.slup_Solve_based_on_LUP(&M, &last, &centre)) return failed(solver);  // -centre

    // P is known up to its scale and sign: a positive determinant makes R a rotation.
    const LCNqAlgebra_for_Matrix algebra;
    if (solver.d_Determinant(&M) < 0) algebra.mmc_Multiply_Matrix_Constant(&M, -1, &M);
    double angle[3];
    if (!solver.drq3_Decompose_into_RQ_matrices_for_3x3_matrix(&M, &K, &R, &Rx, &Ry, &Rz, angle[0],
                                                               angle[1], angle[2]))
        return failed(solver);
    // The angles are those that turn M into the triangle; the camera turns the other way. Two
    // negative focal lengths mean half a turn about the optical axis: K D D R with D = (-1, -1, 1).
    for (double& a : angle) a = -a;
    if (K[0][0] < 0) {
        K[0][0] = -K[0][0], K[0][1] = -K[0][1], K[1][1] = -K[1][1];
        angle[2] += angle[2] > 0 ? -std::numbers::pi : std::numbers::pi;
    }
    const double scale = K[2][2];
    const double found[8] = {K[0][0], K[0][1], K[1][1], K[0][2], K[1][2]};
    for (int i = 0; i < 5; ++i) camera[i] = found[i] / scale;
    for (int i = 0; i < 3; ++i) camera[5 + i] = angle[i] * 180 / std::numbers::pi;
    for (int i = 0; i < 3; ++i) camera[8 + i] = -centre[i];
    return true;
}

double mean_pixel_error(const std::vector<Point>& points, const CNqMatrix& P) {
    double sum = 0;
    for (const Point& p : points) {
        double seen[3];
        for (int i = 0; i < 3; ++i)
            seen[i] = P[i][0] * p.world[0] + P[i][1] * p.world[1] + P[i][2] * p.world[2] + P[i][3];
        sum += std::pow(seen[0] / seen[2] - p.image[0], 2) +
               std::pow(seen[1] / seen[2] - p.image[1], 2);
    }
    return std::sqrt(sum / static_cast<double>(2 * points.size()));
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::fputs(
            "camera_pose points.txt...   (a camera and its points, as in points_exact.txt)\n",
            stderr);
        return 2;
    }
    for (int k = 1; k < count; ++k) {
        double known[11], found[11];
        std::vector<Point> points;
        CNqMatrix P;
        if (!read(arguments[k], known, points)) {
            std::fprintf(
                stderr,
                "%s: cannot be read as `camera` with eleven numbers, and at least six lines "
                "`point X Y Z u v`\n",
                arguments[k]);
            return 2;
        }
        if (!find_projection(points, P) || !find_camera(P, found)) return 1;

        const std::string path = arguments[k];
        std::printf("%s%s: %zu points\n", k > 1 ? "\n" : "",
                    path.substr(path.find_last_of('/') + 1).c_str(), points.size());
        std::printf("%-14s%12s%12s%12s\n", "", "known", "found", "difference");
        for (int i = 0; i < 11; ++i)
            std::printf("%-14s%12.4f%12.4f%12.1e\n", kNames[i], known[i], found[i],
                        std::fabs(found[i] - known[i]));
        std::printf("root mean square distance in the picture: %.2e pixels\n",
                    mean_pixel_error(points, P));
    }
    return 0;
}
