#include "numbers/norms.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace program {
namespace {

struct Element {
    int row;
    int column;
    double value;
};

// The largest sum of magnitudes among runs of elements with the same key, sorted by it here.
template <class Key>
long double largest_sum(std::vector<Element>& elements, Key key) {
    std::sort(elements.begin(), elements.end(),
              [&](const Element& a, const Element& b) { return key(a) < key(b); });
    long double largest = 0, sum = 0;
    for (std::size_t k = 0; k < elements.size(); ++k) {
        if (k > 0 && key(elements[k]) != key(elements[k - 1])) sum = 0;
        sum += std::fabs(static_cast<long double>(elements[k].value));
        largest = std::max(largest, sum);
    }
    return largest;
}

// Whether the elements are their own mirror image, with every value multiplied by `sign`.
bool is_own_mirror(const std::vector<Element>& elements, double sign) {
    const auto by_row = [](const Element& a, const Element& b) {
        return a.row != b.row ? a.row < b.row : a.column < b.column;
    };
    std::vector<Element> mirrored(elements);
    for (Element& element : mirrored) {
        std::swap(element.row, element.column);
        element.value *= sign;
    }
    std::vector<Element> sorted(elements);
    std::sort(sorted.begin(), sorted.end(), by_row);
    std::sort(mirrored.begin(), mirrored.end(), by_row);
    return std::equal(sorted.begin(), sorted.end(), mirrored.begin(),
                      [](const Element& a, const Element& b) {
                          return a.row == b.row && a.column == b.column && a.value == b.value;
                      });
}

}  // namespace

MatrixFacts find_facts(const FileMatrix<double>& matrix) {
    MatrixFacts facts;
    std::vector<Element> elements;
    long double squares = 0;
    matrix.for_each([&](int row, int column, double value) {
        if (value == 0) return;
        elements.push_back({row, column, value});
        const long double magnitude = std::fabs(static_cast<long double>(value));
        squares += magnitude * magnitude;
        facts.norm_max = std::max(facts.norm_max, magnitude);
        facts.lower_bandwidth = std::max(facts.lower_bandwidth, row - column);
        facts.upper_bandwidth = std::max(facts.upper_bandwidth, column - row);
    });
    facts.nonzeros = elements.size();
    facts.norm_frobenius = std::sqrt(squares);
    if (matrix.height == matrix.width) {
        facts.symmetric = matrix.symmetry == Symmetry::symmetric || is_own_mirror(elements, 1);
        facts.skew = matrix.symmetry == Symmetry::skew || is_own_mirror(elements, -1);
    }
    facts.norm_1 = largest_sum(elements, [](const Element& e) { return e.column; });
    facts.norm_infinity = largest_sum(elements, [](const Element& e) { return e.row; });
    return facts;
}

}  // namespace program
