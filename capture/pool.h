// Things that are kept once, however often they come up, and are known by their number from then
// on.
#ifndef CAPTURE_POOL_H
#define CAPTURE_POOL_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

constexpr uint32_t NO_ID = 0xFFFFFFFF;

uint32_t hash_of(std::span<const uint8_t> bytes);

// Finds numbered things by their content, which it does not hold.
class id_index {
public:
    // The number of the thing with the hash that `is_same(id)` holds for, NO_ID for none.
    template <typename IsSame> uint32_t find(uint32_t hash, IsSame is_same) const {
        for (size_t at = hash & mask(); !slots_.empty(); at = (at + 1) & mask()) {
            const slot &candidate = slots_[at];
            if (candidate.id == NO_ID) {
                break;
            }
            if (candidate.hash == hash && is_same(candidate.id)) {
                return candidate.id;
            }
        }
        return NO_ID;
    }
    // REQUIRES: it is not there.
    void insert(uint32_t hash, uint32_t id);

    size_t bytes() const {
        return slots_.size() * sizeof(slot);
    }

private:
    struct slot {
        uint32_t hash = 0;
        uint32_t id = NO_ID;
    };
    size_t mask() const {
        return slots_.size() - 1;
    }
    void put(const slot &added);

    std::vector<slot> slots_; // a power of two, or none
    size_t used_ = 0;
};

class byte_pool {
public:
    uint32_t find(std::span<const uint8_t> bytes, uint32_t hash) const {
        return index_.find(hash, [&](uint32_t id) {
            const std::span<const uint8_t> kept = at(id);
            return kept.size() == bytes.size() &&
                   std::memcmp(kept.data(), bytes.data(), bytes.size()) == 0;
        });
    }
    uint32_t find(std::span<const uint8_t> bytes) const {
        return find(bytes, hash_of(bytes));
    }
    uint32_t intern(std::span<const uint8_t> bytes);

    std::span<const uint8_t> at(uint32_t id) const {
        uint32_t size = 0;
        std::memcpy(&size, items_[id], sizeof size);
        return {items_[id] + sizeof size, size};
    }
    size_t bytes() const {
        return blocks_.size() * BLOCK + large_ + items_.size() * sizeof items_[0] + index_.bytes();
    }

private:
    static constexpr size_t BLOCK = size_t{1} << 14;

    uint8_t *allocate(size_t size);

    std::vector<std::unique_ptr<uint8_t[]>> blocks_;
    size_t left_ = 0;                    // in the last block
    size_t large_ = 0;                   // bytes of blocks beyond their usual size
    std::vector<const uint8_t *> items_; // each its size and its bytes
    id_index index_;
};

#endif
