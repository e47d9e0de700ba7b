// What each method code makes of four matrices; what it prints stands in methods.txt.
//
//     general      [[4,4,1],[2,1,1],[2,2,3]]   regular, not symmetric
//     positive     [[4,1,0],[1,3,1],[0,1,2]]   symmetric positive definite
//     indefinite   [[1,2,0],[2,1,0],[0,0,3]]   symmetric, one eigenvalue is -1
//     singular     [[1,2,4],[2,4,8],[1,0,1]]
#include <nequar_algebra/nequar_algebra.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

// "solved", "WRONG" where A x is not b, or the details of the trace, the innermost first.
template <class Any>
std::string outcome(int code, const CNqMatrix& dense, const Any& A) {
    LCNqUtility_for_Linear_Equation solver;
    CNqVector b, x, product;
    b.c_Create(3, 1.0);
    if (solver.sle_Solve_Linear_Equation(code, &A, &b, &x)) {
        solver.cr_Clear_Record();
        LCNqAlgebra_for_Matrix().mmv_Multiply_Matrix_Vector(&dense, &x, &product);
        double residual = 0;
        for (int i = 0; i < 3; ++i) residual += std::fabs(product[i] - b[i]);
        return residual < 1e-12 ? "solved" : "WRONG";
    }
    std::string details;
    const std::string trace = solver.gft_Get_Failure_Trace().c_str();
    for (std::size_t begin = 0; begin < trace.size();) {
        const std::size_t end = std::min(trace.find('\n', begin), trace.size());
        const std::string record = trace.substr(begin, end - begin);
        details += (details.empty() ? "" : ", ") + record.substr(record.rfind(": ") + 2);
        begin = end + 1;
    }
    return details;
}

int main() {
    const double elements[][9] = {{4, 4, 1, 2, 1, 1, 2, 2, 3},
                                  {4, 1, 0, 1, 3, 1, 0, 1, 2},
                                  {1, 2, 0, 2, 1, 0, 0, 0, 3},
                                  {1, 2, 4, 2, 4, 8, 1, 0, 1}};
    const char* const names[] = {"general", "positive", "indefinite", "singular"};
    for (int m = 0; m < 4; ++m) {
        CNqMatrix A, symmetric_part;
        CNqMatrix_Symmetric packed;
        LCNqAlgebra_for_Matrix().em_Export_Matrix(true, 3, 3, elements[m], &A);
        packed.i_Import(&A);
        packed.e_Export(&symmetric_part);
        const bool is_symmetric = A == symmetric_part;
        std::printf("%-11s code  dense A%s\n", names[m],
                    is_symmetric ? "                         packed symmetric A" : "");
        for (int code = 0; code <= 10; ++code) {
            std::printf("%16d  ", code);
            if (is_symmetric)
                std::printf("%-30s  %s\n", outcome(code, A, A).c_str(),
                            outcome(code, A, packed).c_str());
            else
                std::printf("%s\n", outcome(code, A, A).c_str());
        }
    }
}
