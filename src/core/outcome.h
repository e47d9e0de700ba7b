// What an algorithm answers: whether it finished, and where it stopped if it did not. The object
// layer turns an outcome into the detail text of the failing operation.
#pragma once

#include "core/view.h"

namespace nequar {

enum class OutcomeKind {
    done,
    singular,               // a pivot or a diagonal element is exactly zero
    not_positive_definite,  // a pivot of a Cholesky factorization is not above zero
    zero_column,            // a column vanishes where its direction is needed
    no_memory,              // a workspace could not be had
};

struct [[nodiscard]] Outcome {
    OutcomeKind kind = OutcomeKind::done;
    Size index = -1;  // the column (or element) at which the algorithm stopped

    static Outcome success() { return {}; }
    explicit operator bool() const { return kind == OutcomeKind::done; }
};

}  // namespace nequar
