// [[4, 2], [2, 3]] x = (8, 7)  =>  x = (1.25, 1.5), in both precisions; and a failure that is told.
#include <nequar_algebra/nequar_algebra.h>

#include <cmath>
#include <cstdio>

template <class Matrix, class Vector, class Solver>
bool solves() {
    Matrix a;
    a.c_Create(2, 2, 2);
    a[0][0] = 4;
    a[1][1] = 3;
    Vector b, x;
    b.c_Create(2, 7);
    b[0] = 8;
    Solver solver;
    if (!solver.slu_Solve_based_on_LUD(&a, &b, &x)) return false;
    if (!(std::fabs(x[0] - 1.25) < 1e-6 && std::fabs(x[1] - 1.5) < 1e-6)) return false;
    a[1][1] = 1;  // singular now
    return !solver.slu_Solve_based_on_LUD(&a, &b, &x) && solver.gft_Get_Failure_Trace().size() > 0;
}

int main() {
    const bool good =
        solves<CNqMatrix, CNqVector, LCNqUtility_for_Linear_Equation>() &&
        solves<CNqMatrixFloat, CNqVectorFloat, LCNqUtility_for_Linear_Equation_Float>();
    std::puts(good ? "solved" : "NOT solved");
    return good ? 0 : 1;
}
