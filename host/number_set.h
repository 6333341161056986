// A set of numbers in one piece of memory. Nearly all of them are filled in rising order, copied as
// a whole and walked, so a sorted vector costs a fraction of a tree.
#ifndef HOST_NUMBER_SET_H
#define HOST_NUMBER_SET_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <vector>

class number_set {
public:
    using iterator = std::vector<uint32_t>::const_iterator;

    number_set() = default;
    number_set(std::initializer_list<uint32_t> numbers)
        : number_set(numbers.begin(), numbers.end()) {
    }
    // Of numbers in any order, some perhaps twice.
    template <typename Iterator> number_set(Iterator first, Iterator last) : numbers_(first, last) {
        if (std::adjacent_find(begin(), end(), std::greater_equal<>()) != end()) {
            std::sort(numbers_.begin(), numbers_.end());
            numbers_.erase(std::unique(numbers_.begin(), numbers_.end()), numbers_.end());
        }
    }

    // Constant time for a number above all others, linear otherwise.
    void insert(uint32_t number) {
        if (empty() || numbers_.back() < number) {
            numbers_.push_back(number);
        } else if (const auto at = std::lower_bound(begin(), end(), number); *at != number) {
            numbers_.insert(at, number);
        }
    }
    void erase(uint32_t number) {
        if (const auto at = std::lower_bound(begin(), end(), number);
            at != end() && *at == number) {
            numbers_.erase(at);
        }
    }
    void clear() {
        numbers_.clear();
    }

    iterator begin() const {
        return numbers_.begin();
    }
    iterator end() const {
        return numbers_.end();
    }
    size_t size() const {
        return numbers_.size();
    }
    bool empty() const {
        return numbers_.empty();
    }
    bool contains(uint32_t number) const {
        return std::binary_search(begin(), end(), number);
    }
    // The first number above this one.
    iterator upper_bound(uint32_t number) const {
        return std::upper_bound(begin(), end(), number);
    }

    bool operator==(const number_set &) const = default;

private:
    std::vector<uint32_t> numbers_; // rising
};

#endif
