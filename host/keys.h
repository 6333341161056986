// The keys of the host file: what each is called, takes and means, and where it lives in the
// described host.
//
// Each part of the host has one table of its keys. Reading, writing, the key reference and the JSON
// Schema all walk these tables and know nothing of the parts themselves, so a key is its row here
// and nothing else. Objects are passed as untyped pointers between the walkers and the rows; a
// table and the objects that it is walked with belong together.
#ifndef HOST_KEYS_H
#define HOST_KEYS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

// How the values of each type are read and written stands in value.cpp, a row a type.
enum class key_type {
    number,    // a number, or a text with one in C notation
    flag,      // true or false; a driver may say more than 1, which stays a number
    word,      // one of some words; what has no word stays a number
    words,     // a list of words, each for a bit or more; bits without a word stay a number
    text,      // bytes without NUL, see text.h
    texts,     // a list of such texts
    hex,       // bytes in hexadecimal, see hex.h
    mac,       // "00:50:56:aa:bb:cc"
    ipv4,      // "10.1.2.3"
    ipv6,      // "2001:db8::1"
    interface, // "Veth3", "Eth4/1", "Po1", or the index as a number
    numbers,   // a list of numbers, or a text such as "1,10-20"
    counters,  // a row for the keys "0", "1" and so on, each a number
    object,    // another table
    list,      // a list of objects of another table
    included,  // no key: the keys of another table stand here
};
constexpr size_t KEY_TYPES = static_cast<size_t>(key_type::included) + 1;

struct key_word {
    const char *name;
    uint32_t number; // of type words: the bits
};

// What a key says. Which member holds it goes by the type: bytes for texts, hex, MAC and IPv6
// addresses; numbers and texts for lists; number for all others, IPv4 addresses in network byte
// order.
struct key_value {
    enum class state {
        told,
        refused,     // the driver does not tell it, or nothing is said
        out_of_place // the object around it is not there
    };
    state is = state::told;
    uint64_t number = 0;
    std::string bytes{};
    std::vector<uint32_t> numbers{};
    std::vector<std::string> texts{};

    bool operator==(const key_value &) const = default;
};

struct key_table;

// How a row reaches its value or its child in an object. Functions that a type does not need are
// null.
struct key_access {
    key_value (*get)(const void *object) = nullptr;
    // False when the value has no place: it belongs to what the driver refuses.
    bool (*set)(void *object, const key_value &value) = nullptr;
    // True when `object` says nothing else than `other`, or has no place for the value: what `get`
    // would tell, without its copies. Null where `get` is cheap.
    bool (*same)(const void *object, const void *other) = nullptr;
    uint64_t most = 0;     // the largest number that the field holds, or the most bytes or items
    bool can_lack = false; // the value may be refused, or nothing said
    bool in_order = false; // of numbers: a list in its own order, not a set
    key_value (*get_at)(const void *object, uint32_t index) = nullptr; // of counters
    bool (*set_at)(void *object, uint32_t index, uint64_t number) = nullptr;
    // The object in the object, nullptr when it is not there.
    const void *(*look)(const void *object) = nullptr;
    void *(*open)(void *object) = nullptr; // the same, made when it is not there
    void (*drop)(void *object) = nullptr;  // takes it away
    // Of a list: visit the items in their order; false when there is no list. Append an item that
    // the table made, which is left empty. Say that there is no list.
    bool (*each)(const void *object, const std::function<void(const void *item)> &visit) = nullptr;
    void (*append)(void *object, void *item) = nullptr;
};

struct key {
    const char *name;
    key_type type;
    const char *meaning; // one line, in the operator's terms
    key_access access;
    const key_table *table = nullptr; // of objects, lists and what is included
    std::span<const key_word> words{};
    const char *unit = "";
    uint64_t least = 0;              // of a number, or of each in a list
    uint64_t most = 0;               // likewise; of a text the bytes
    uint64_t items = UINT32_MAX;     // most of a list
    const char *otherwise = nullptr; // the default in words, where it is no value
    bool required = false;
    bool unique = false;    // no two items of a list agree in all their unique keys
    bool always = false;    // written even when it is the default
    bool refusable = false; // null says that the driver refuses it

    // Rows are written as the plain key and what is special about it.
    template <typename T> constexpr key with(T key::*member, T value) const {
        key changed = *this;
        changed.*member = value;
        return changed;
    }
    constexpr key in(const char *what) const {
        return with(&key::unit, what);
    }
    constexpr key from(uint64_t number) const {
        return with(&key::least, number);
    }
    constexpr key to(uint64_t number) const {
        return with(&key::most, number);
    }
    constexpr key up_to(uint64_t count) const {
        return with(&key::items, count);
    }
    constexpr key written() const {
        return with(&key::always, true);
    }
    constexpr key must() const {
        return written().with(&key::required, true);
    }
    constexpr key once() const {
        return must().with(&key::unique, true);
    }
    // The default is not a value but what the words say; null is not taken.
    constexpr key or_else(const char *words_for_it) const {
        return with(&key::otherwise, words_for_it).with(&key::refusable, false);
    }
};

struct key_table {
    const char *name;  // for references: "port", "bridge_domain"
    const char *title; // "A port"
    std::span<const key> keys;
    // An object of which nothing is said, at a place of its list.
    std::shared_ptr<void> (*make)(size_t place);
};

extern const key_table HOST_KEYS; // of a host: the file as a whole

// The parts of it, each with the object that it is walked with.
extern const key_table CARD_KEYS;          // card_state
extern const key_table HEAP_KEYS;          // kx_heap_record
extern const key_table MEMORY_POOL_KEYS;   // kx_memory_pool_record
extern const key_table BRIDGE_DOMAIN_KEYS; // keyed<...> of bridge_domain_table::by_index
extern const key_table PORT_KEYS;          // keyed<...> of port_table::by_ltl
extern const key_table PRIVATE_VLAN_KEYS;  // keyed<private_vlan_table>
extern const key_table PORT_CHANNEL_KEYS;  // keyed<...> of port_channel_table::by_ltl
extern const key_table L2_KEYS;            // l2_state
extern const key_table ACCESS_LIST_KEYS;   // access_list
extern const key_table LACP_KEYS;          // lacp_state
extern const key_table TRAFFIC_KEYS;       // keyed<traffic_table>
extern const key_table DROP_KEYS;          // keyed<drop_table>
extern const key_table STAGE_DROP_KEYS;    // kx_drop_counters
extern const key_table STAGE_KEYS;         // kx_stage_descriptor
extern const key_table AGENT_KEYS;         // agent_description

#endif
