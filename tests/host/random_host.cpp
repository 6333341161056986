#include "tests/host/random_host.h"

#include "host/keys.h"
#include "host/value.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <string_view>
#include <vector>

namespace {

// Numbers that mean the same thing come from one small pool, so that the parts of a host meet.
const std::map<std::string_view, std::vector<uint64_t>> POOLS = {
    {"LTL", {0, 3, 8, 17, 18, 20, 21, 22, 49, 50, 60, 61, 1039, 1040, 1041, 1047, 1048}},
    {"VLAN", {0, 1, 2, 10, 20, 30, 100, 3968, 4094, 4095}},
    {"bridge domain", {1, 2, 3, 4, 5, 6, 300, 9299, 9300, 65536}},
    {"segment", {0, 1, 5001, 5002, 16777215, 16777216}},
};

struct drawing {
    std::mt19937 numbers;

    uint64_t below(uint64_t end) {
        return std::uniform_int_distribution<uint64_t>(0, end - 1)(numbers);
    }
    bool one_in(uint64_t count) {
        return below(count) == 0;
    }
    template <typename list> const auto &one_of(const list &items) {
        return *(std::begin(items) + static_cast<std::ptrdiff_t>(below(std::size(items))));
    }

    uint64_t number(const key &row) {
        const auto pool = POOLS.find(row.unit);
        if (pool != POOLS.end() && !one_in(20)) {
            const uint64_t drawn = one_of(pool->second);
            if (drawn >= row.least && drawn <= row.most)
                return drawn;
        }
        const uint64_t span = row.most - row.least;
        const uint64_t offsets[] = {
            0,        1,
            span,     span == 0 ? 0 : span - 1,
            below(9), std::uniform_int_distribution<uint64_t>(0, span)(numbers)};
        return row.least + std::min(span, one_of(offsets));
    }

    // Words that people would use, any bytes, and texts that fill their field.
    std::string text(const key &row) {
        static const char *const words[] = {
            "web",          "red",     "vmnic0", "a b", "x\"y\\z", "\t\x7f", "\xC3\xBC\xE2\x82\xAC",
            "\xEF\xBE\x80", "\xFF\x80"};
        std::string drawn = one_of(words);
        if (one_in(4))
            drawn += std::to_string(below(100));
        if (one_in(8)) {
            drawn.clear();
            const uint64_t length = one_in(2) ? std::min<uint64_t>(row.most, 300) : 1 + below(20);
            while (drawn.size() < length)
                drawn += static_cast<char>(1 + below(255));
        }
        if (!row.unique && one_in(10))
            drawn.clear();
        return drawn.substr(0, static_cast<size_t>(row.most));
    }

    std::string bytes(size_t length) {
        std::string drawn;
        while (drawn.size() < length)
            drawn += static_cast<char>(one_in(2) ? below(256) : below(3));
        return drawn;
    }

    std::vector<uint32_t> number_list(const key &row) {
        std::vector<uint32_t> drawn;
        const uint64_t length = std::min<uint64_t>(row.items, below(8));
        while (drawn.size() < length)
            drawn.push_back(static_cast<uint32_t>(number(row)));
        if (!row.access.in_order) {
            std::sort(drawn.begin(), drawn.end());
            drawn.erase(std::unique(drawn.begin(), drawn.end()), drawn.end());
        }
        return drawn;
    }

    key_value value(const key &row) {
        key_value drawn;
        switch (row.type) {
        case key_type::flag:
            drawn.number = one_in(8) ? number(row) : below(2);
            break;
        case key_type::word:
        case key_type::words:
            drawn.number = one_in(6) || row.words.empty() ? number(row) : one_of(row.words).number;
            if (row.type == key_type::words && one_in(2))
                drawn.number |= one_of(row.words).number;
            break;
        case key_type::text:
            drawn.bytes = text(row);
            break;
        case key_type::texts:
            for (uint64_t count = below(4); count > 0; count--)
                drawn.texts.push_back(text(row));
            break;
        case key_type::hex:
            drawn.bytes = bytes(static_cast<size_t>(one_in(10) ? 600 : below(12)));
            break;
        case key_type::mac:
            drawn.bytes =
                one_in(3) ? bytes(6)
                          : std::string("\x00\x50\x56\x01\x02", 5) + static_cast<char>(below(40));
            break;
        case key_type::ipv6:
            drawn.bytes = bytes(16);
            break;
        case key_type::interface: {
            const uint64_t known[] = {28U << 24 | below(100) << 4, 37U << 24 | below(20) << 6,
                                      22U << 24 | below(5), 28U << 24 | below(16)};
            drawn.number = one_in(4) ? number(row) : one_of(known);
            break;
        }
        case key_type::numbers:
            drawn.numbers = number_list(row);
            break;
        default:
            drawn.number = number(row);
            break;
        }
        return drawn;
    }

    void fill_list(const key &row, void *object) {
        std::set<std::string> used;
        uint64_t length = std::min<uint64_t>(row.items, one_in(10) ? 40 : below(7));
        for (size_t place = 0; length > 0; length--) {
            const std::shared_ptr<void> item = row.table->make(place);
            std::string unique;
            fill(*row.table, item.get(), {}, unique);
            if (unique.empty() || used.insert(unique).second) {
                row.access.append(object, item.get());
                place++;
            }
        }
    }

    void fill_row(const key &row, void *object, std::string &unique) {
        key_value drawn;
        std::string ignored;
        switch (row.type) {
        case key_type::included:
            if (row.access.look(object) != nullptr)
                fill(*row.table, row.access.open(object), {}, unique);
            break;
        case key_type::counters:
            for (uint32_t index = 0; index < row.items; index++)
                if (one_in(3))
                    row.access.set_at(object, index, number(row));
            break;
        case key_type::object:
            fill(*row.table, row.access.open(object), {}, ignored);
            break;
        case key_type::list:
            fill_list(row, object);
            break;
        default:
            drawn = value(row);
            row.access.set(object, drawn);
            if (row.unique)
                unique += value_text(row, drawn) + ",";
            break;
        }
    }

    void refuse(const key &row, void *object) {
        if (row.type == key_type::object || row.type == key_type::list)
            row.access.drop(object);
        else
            row.access.set(object, {.is = key_value::state::refused});
    }

    // `unique` becomes what tells the object from others of its list.
    void fill(const key_table &table, void *object, const std::set<std::string> &without,
              std::string &unique) {
        for (const key &row : table.keys) {
            if (without.contains(row.name))
                continue;
            if (row.refusable && one_in(8))
                refuse(row, object);
            else if (row.required || row.type == key_type::included || !one_in(3))
                fill_row(row, object, unique);
        }
    }
};

} // namespace

host random_host(uint32_t seed, const std::set<std::string> &without) {
    drawing draw{std::mt19937(seed)};
    host drawn;
    std::string unique;
    draw.fill(HOST_KEYS, &drawn, without, unique);
    return drawn;
}
