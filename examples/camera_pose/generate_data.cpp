// generate_data NOISE > points.txt
//
// Points seen by a known camera, with NOISE pixels (standard deviation) of Gaussian noise added to
// the image coordinates:
//
//   camera   fx skew fy cx cy   angle_x angle_y angle_z (degrees)   centre X Y Z
//   point    X Y Z   u v        one line each
//
// Written with 15 digits, which a double holds: "exact" means exact to rounding.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numbers>
#include <random>

#include "support/random_numbers.h"

namespace {

constexpr double kDegree = std::numbers::pi / 180;
constexpr double kCalibration[3][3] = {{1200, 2, 640}, {0, 1180, 480}, {0, 0, 1}};
constexpr double kAngles[3] = {-112, 25, 8};        // about x, then y, then z
constexpr double kTranslation[3] = {0.3, -0.2, 9};  // the world's origin, seen from the camera
constexpr int kPoints = 40;

void multiply(const double (&a)[3][3], const double (&b)[3][3], double (&out)[3][3]) {
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            out[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
}

}  // namespace

int main(int count, char** arguments) {
    const double noise = count > 1 ? std::atof(arguments[1]) : 0;
    const double cx = std::cos(kAngles[0] * kDegree), sx = std::sin(kAngles[0] * kDegree);
    const double cy = std::cos(kAngles[1] * kDegree), sy = std::sin(kAngles[1] * kDegree);
    const double cz = std::cos(kAngles[2] * kDegree), sz = std::sin(kAngles[2] * kDegree);
    const double about_x[3][3] = {{1, 0, 0}, {0, cx, -sx}, {0, sx, cx}};
    const double about_y[3][3] = {{cy, 0, sy}, {0, 1, 0}, {-sy, 0, cy}};
    const double about_z[3][3] = {{cz, -sz, 0}, {sz, cz, 0}, {0, 0, 1}};
    double zy[3][3], rotation[3][3];
    multiply(about_z, about_y, zy);
    multiply(zy, about_x, rotation);

    std::printf("camera %g %g %g %g %g  %g %g %g ", kCalibration[0][0], kCalibration[0][1],
                kCalibration[1][1], kCalibration[0][2], kCalibration[1][2], kAngles[0], kAngles[1],
                kAngles[2]);
    for (int j = 0; j < 3; ++j) {
        double centre = 0;
        for (int i = 0; i < 3; ++i) centre -= rotation[i][j] * kTranslation[i];
        std::printf(" %.15g", centre);
    }
    std::mt19937 bits(20261122);
    for (int k = 0; k < kPoints; ++k) {
        double world[3], seen[3];
        for (double& coordinate : world) coordinate = 4 * uniform(bits) - 2;
        for (int i = 0; i < 3; ++i) {
            seen[i] = kTranslation[i];
            for (int j = 0; j < 3; ++j) seen[i] += rotation[i][j] * world[j];
        }
        const double x = seen[0] / seen[2], y = seen[1] / seen[2];
        const double u = kCalibration[0][0] * x + kCalibration[0][1] * y + kCalibration[0][2];
        const double v = kCalibration[1][1] * y + kCalibration[1][2];
        const double du = noise * gaussian(bits), dv = noise * gaussian(bits);
        std::printf("\npoint %.15g %.15g %.15g  %.15g %.15g", world[0], world[1], world[2], u + du,
                    v + dv);
    }
    std::printf("\n");
    return 0;
}
