// How the sources of the sparse family reach the storage of its objects.
#pragma once

#include "nequar_algebra/sparse/compressed_columns.h"
#include "nequar_algebra/sparse/sparse_vector.h"
#include "sparse/algorithm/merge.h"
#include "sparse/algorithm/validity.h"
#include "sparse/stored.h"

namespace nequar {

// An optional result.
template <class T, class Value>
void give(T* out, const Value& value) {
    if (out != nullptr) *out = value;
}

// The stored elements for writing, without a claim on the blank space; null when there are none.
template <class Element>
Element* elements_of(GrowableVector<Element>& vector) {
    return vector.nee() > 0 ? &vector[0] : nullptr;
}

// The part of a column that an operation writes: all of it.
inline Range whole_column(const int*, Range column) {
    return column;
}

inline const char* insertion_code(Stored outcome) {
    return outcome == Stored::values_refused ? "i_Insert 1" : "i_Insert 2";
}

template <class Real>
struct SparseInside {
    using Matrix = CompressedColumns<Real>;
    using Vector = SparseVector<Real>;

    // For reading; holds until the object is changed. A matrix that was moved from has no columns,
    // and no start pointers of its own.
    static Columns<Real> columns(const Matrix& a) {
        static constexpr int kStartOfNone = 0;
        a.settle();
        const int* const start = a.mw() > 0 ? a.start_.p() : &kStartOfNone;
        return {a.mh(), a.mw(), a.nee(), start, a.rows_.p(), a.values_.p()};
    }
    static Run<Real> run(const Vector& v) { return {v.indices_.p(), v.values_.p(), v.nee()}; }

    static GrowableVector<Real>& values(Matrix& a) { return a.values_; }
    static GrowableVector<int>& rows(Matrix& a) { return a.rows_; }
    static GrowableVector<Real>& values(Vector& v) { return v.values_; }
    static GrowableVector<int>& indices(Vector& v) { return v.indices_; }
    // Up to date.
    static int* start(Matrix& a) {
        a.settle();
        return a.start_.p();
    }
    // The range of column x, which has to exist, without bringing all pointers up to date.
    static Range column_range(const Matrix& a, int x) {
        const int count = a.nee();
        const Size begin = x > a.settled_ ? count : a.start_[x];
        const Size end = x >= a.settled_ ? count : a.start_[x + 1];
        const Size clamped = std::clamp<Size>(begin, 0, count);
        return {clamped, std::clamp<Size>(end, clamped, count)};
    }
    // Makes the start pointers increase and end with the number of elements, as they do unless that
    // number was changed by itself; elements that belong to no column go.
    static void put_in_order(Matrix& a) {
        a.settle();
        if (a.mw() == 0) return;
        const Size count = nequar::put_in_order(a.start_.p(), a.mw(), a.nee());
        if (count != a.nee()) change_count(a.values_, a.rows_, static_cast<int>(count));
    }
    // Writes source runs into columns first … last-1, see merge_columns; all or nothing.
    template <class Rule, class PartOf, class SourceOf>
    static Stored merge(Matrix& a, const Rule& rule, Size first, Size last, const PartOf& part_of,
                        const SourceOf& source_of, Size shift) {
        if (first == last) return Stored::done;
        put_in_order(a);
        const Size count = a.nee();
        const Size absent = count_absent(rule, columns(a), first, last, part_of, source_of, shift);
        if (absent > 0) {
            const Stored outcome = grow_by(a.values_, a.rows_, absent);
            if (outcome != Stored::done) return outcome;
        }
        merge_columns(rule, a.mw(), a.start_.p(), elements_of(a.rows_), elements_of(a.values_),
                      count, absent, first, last, part_of, source_of, shift);
        return Stored::done;
    }
    // a += factor b. Counting what is absent costs as much as merging: when there can be room for
    // all of b, what was too much is taken back instead.
    static Stored add(Matrix& a, const Matrix& b, const AddRule<Real>& rule) {
        put_in_order(a);
        const Columns<Real> source = columns(b);
        const auto source_of = [&source](Size c) { return source.column(c); };
        if (have_same_places(columns(a), source)) {
            add_values(rule, source.values, source.count, elements_of(a.values_));
            return Stored::done;
        }
        const Size count = a.nee();
        if (grow_by(a.values_, a.rows_, source.count) != Stored::done)
            return merge(a, rule, 0, a.mw(), whole_column, source_of, 0);
        const Size room =
            merge_columns(rule, a.mw(), a.start_.p(), elements_of(a.rows_), elements_of(a.values_),
                          count, source.count, 0, a.mw(), whole_column, source_of, 0);
        move_down(a.start_.p(), a.mw(), elements_of(a.rows_), elements_of(a.values_), room);
        return change_count(a.values_, a.rows_, static_cast<int>(count + source.count - room));
    }
};

}  // namespace nequar
