#include "tests/hostile/hostile_driver.h"

#include "dpa/userspace/kxdpa_request.h"
#include "host/host_file.h"
#include "sim/builtin_host.h"
#include "sim/model.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

hostile_driver the_hostile_driver;

namespace {

constexpr uint32_t EDGES[] = {0,          1,          2,      17,         18,         19,
                              255,        256,        512,    4095,       4096,       4097,
                              65535,      65536,      0x7fff, 0x7fffffff, 0x80000000, 0xffffffff,
                              0xfffffffe, 0x01000000, 0x1c,   0x10000000, 0x16000000, 0x7f000000};
constexpr const char FORMATS[] = "%n%s%s%99999d%*d";
constexpr uint32_t LARGEST_SMALL_WORD = 24;
constexpr uint32_t END_OF_WALK = 61;

// The places that a reply may fill.
struct room {
    uint8_t *bytes;
    uint32_t size;
    uint32_t *returned; // the capacity word, nullptr without one
};

room find_room(kxdpa_request *record) {
    if ((record->flags & KXDPA_FLAG_OUT) == 0)
        return {nullptr, 0, nullptr};
    const bool two = (record->flags & KXDPA_FLAG_TWO) != 0;
    const bool variable = (record->flags & KXDPA_FLAG_MAX) != 0;
    const uint32_t address = two ? record->buf2 : record->buf1;
    uint32_t *capacity = two ? &record->max2 : &record->max1;
    const uint32_t length = two ? record->len2 : record->len1;
    return {reinterpret_cast<uint8_t *>(address), length + (variable ? *capacity : 0),
            variable ? capacity : nullptr};
}

template <typename next_word> void fill_words(const room &to, next_word next) {
    for (uint32_t at = 0; at < to.size; at += sizeof(uint32_t)) {
        const uint32_t word = next();
        memcpy(to.bytes + at, &word, std::min<size_t>(sizeof word, to.size - at));
    }
}

void fill(const room &to, hostile_reply how, hostile_random &random) {
    switch (how) {
    case hostile_reply::zeros:
        memset(to.bytes, 0, to.size);
        break;
    case hostile_reply::ones:
        memset(to.bytes, 0xff, to.size);
        break;
    case hostile_reply::noise:
        fill_words(to, [&] { return random.next(); });
        break;
    case hostile_reply::letters:
        memset(to.bytes, 'A', to.size);
        break;
    case hostile_reply::formats:
        for (uint32_t at = 0; at < to.size; at++)
            to.bytes[at] = static_cast<uint8_t>(FORMATS[at % (sizeof FORMATS - 1)]);
        break;
    case hostile_reply::small:
        fill_words(to, [&] { return random.below(LARGEST_SMALL_WORD); });
        break;
    case hostile_reply::edges:
        fill_words(to, [&] { return EDGES[random.below(std::size(EDGES))]; });
        break;
    default:
        break;
    }
}

void damage(const room &to, hostile_random &random) {
    for (uint32_t times = random.below(8); to.size != 0 && times > 0; times--)
        to.bytes[random.below(to.size)] = static_cast<uint8_t>(random.next());
}

// A step of a walk: the reply begins with the entry after the key.
void step(const room &to, uint32_t from, hostile_driver &driver) {
    uint32_t word = driver.random.next();
    switch (driver.walk) {
    case hostile_walk::forward:
        word = from + 1;
        break;
    case hostile_walk::still:
        word = from;
        break;
    case hostile_walk::backward:
        word = from - 1;
        break;
    case hostile_walk::anywhere:
        break;
    }
    memcpy(to.bytes, &word, sizeof word);
}

void return_length(const room &to, hostile_random &random) {
    const uint32_t lengths[] = {to.size,     to.size + 1, to.size * 2, 0,
                                0xffffffffU, 0x80000000U, 4,           random.next()};
    if (!random.one_in(2))
        *to.returned = lengths[random.below(std::size(lengths))];
}

model &simulated_host() {
    static model *simulated = [] {
        host described;
        std::string error;
        if (!parse_host(builtin_host_text(), "built-in host", described, error)) {
            fprintf(stderr, "%s\n", error.c_str());
            abort();
        }
        auto *made = new model(std::move(described));
        made->complain = [](const std::string &) {};
        return made;
    }();
    return *simulated;
}

// True when the simulated host gave the answer, with its status.
bool answer_as_host(kxdpa_request *record) {
    own_memory memory;
    return model_request(simulated_host(), *record, memory) == 0 && record->status == 0;
}

hostile_reply next_reply(hostile_driver &driver) {
    hostile_reply how = driver.reply;
    while (how == hostile_reply::mixed)
        how = static_cast<hostile_reply>(driver.random.below(HOSTILE_REPLIES));
    return how;
}

// A request may also fail after the driver wrote to its buffer and its words.
int refuse(kxdpa_request *record, hostile_driver &driver) {
    hostile_random &random = driver.random;
    const room to = find_room(record);
    if (to.bytes != nullptr && random.one_in(4)) {
        fill(to, next_reply(driver), random);
        if (to.returned != nullptr)
            return_length(to, random);
    }
    const bool no_exchange = random.one_in(4);
    if (!no_exchange || random.one_in(4))
        record->status = random.one_in(2) ? END_OF_WALK : random.next() | 1U;
    errno = EIO;
    return no_exchange ? -1 : 0;
}

} // namespace

uint32_t hostile_random::next() {
    state_ += 0x9e3779b97f4a7c15;
    uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111eb;
    return static_cast<uint32_t>(mixed >> 32);
}

void hostile_driver_restart(uint64_t seed) {
    hostile_driver &driver = the_hostile_driver;
    driver = hostile_driver{};
    driver.random = hostile_random(seed);
    driver.reply = static_cast<hostile_reply>(driver.random.below(HOSTILE_REPLIES));
    driver.walk = static_cast<hostile_walk>(driver.random.below(4));
    driver.failures = driver.random.one_in(2) ? 0 : 2 + driver.random.below(10);
    driver.patience = 8U << driver.random.below(5);
}

int hostile_driver_answer(kxdpa_request *record) {
    hostile_driver &driver = the_hostile_driver;
    hostile_random &random = driver.random;
    if (++driver.requests > HOSTILE_REQUESTS_LIMIT) {
        fprintf(stderr, "a run without an end: opcode %u\n", record->opcode);
        abort();
    }
    const bool out_of_patience = driver.requests > driver.patience;
    // One command repeats a request until it succeeds, so even now some requests must succeed.
    if (out_of_patience ? !random.one_in(4)
                        : driver.failures != 0 && random.one_in(driver.failures))
        return refuse(record, driver);
    const hostile_reply how = next_reply(driver);
    const room to = find_room(record);
    const uint32_t asked = record->arg;
    const bool as_host = how == hostile_reply::host || how == hostile_reply::damaged;
    if (as_host && answer_as_host(record)) {
        if (how == hostile_reply::damaged)
            damage(to, random);
        return 0;
    }
    record->status = 0;
    if (to.bytes == nullptr)
        return 0;
    fill(to, as_host ? hostile_reply::small : how, random);
    if (to.size == sizeof(uint32_t) && how != hostile_reply::nothing && !random.one_in(4))
        step(to, asked, driver);
    if (to.returned != nullptr)
        return_length(to, random);
    return 0;
}
