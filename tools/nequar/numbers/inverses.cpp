#include "numbers/inverses.h"

#include <array>

#include "errors.h"

namespace program {
namespace {

// By the library's number of the method; lup has none.
constexpr std::array<const char*, 10> kByCode = {"gje", "lud", "qrd", "qld", "rqd",
                                                 "lqd", "svd", "llt", "uut", "evd"};
constexpr int kFirstSymmetricCode = 7;

int code_of(const std::string& method) {
    for (std::size_t code = 0; code < kByCode.size(); ++code)
        if (method == kByCode[code] || method == std::to_string(code))
            return static_cast<int>(code);
    return -1;
}

}  // namespace

std::vector<std::string> inverse_methods() {
    std::vector<std::string> names{"lup"};
    names.insert(names.end(), kByCode.begin(), kByCode.end());
    for (std::size_t code = 0; code < kByCode.size(); ++code) names.push_back(std::to_string(code));
    return names;
}

template <class Real>
void invert_by(const std::string& method, const typename Twin<Real>::Matrix& a,
               typename Twin<Real>::Matrix& inverse) {
    const typename Twin<Real>::Solver solver;
    const int code = code_of(method);
    if (code >= kFirstSymmetricCode && !solver.is_Is_Symmetric(&a))
        throw InputError("--method " + method + " needs a symmetric matrix, this one is not");
    bool done = false;
    if (code == -1) {
        done = solver.ilup_Inverse_matrix_based_on_LUP(&a, &inverse);
    } else if (method == "qld" || method == "3") {
        // Of a dense matrix the codes 3 and 5 mean LU.
        done = solver.iql_Inverse_matrix_based_on_QLD(&a, &inverse);
    } else if (method == "lqd" || method == "5") {
        done = solver.ilq_Inverse_matrix_based_on_LQD(&a, &inverse);
    } else {
        done = solver.im_Inverse_Matrix(code, &a, &inverse);
    }
    if (!done)
        throw Failure("the method " + method + " cannot invert this matrix:\n" +
                      solver.gft_Get_Failure_Trace().c_str());
}

template void invert_by<double>(const std::string&, const CNqMatrix&, CNqMatrix&);
template void invert_by<float>(const std::string&, const CNqMatrixFloat&, CNqMatrixFloat&);

}  // namespace program
