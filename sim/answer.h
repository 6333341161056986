// What the driver knows about one opcode: the form of its request, who answers it, and what a
// description learns from a driver's answer.
#ifndef SIM_ANSWER_H
#define SIM_ANSWER_H

#include "dpa/userspace/kxdpa_opcodes.h"
#include "host/host.h"
#include "sim/exchange.h"

#include <cstdint>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

constexpr uint32_t ANY_ARGUMENT = 0xFFFFFFFF;

// No driver has more of them.
constexpr uint32_t MOST_PORTS = 4096, MOST_ADDRESSES = 65536, MOST_OTHERS = 16384;

using answer_function = void(host &, exchange &);
using learn_function = void(host &, const exchange &);

// An opcode that is asked in several forms, or for several arguments with nothing in common, has
// one answer for each.
struct answer {
    kxdpa_opcode opcode;
    uint8_t flags;         // exactly these kxdpa_flag values
    uint32_t len1 = 0;     // exact
    uint32_t len2 = 0;     // likewise
    uint32_t capacity = 0; // least max1 of a variable-length transfer
    answer_function *reply;
    // Takes a driver's answer into the description, or finds nothing in it to take. None for what
    // does more than read: nobody asks that in order to learn.
    learn_function *learn = nullptr;
    uint32_t argument = ANY_ARGUMENT; // the only one that this answers
    // Bytes that the driver writes after the capacity that it was given. That any driver does is
    // an assumption about a single opcode, the card's UUID.
    uint32_t behind = 0;
    // True when callers take the same from both answers, of which neither refuses; null where they
    // look at every byte.
    bool (*alike)(const exchange &one, const exchange &other) = nullptr;
    // Of a walk whose step this is: more entries than any driver has, 0 for what is no step.
    uint32_t longest = 0;
    // A step of a walk that hands the whole reply back: the steps of an argument stand together.
    // A bool's size would leave a gap in each row of the tables.
    uint32_t steps_by_reply = 0; // 0 or 1
    // The top-level key of the host file that this is answered from: the family's unless it says
    // another, nullptr for none.
    const char *key = nullptr;

    // The rows of the tables are written as the plain form and what is special about it.
    template <typename T> constexpr answer with(T answer::*member, T value) const {
        answer changed = *this;
        changed.*member = value;
        return changed;
    }
    constexpr answer for_argument(uint32_t only) const {
        return with(&answer::argument, only);
    }
    constexpr answer from_key(const char *name) const {
        return with(&answer::key, name);
    }
    constexpr answer of_walk(uint32_t entries) const {
        return with(&answer::longest, entries);
    }
    constexpr answer told_alike(decltype(alike) when) const {
        return with(&answer::alike, when);
    }
};

// The forms of requests. Which is which: kxdpa_indirect.h.

template <typename record>
constexpr answer get(kxdpa_opcode opcode, answer_function *reply, learn_function *learn) {
    return {opcode, KXDPA_FLAG_OUT, sizeof(record), 0, 0, reply, learn};
}

template <typename record>
constexpr answer exchanged(kxdpa_opcode opcode, answer_function *reply,
                           learn_function *learn = nullptr) {
    return {opcode, KXDPA_FLAG_OUT | KXDPA_FLAG_IN, sizeof(record), 0, 0, reply, learn};
}

constexpr answer get_variable(kxdpa_opcode opcode, uint32_t capacity, answer_function *reply,
                              learn_function *learn) {
    return {opcode, KXDPA_FLAG_OUT | KXDPA_FLAG_MAX, 0, 0, capacity, reply, learn};
}

template <typename record> constexpr answer set(kxdpa_opcode opcode, answer_function *reply) {
    return {opcode, KXDPA_FLAG_IN, sizeof(record), 0, 0, reply};
}

constexpr answer set_text(kxdpa_opcode opcode, uint32_t capacity, answer_function *reply) {
    return {opcode, KXDPA_FLAG_IN | KXDPA_FLAG_MAX, 0, 0, capacity, reply};
}

constexpr answer command(kxdpa_opcode opcode, answer_function *reply) {
    return {opcode, KXDPA_FLAG_NODATA, 0, 0, 0, reply};
}

// The value of a key, nullptr where there is none.
template <typename Map> auto *value_in(Map &map, const typename Map::key_type &key) {
    const auto found = map.find(key);
    return found == map.end() ? nullptr : &found->second;
}

// A member of an object that need not be there.
template <auto member, typename T> auto *member_in(T *object) {
    return object == nullptr ? nullptr : &(object->*member);
}

// Many requests read one value: the member at the end of a path from the host.

template <auto first, auto... rest, typename T> auto &member_at(T &object) {
    if constexpr (sizeof...(rest) == 0) {
        return object.*first;
    } else {
        return member_at<rest...>(object.*first);
    }
}

template <auto... path>
using value_at =
    typename std::remove_cvref_t<decltype(member_at<path...>(std::declval<host &>()))>::value_type;

template <auto... path> void answer_value(host &state, exchange &talk) {
    talk.tell(state, member_at<path...>(state));
}

template <auto... path> void learn_value(host &state, const exchange &told) {
    told.learn(member_at<path...>(state));
}

template <auto... path> constexpr answer value(kxdpa_opcode opcode) {
    return get<value_at<path...>>(opcode, answer_value<path...>, learn_value<path...>);
}

// Changes nothing that can be asked for.
inline void accept(host & /*state*/, exchange & /*talk*/) {
}

// The description gives this answer by itself, from what else it says.
inline void learn_nothing(host & /*state*/, const exchange & /*told*/) {
}

// Callers look at nothing but that it is an answer.
inline bool always_alike(const exchange & /*one*/, const exchange & /*other*/) {
    return true;
}

// The opcodes that ask about one part of the host.
using family = std::span<const answer>;

extern const family card_family;
extern const family bridge_domain_family;
extern const family port_family;
extern const family port_channel_family;
extern const family l2_family;
extern const family counter_family;
extern const family acl_family;
extern const family lacp_family;
extern const family settings_family;

// All of them, in families.cpp.
std::vector<const family *> all_families();

// The answer to a request: the one of its form and argument, else any of the opcode, so that the
// difference can be named; nullptr for an opcode that nobody answers.
const answer *find_answer(const kxdpa_request &request);

// What is left to do once all answers of a driver are learnt: to take out what says nothing, or
// twice the same. The drops of one LTL that is neither a port nor internal tell of the others.
void settle_drops(host &state, uint32_t stranger);
void settle_l2(host &state);

#endif
