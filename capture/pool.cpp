#include "capture/pool.h"

#include <algorithm>

namespace {

constexpr size_t BLOCK = 4096; // words

} // namespace

uint32_t hash_of(std::span<const uint8_t> bytes) {
    auto hash = static_cast<uint32_t>(bytes.size());
    uint32_t word = 0;
    size_t at = 0;
    for (; at + sizeof word <= bytes.size(); at += sizeof word) {
        std::memcpy(&word, bytes.data() + at, sizeof word);
        hash = mix_hash(hash, word);
    }
    word = 0;
    for (; at < bytes.size(); at++) {
        word = word << 8 | bytes[at];
    }
    return mix_hash(hash, word);
}

const byte_pool::item *byte_pool::find(std::span<const uint8_t> bytes, uint32_t hash) const {
    const item *const *found = index_.find(hash, [&](const item *kept) {
        return kept->size == bytes.size() &&
               std::memcmp(kept->begin(), bytes.data(), bytes.size()) == 0;
    });
    return found == nullptr ? nullptr : *found;
}

const byte_pool::item *byte_pool::intern(std::span<const uint8_t> bytes) {
    const uint32_t hash = hash_of(bytes);
    if (const item *known = find(bytes, hash)) {
        return known;
    }
    const size_t words = (sizeof(item) + bytes.size() + 3) / sizeof(uint32_t);
    if (words > left_) {
        left_ = std::max(words, BLOCK);
        blocks_.push_back(std::make_unique_for_overwrite<uint32_t[]>(left_));
        bytes_ += left_ * sizeof(uint32_t);
    }
    left_ -= words;
    auto *made = new (blocks_.back().get() + left_)
        item{items_++, static_cast<uint32_t>(bytes.size())};
    std::memcpy(made + 1, bytes.data(), bytes.size());
    index_.insert(hash, made);
    return made;
}
