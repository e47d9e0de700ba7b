// How failures are found and read; what it prints stands in failures.txt.
#include <nequar_algebra/nequar_algebra.h>

#include <cstdio>

int main() {
    const double elements[] = {4, 4, 1, 2, 1, 1, 2, 2, 3};  // regular: its determinant is -10
    LCNqAlgebra_for_Matrix algebra;
    CNqMatrix A;
    CNqVector b, x;
    algebra.em_Export_Matrix(true, 3, 3, elements, &A);
    b.c_Create(3, 1.0);

    // An operation that answers bool: look at the answer.
    LCNqUtility_for_Linear_Equation solver;
    if (!solver.sle_Solve_Linear_Equation(1, &A, &b, &x)) {
        std::printf("message: %s\n", solver.grm_Get_Recorded_Message().c_str());
        std::printf("detail:  %s\n", solver.ged_Get_Error_Detail().c_str());
        std::printf("trace:\n%s\n", solver.gft_Get_Failure_Trace().c_str());
        std::printf("x has %d elements\n\n", x.vs());
    }

    // An operation that answers nothing: forget what was recorded, then see whether something was.
    CNqMatrix wide, sum;
    wide.c_Create(3, 4, 1.0);
    algebra.cr_Clear_Record();
    algebra.amm_Add_Matrix_Matrix(&A, &wide, &sum);
    if (algebra.grm_Get_Recorded_Message().size() > 0)
        std::printf("message: %s\n\n", algebra.grm_Get_Recorded_Message().c_str());

    // An operation that answers a number: zero is a determinant too, the record tells them apart.
    solver.cr_Clear_Record();
    const double determinant = solver.d_Determinant(&A);
    if (solver.grm_Get_Recorded_Message().size() > 0)
        std::printf("no determinant, %g:\n%s\n\n", determinant,
                    solver.gft_Get_Failure_Trace().c_str());

    // An operation that would end the process: test the sizes first.
    CNqVector c;
    c.c_Create(4, 1.0);
    if (b.vs() != c.vs()) std::printf("sizes %d and %d: no scalar product\n\n", b.vs(), c.vs());

    // Without any object at hand: the last message of the process. And the method to use.
    std::printf("last:    %s\n", Nq_Last_Message().c_str());
    if (solver.slup_Solve_based_on_LUP(&A, &b, &x)) std::printf("x = %g %g %g\n", x[0], x[1], x[2]);
}
