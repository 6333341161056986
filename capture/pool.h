// Bytes that are kept once, however often they come up.
#ifndef CAPTURE_POOL_H
#define CAPTURE_POOL_H

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <span>
#include <string_view>
#include <unordered_map>
#include <utility>

class byte_pool {
public:
    // The bytes, and their number in the order of coming from 0. It stays where it is.
    using item = std::pair<const std::string_view, uint32_t>;

    // `likely` may say which one it is, to find it sooner.
    const item *intern(std::span<const uint8_t> bytes, const item *likely = nullptr) {
        const std::string_view key(reinterpret_cast<const char *>(bytes.data()), bytes.size());
        if (likely != nullptr && likely->first == key) {
            return likely;
        }
        // Often the same comes several times in a row.
        if (last_ == nullptr || last_->first != key) {
            auto found = items_.find(key);
            if (found == items_.end()) {
                auto *copy = static_cast<char *>(memory_.allocate(key.size(), ALIGNMENT));
                key.copy(copy, key.size());
                const auto number = static_cast<uint32_t>(items_.size());
                found = items_.emplace(std::string_view(copy, key.size()), number).first;
                bytes_ += ITEM_BYTES + key.size();
            }
            last_ = &*found;
        }
        return last_;
    }

    // What it takes, roughly.
    size_t bytes() const {
        return bytes_;
    }

private:
    static constexpr size_t ALIGNMENT = alignof(uint32_t); // of bytes that are read as a record
    static constexpr size_t ITEM_BYTES = 32;

    // Given back in one piece, so that the process's memory is not left in shreds.
    std::pmr::monotonic_buffer_resource memory_;
    std::pmr::unordered_map<std::string_view, uint32_t> items_{&memory_};
    const item *last_ = nullptr;
    size_t bytes_ = 0;
};

inline std::span<const uint8_t> bytes_of(const byte_pool::item &item) {
    return {reinterpret_cast<const uint8_t *>(item.first.data()), item.first.size()};
}

#endif
