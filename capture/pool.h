// Bytes that are kept once, however often they come up.
#ifndef CAPTURE_POOL_H
#define CAPTURE_POOL_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

class byte_pool {
public:
    // The bytes, and their number in the order of coming from 0. It stays where it is.
    using item = std::pair<const std::string, uint32_t>;

    const item *intern(std::span<const uint8_t> bytes) {
        const std::string_view key(reinterpret_cast<const char *>(bytes.data()), bytes.size());
        // Often the same comes several times in a row.
        if (last_ == nullptr || last_->first != key) {
            auto found = items_.find(key);
            if (found == items_.end()) {
                found = items_.emplace(key, static_cast<uint32_t>(items_.size())).first;
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
    static constexpr size_t ITEM_BYTES = 64;

    struct hash_of {
        using is_transparent = void;
        size_t operator()(std::string_view bytes) const {
            return std::hash<std::string_view>()(bytes);
        }
    };
    std::unordered_map<std::string, uint32_t, hash_of, std::equal_to<>> items_;
    const item *last_ = nullptr;
    size_t bytes_ = 0;
};

inline std::span<const uint8_t> bytes_of(const byte_pool::item &item) {
    return {reinterpret_cast<const uint8_t *>(item.first.data()), item.first.size()};
}

#endif
