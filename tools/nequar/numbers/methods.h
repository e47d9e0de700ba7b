// The ways in which `nequar solve` can solve A x = b, in one table: a name for the user, what it
// computes, and the library's operation behind it.
#pragma once

#include <span>
#include <string>

#include "errors.h"
#include "numbers/twin.h"

namespace program {

struct Method;

template <class Real>
struct Solution {
    typename Twin<Real>::Matrix x;
    const Method* method = nullptr;
    std::string reason;          // why "auto" took the method; empty when the user named it
    double growth = -1;          // of the elements during the factorization; -1: not known
    const char* growth_is = "";  // what was divided by what
    double factor_seconds = -1;  // -1: the method has no separate factorization
    double solve_seconds = 0;
};

// Solves A x = b into solution.x; throws MethodFailed.
template <class Real>
using SolveFunction = void (*)(const typename Twin<Real>::Matrix& a,
                               const typename Twin<Real>::Matrix& b, Solution<Real>& solution);

struct Method {
    const char* name;
    const char* equation;
    const char* summary;
    bool needs_symmetry;
    SolveFunction<double> in_double;
    SolveFunction<float> in_float;
};

// The library could not solve the system in this way; the text holds its trace.
class MethodFailed : public Failure {
public:
    using Failure::Failure;
};

// The table, in the order in which help shows it; "auto" is not in it.
std::span<const Method> method_table();
// By its name or by the library's number of it.
const Method* find_method(const std::string& name);

// Solves by the named method, or by "auto": Cholesky for a symmetric positive definite matrix, LU
// with partial pivoting otherwise. Throws MethodFailed.
template <class Real>
Solution<Real> solve_by(const std::string& name, const typename Twin<Real>::Matrix& a,
                        const typename Twin<Real>::Matrix& b);

extern template Solution<double> solve_by<double>(const std::string&, const CNqMatrix&,
                                                  const CNqMatrix&);
extern template Solution<float> solve_by<float>(const std::string&, const CNqMatrixFloat&,
                                                const CNqMatrixFloat&);

// An estimate of ||A|| ||A^-1|| in the 1-norm; infinite for a matrix that is singular to working
// precision. It takes an LU factorization of its own.
template <class Real>
double estimate_condition(const typename Twin<Real>::Matrix& a);

extern template double estimate_condition<double>(const CNqMatrix&);
extern template double estimate_condition<float>(const CNqMatrixFloat&);

}  // namespace program
