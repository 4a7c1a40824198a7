#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace navrel {

/// A first-in, first-out queue of values. It keeps memory for a few of them, so a connection whose
/// operations come and go in turn allocates nothing, unlike with a std::deque. References are valid
/// until the queue changes.
template <typename Value>
class WaitingLine {
public:
    bool empty() const { return values_.empty(); }
    std::size_t size() const { return values_.size() - first_; }

    Value& front() { return values_[first_]; }
    const Value& front() const { return values_[first_]; }

    auto begin() const { return values_.cbegin() + static_cast<std::ptrdiff_t>(first_); }
    auto end() const { return values_.cend(); }

    template <typename... Arguments>
    void emplaceBack(Arguments&&... arguments) {
        // Not made in place: clang 14 makes no aggregate there.
        values_.push_back(Value{std::forward<Arguments>(arguments)...});
    }

    /// Puts a value that was taken back to the front.
    void pushFront(Value&& value) {
        if (first_ > 0) {
            values_[--first_] = std::move(value);
        } else {
            values_.push_back(std::move(value));
            std::rotate(values_.begin(), values_.end() - 1, values_.end());
        }
    }

    Value takeFront() {
        Value value = std::move(front());
        dropFront();
        return value;
    }

    /// Removes the first value. It may be destroyed later, with others: move out of it first
    /// anything that must be released now.
    void dropFront() {
        ++first_;
        if (first_ == values_.size()) {
            clear();
        } else if (first_ > kMostTaken && first_ > size()) {
            values_.erase(values_.begin(), begin());
            first_ = 0;
        }
    }

private:
    /// How many removed values may stay before the others. More are erased as soon as they
    /// outnumber the others.
    static constexpr std::size_t kMostTaken = 64;
    static constexpr std::size_t kMostKept = 256;

    void clear() {
        first_ = 0;
        values_.clear();
        if (values_.capacity() > kMostKept) {
            values_.shrink_to_fit();
        }
    }

    std::vector<Value> values_;
    std::size_t first_ = 0; ///< those before it are gone
};

} // namespace navrel
