#pragma once

#include <cstddef>
#include <iterator>

namespace zeb::profiling {

/// Makes an iterator of a cursor: a small value that gives the entry that it stands at (`at`), goes on to the
/// next one (`advance`), and equals another one at the same place.
template <typename Entry, typename Cursor>
class ForwardIterator {
public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = Entry;
    using difference_type = std::ptrdiff_t;
    using pointer = const Entry*;
    using reference = const Entry&;

    ForwardIterator() = default;
    explicit ForwardIterator(Cursor cursor) : cursor_(cursor) {}

    reference operator*() const { return cursor_.at(); }
    pointer operator->() const { return &cursor_.at(); }
    ForwardIterator& operator++() {
        cursor_.advance();
        return *this;
    }
    ForwardIterator operator++(int) {
        const ForwardIterator before = *this;
        ++*this;
        return before;
    }
    friend bool operator==(const ForwardIterator& left, const ForwardIterator& right) = default;

private:
    Cursor cursor_;
};

}  // namespace zeb::profiling
