// Several reflectors applied at once.
//
//   Q = H_0 H_1 ... H_(b-1) = I - U T U^T,     H_j = I - u_j u_j^T,  U = [u_0 ... u_(b-1)]
//   T^-1 = I + S,    S = the strictly upper triangle of U^T U
//
//        U  =  | x       |     u_j starts in row j; above it U holds zeros, so that products
//              | x x     |     take U as a full matrix
//              | x x x   |
//              | x x x   |
//
// S comes out of one product and T is never formed: it is applied by solving with the unit
// triangle I + S. A reflector that is none has u_j = 0 and drops out by itself.
//
// Joffrain, Low, Quintana-Orti, van de Geijn, Van Zee, Accumulating Householder transformations,
// revisited, ACM TOMS 32, 2006; with normalized reflectors the diagonal of T^-1 is 1.
#pragma once

#include "core/outcome.h"
#include "core/view.h"
#include "factorization/algorithm/scratch.h"

namespace nequar {

// S (b x b) := the coupling of U (m x b). Only its strictly upper triangle is meant; the diagonal
// is overwritten and the rest is left alone.
template <class Real>
void couple_reflectors(View<const Real> u, View<Real> s);

// S12 := U1^T U2, the coupling of a block with one after it.
template <class Real>
void couple_blocks(View<const Real> u1, View<const Real> u2, View<Real> s12);

enum class Side { q, q_transposed };

// C := Q C or Q^T C with w (b x width of C) as scratch
template <class Real>
void apply_block_reflector(Side side, View<const Real> u, View<const Real> s, View<Real> c,
                           View<Real> w);

// The reflectors of a whole factorization, Q = H_0 H_1 ... H_(count-1), in blocks of `block`
// columns: block k starts in row and column k block.
template <class Real>
struct ReflectorStore {
    View<Real> vectors;    // m x count: U, block by block
    View<Real> couplings;  // block x count: S of each block
    Size block = 1;

    Size count() const { return vectors.width; }
    Size width_of_block(Size k) const { return count() - k < block ? count() - k : block; }
    View<Real> vectors_of_block(Size k) const {
        return vectors.block(k, k, vectors.height - k, width_of_block(k));
    }
    View<Real> coupling_of_block(Size k) const {
        const Size width = width_of_block(k);
        return couplings.block(0, k, width, width);
    }
};

// Of reflectors that were found one by one, vector k in column k from row k down: zeros above them
// within each block, and the couplings.
template <class Real>
void finish_store(const ReflectorStore<Real>& store);

// C := Q C or Q^T C, C with as many rows as the vectors; w (block x width of C) is scratch
template <class Real>
void apply_reflectors(Side side, const ReflectorStore<Real>& store, View<Real> c, View<Real> w);

// The same, one reflector after the other; nothing is coupled. w has as many elements as C columns.
template <class Real>
void apply_reflectors_plain(Side side, View<const Real> vectors, View<Real> c, Strided<Real> w);

// Q := H_0 H_1 ... H_(count-1), m x m, where the vectors lie in the first columns of Q itself. The
// scratch has `scratch_to_form_orthogonal` elements.
template <class Real>
void form_orthogonal(const ReflectorStore<Real>& store, View<Real> q, Scratch<Real> scratch);
template <class Real>
Outcome form_orthogonal(const ReflectorStore<Real>& store, View<Real> q);
template <class Real>
Size scratch_to_form_orthogonal(Size height, Size count, Size block);

// The same from reflectors that were found one by one: vector k lies in column k of Q from the
// diagonal down, and nothing above it matters. They are coupled here when they are many.
template <class Real>
Outcome form_orthogonal(View<Real> q, Size count);

// The same, one reflector after the other; nothing is coupled. 2 rounded(m) elements of scratch.
template <class Real>
void form_orthogonal_plain(View<const Real> vectors, View<Real> q, Scratch<Real> scratch);

}  // namespace nequar
