#include "capture/pool.h"

#include <algorithm>

uint32_t hash_of(std::span<const uint8_t> bytes) {
    constexpr uint32_t FACTOR = 0x9E3779B1;
    uint32_t hash = static_cast<uint32_t>(bytes.size());
    for (size_t at = 0; at < bytes.size(); at += sizeof hash) {
        uint32_t word = 0;
        std::memcpy(&word, bytes.data() + at, std::min(sizeof word, bytes.size() - at));
        hash = (hash ^ word) * FACTOR;
        hash ^= hash >> 15;
    }
    return hash;
}

void id_index::put(const slot &added) {
    size_t at = added.hash & mask();
    while (slots_[at].id != NO_ID) {
        at = (at + 1) & mask();
    }
    slots_[at] = added;
}

void id_index::insert(uint32_t hash, uint32_t id) {
    constexpr size_t LEAST = 64;
    if (++used_ * 4 > slots_.size() * 3) {
        std::vector<slot> before(std::max(LEAST, slots_.size() * 2));
        before.swap(slots_);
        for (const slot &kept : before) {
            if (kept.id != NO_ID) {
                put(kept);
            }
        }
    }
    put({hash, id});
}

uint8_t *byte_pool::allocate(size_t size) {
    size = (size + 3) & ~size_t{3};
    if (size > left_) {
        left_ = std::max(size, BLOCK);
        large_ += left_ - BLOCK;
        blocks_.push_back(std::make_unique_for_overwrite<uint8_t[]>(left_));
    }
    left_ -= size; // a block is used from its end
    return blocks_.back().get() + left_;
}

uint32_t byte_pool::intern(std::span<const uint8_t> bytes) {
    const uint32_t hash = hash_of(bytes);
    uint32_t id = find(bytes, hash);
    if (id == NO_ID) {
        id = static_cast<uint32_t>(items_.size());
        const auto size = static_cast<uint32_t>(bytes.size());
        uint8_t *kept = allocate(sizeof size + size);
        std::memcpy(kept, &size, sizeof size);
        std::memcpy(kept + sizeof size, bytes.data(), size);
        items_.push_back(kept);
        index_.insert(hash, id);
    }
    return id;
}
