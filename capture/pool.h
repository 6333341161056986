// Bytes that are kept once, however often they come up.
#ifndef CAPTURE_POOL_H
#define CAPTURE_POOL_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

constexpr uint32_t mix_hash(uint32_t hash, uint32_t word) {
    hash = (hash ^ word) * 0x9E3779B1;
    return hash ^ hash >> 15;
}

uint32_t hash_of(std::span<const uint8_t> bytes);

// Finds things that somebody else holds by their content. A `handle` is small and stands for one.
template <typename handle> class content_index {
public:
    // The thing with the hash that `is_same(it)` holds for, nullptr for none.
    template <typename IsSame> const handle *find(uint32_t hash, IsSame is_same) const {
        for (size_t at = hash & mask(); !slots_.empty(); at = (at + 1) & mask()) {
            const slot &candidate = slots_[at];
            if (!candidate.used) {
                break;
            }
            if (candidate.hash == (hash & HASH_BITS) && is_same(candidate.thing)) {
                return &candidate.thing;
            }
        }
        return nullptr;
    }
    // REQUIRES: it is not there.
    void insert(uint32_t hash, handle thing) {
        constexpr size_t LEAST = 64;
        if (++used_ * 4 > slots_.size() * 3) {
            std::vector<slot> before(slots_.empty() ? LEAST : slots_.size() * 2);
            before.swap(slots_);
            for (const slot &kept : before) {
                if (kept.used) {
                    put(kept);
                }
            }
        }
        put({hash & HASH_BITS, true, thing});
    }
    size_t bytes() const {
        return slots_.size() * sizeof(slot);
    }

private:
    static constexpr uint32_t HASH_BITS = 0x7FFFFFFF;

    struct slot {
        uint32_t hash : 31 = 0;
        bool used : 1 = false;
        handle thing{};
    };
    size_t mask() const {
        return slots_.size() - 1;
    }
    void put(const slot &added) {
        size_t at = added.hash & mask();
        while (slots_[at].used) {
            at = (at + 1) & mask();
        }
        slots_[at] = added;
    }

    std::vector<slot> slots_; // a power of two below 2^31, or none
    size_t used_ = 0;
};

class byte_pool {
public:
    // Stays where it is.
    struct item {
        uint32_t number; // from 0, in the order of coming
        uint32_t size;
        const uint8_t *begin() const {
            return reinterpret_cast<const uint8_t *>(this + 1);
        }
        std::span<const uint8_t> bytes() const {
            return {begin(), size};
        }
    };

    // nullptr when it has not come yet.
    const item *find(std::span<const uint8_t> bytes) const {
        return find(bytes, hash_of(bytes));
    }
    const item *intern(std::span<const uint8_t> bytes);

    size_t bytes() const {
        return bytes_ + index_.bytes();
    }

private:
    const item *find(std::span<const uint8_t> bytes, uint32_t hash) const;

    std::vector<std::unique_ptr<uint32_t[]>> blocks_; // each is used from its end
    size_t left_ = 0;                                 // words in the last one
    size_t bytes_ = 0;
    uint32_t items_ = 0;
    content_index<const item *> index_;
};

#endif
