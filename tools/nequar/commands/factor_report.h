// What every decomposition command does with its factors: shows them, judges them, writes them.
//
//   -o PREFIX writes factor NAME to PREFIX_NAME.mtx, each file whole or not at all
#pragma once

#include <string>
#include <vector>

#include "files/file_matrix.h"
#include "numbers/twin.h"

namespace CLI {
class App;
}

namespace program {

struct FactorOptions {
    std::string a, prefix;
    bool in_float = false;
};

// Declares A.mtx, --float and -o.
void declare_factor_options(CLI::App& arguments, FactorOptions& options);

template <class Real>
struct Factor {
    const char* name;
    typename Twin<Real>::Matrix matrix;
    bool orthogonal = false;
};

// Throws InputError when the factors cannot be written there: to be called before the work is done.
void require_place_for(const FactorOptions& options, const std::vector<const char*>& names);

// Reads A.mtx, makes it dense and prints its line; `copies` dense matrices of its size must fit the
// memory.
template <class Real>
FileMatrix<Real> read_dense(const std::string& path, double copies, typename Twin<Real>::Matrix& a);

// Lines on shapes, time and quality, then the factors themselves where they were not written.
// `product` is what the factors multiply to, in the words of `equation` ("A = Q R").
template <class Real>
void report_factors(const FactorOptions& options, const char* equation,
                    const typename Twin<Real>::Matrix& a,
                    const typename Twin<Real>::Matrix& product,
                    const std::vector<Factor<Real>>& factors, double seconds);

// Only the part that writes, or shows, named matrices.
template <class Real>
void hand_out(const FactorOptions& options, const std::vector<Factor<Real>>& factors);

}  // namespace program
