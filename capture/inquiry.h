// Asks the driver for what a display would ask it, and keeps the answers that a described host
// could not give by itself.
//
// Nothing but the requests of READ_REQUESTS can be asked: any other one does not compile.
#ifndef CAPTURE_INQUIRY_H
#define CAPTURE_INQUIRY_H

#include "capture/driver_request.h"
#include "dpa/userspace/kxdpa_indirect.h"
#include "host/host.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

// All that a capture may ask. Every one of them only reads.
constexpr kxdpa_opcode READ_REQUESTS[] = {
    // The card
    KXDPA_OP_L3_CONTROL_VLAN, KXDPA_OP_CARD_UUID, KXDPA_OP_CARD_API, KXDPA_OP_CARD_NAME,
    KXDPA_OP_CARD_SLOT, KXDPA_OP_MAX_PORTS, KXDPA_OP_CARD_DOMAIN, KXDPA_OP_CARD_MAC,
    KXDPA_OP_LOAD_BALANCING, KXDPA_OP_AGENT_MAC, KXDPA_OP_SWITCH_NAME, KXDPA_OP_SWITCH_UUID,
    KXDPA_OP_CONTROL_VLAN, KXDPA_OP_PACKET_VLAN, KXDPA_OP_HEARTBEAT, KXDPA_OP_SWITCH_ALIAS,
    KXDPA_OP_VERSION_TEXT, KXDPA_OP_PROCESSORS, KXDPA_OP_MANAGEMENT_IPV6, KXDPA_OP_TUNNEL_MODE,
    KXDPA_OP_L3_CONTROL_INDEX, KXDPA_OP_PRIMARY_KRT_MAC, KXDPA_OP_SECONDARY_KRT_MAC,
    KXDPA_OP_UPGRADE_STATE, KXDPA_OP_LINK_UP_DELAY, KXDPA_OP_PRIMARY_KRT_PACKET_MAC,
    KXDPA_OP_PRIMARY_KRT_MANAGEMENT_MAC, KXDPA_OP_STANDBY_KRT_CONTROL_MAC, KXDPA_OP_PORTSET_EVENT,
    KXDPA_OP_GLOBAL_UUFB, KXDPA_OP_GET_VERSION_WORD, KXDPA_OP_L3_CONTROL_IPV4,
    KXDPA_OP_CONTROL_MULTICAST, KXDPA_OP_AGENT_STATUS, KXDPA_OP_DATAPATH_INITIALIZED,
    KXDPA_OP_TAG_NATIVE_VLAN, KXDPA_OP_GLOBAL_BPDU_GUARD, KXDPA_OP_GET_UPDATE_LEVEL,
    KXDPA_OP_L3SEC_MODE, KXDPA_OP_KRT_UPTIME, KXDPA_OP_GLOBAL_BPDU_FILTER, KXDPA_OP_LEAF_MODE,
    KXDPA_OP_OPFLEX_SDK_VERSION,
    // Memory and asserts
    KXDPA_OP_NEXT_HEAP, KXDPA_OP_NEXT_MEMORY_POOL, KXDPA_OP_ASSERT_COUNT,
    // Ports
    KXDPA_OP_NEXT_LTL, KXDPA_OP_PORT_RECORD, KXDPA_OP_PORT_STATISTICS, KXDPA_OP_PORT_MAC,
    KXDPA_OP_VLAN_FORWARDING, KXDPA_OP_PINNED_PORTS, KXDPA_OP_PORT_PVLAN, KXDPA_OP_PORT_SECURITY,
    KXDPA_OP_STAGE_DESCRIPTOR, KXDPA_OP_SECURE_PORT_STATE, KXDPA_OP_LACP_BIT,
    KXDPA_OP_DROP_COUNTERS, KXDPA_OP_MULTICAST_DROPS, KXDPA_OP_FLOOD_DROPS, KXDPA_OP_PORT_VLAN_SET,
    KXDPA_OP_PORT_CHANNEL_RECORD, KXDPA_OP_PINNING_MODE,
    // VLANs, bridge domains, segments
    KXDPA_OP_BD_COUNT, KXDPA_OP_BD_PORT_COUNT, KXDPA_OP_BD_NEXT_PORT, KXDPA_OP_BD_RECORD,
    KXDPA_OP_VLAN_COUNT, KXDPA_OP_NEXT_VLAN, KXDPA_OP_NEXT_BD, KXDPA_OP_BD_BY_VLAN,
    KXDPA_OP_BD_BY_SWBD, KXDPA_OP_NEXT_VLAN_GROUP, KXDPA_OP_BD_BY_NAME, KXDPA_OP_BD_BY_SEGMENT,
    KXDPA_OP_BD_BY_VLAN_L2,
    // L2 tables
    KXDPA_OP_L2_ENTRY_COUNT, KXDPA_OP_L2_TABLE_LIMIT, KXDPA_OP_L2_AGING_TIME,
    KXDPA_OP_NEXT_L2_ENTRY, KXDPA_OP_L2_SLOTS, KXDPA_OP_L2_AGING_STATISTICS,
    KXDPA_OP_L2_ENTRY_TOTALS, KXDPA_OP_GET_MAC_TABLE,
    // Access control lists
    KXDPA_OP_ACL_COUNT, KXDPA_OP_ACL_LIST,
    // LACP
    KXDPA_OP_LACP_PDU_CACHE, KXDPA_OP_LACP_OFFLOAD, KXDPA_OP_LACP_HOST_DATA,
    KXDPA_OP_LACP_UPGRADE_NOTIFY, KXDPA_OP_LACP_CARRIERS, KXDPA_OP_LACP_PORT_STATE};

constexpr bool only_reads(kxdpa_opcode opcode) {
    for (const kxdpa_opcode allowed : READ_REQUESTS) {
        if (allowed == opcode) {
            return true;
        }
    }
    return false;
}

// What a refusal means.
enum class if_refused {
    LEFT_OUT, // the described host refuses it alike when the thing is left out
    KEPT,     // the described host would answer all the same
    WALK_END, // like LEFT_OUT, and nothing that anybody misses
};

using byte_span = std::span<const uint8_t>;

template <typename Record> byte_span bytes_of(const Record &record) {
    return {reinterpret_cast<const uint8_t *>(&record), sizeof record};
}

class inquiry {
public:
    // With `shows_progress`, what is being asked shows on standard error once a second has passed.
    // `is_wanted` is called now and then; once it returns false nothing more is asked.
    explicit inquiry(bool shows_progress = false, bool (*is_wanted)() = nullptr);

    // What is asked about from now on, in an operator's words.
    void begin(const char *what) {
        asking_about_ = what;
    }

    // Ask for a fixed-size reply into `reply`, which is cleared before. False when it is refused.
    template <kxdpa_opcode opcode, typename Reply>
    bool get(uint32_t argument, Reply *reply, if_refused meaning = if_refused::LEFT_OUT) {
        static_assert(only_reads(opcode));
        *reply = {};
        if (!may_ask()) {
            return false;
        }
        const uint32_t status = kx_dpa_get(opcode, argument, reply);
        return status == KXDPA_STATUS_SUCCESS
                   ? answered(opcode)
                   : refused({opcode, argument, {}}, status, meaning, {}, bytes_of(*reply));
    }

    // The same for a value that is empty where it is refused.
    template <kxdpa_opcode opcode, typename Value>
    void get(uint32_t argument, std::optional<Value> *value) {
        Value told;
        *value = get<opcode>(argument, &told) ? std::optional(told) : std::nullopt;
    }

    // `record` is what is asked with and what comes back.
    template <kxdpa_opcode opcode, typename Record>
    bool exchange(uint32_t argument, Record *record, if_refused meaning = if_refused::LEFT_OUT) {
        static_assert(only_reads(opcode));
        if (!may_ask()) {
            return false;
        }
        const Record asked = *record;
        const uint32_t status = kx_dpa_exchange(opcode, argument, record);
        return status == KXDPA_STATUS_SUCCESS
                   ? answered(opcode)
                   : refused(with_input(opcode, argument, asked), status, meaning, bytes_of(asked),
                             bytes_of(*record));
    }

    // The same with the record's size as its capacity, which sends the whole record.
    template <kxdpa_opcode opcode, typename Record>
    bool exchange_variable(uint32_t argument, Record *record,
                           if_refused meaning = if_refused::LEFT_OUT) {
        static_assert(only_reads(opcode));
        if (!may_ask()) {
            return false;
        }
        const Record asked = *record;
        // The capacity comes on top of the length, so a driver may write as much again.
        struct {
            Record record;
            uint8_t behind[sizeof(Record)];
        } buffer = {asked, {}};
        uint32_t capacity = sizeof asked;
        const uint32_t status =
            kx_dpa_call_indirect1(opcode, argument, KXDPA_FLAG_IN | KXDPA_FLAG_OUT | KXDPA_FLAG_MAX,
                                  &buffer, sizeof asked, &capacity);
        *record = buffer.record;
        return status == KXDPA_STATUS_SUCCESS
                   ? answered(opcode)
                   : refused(with_input(opcode, argument, asked), status, meaning, bytes_of(asked),
                             bytes_of(*record));
    }

    // Ask for a variable-length reply into `buffer` of `size` bytes, which is cleared before, with
    // the capacity `*capacity`. The word is left as the driver left it.
    template <kxdpa_opcode opcode>
    bool get_variable(uint32_t argument, void *buffer, size_t size, uint32_t *capacity,
                      if_refused meaning = if_refused::LEFT_OUT) {
        static_assert(only_reads(opcode));
        std::memset(buffer, 0, size);
        if (!may_ask()) {
            return false;
        }
        const uint32_t asked = *capacity;
        const uint32_t status = kx_dpa_get_variable(opcode, argument, buffer, capacity);
        return status == KXDPA_STATUS_SUCCESS
                   ? answered(opcode)
                   : refused({opcode, argument, {}}, status, meaning, {},
                             {static_cast<const uint8_t *>(buffer), asked},
                             *capacity == asked ? std::nullopt : std::optional(*capacity));
    }

    // The request with a key in one buffer and the reply in another, which is cleared before.
    template <kxdpa_opcode opcode, typename Key, typename Reply>
    bool get_by_key(uint32_t argument, Key *key, Reply *reply,
                    if_refused meaning = if_refused::LEFT_OUT) {
        static_assert(only_reads(opcode));
        *reply = {};
        if (!may_ask()) {
            return false;
        }
        const uint32_t status =
            kx_dpa_call_indirect2(opcode, argument, KXDPA_FLAG_OUT | KXDPA_FLAG_IN | KXDPA_FLAG_TWO,
                                  key, sizeof *key, nullptr, reply, sizeof *reply, nullptr);
        return status == KXDPA_STATUS_SUCCESS ? answered(opcode)
                                              : refused(with_input(opcode, argument, *key), status,
                                                        meaning, {}, bytes_of(*reply));
    }

    // Keep an answer as it is: the described host would give another one.
    void keep(const driver_request &request, uint32_t status, std::optional<byte_span> reply,
              std::optional<uint32_t> returned = std::nullopt);
    template <typename Record>
    void keep_reply(kxdpa_opcode opcode, uint32_t argument, const Record &reply) {
        keep({opcode, argument, {}}, KXDPA_STATUS_SUCCESS, bytes_of(reply));
    }
    template <typename Input, typename Record>
    void keep_reply(kxdpa_opcode opcode, uint32_t argument, const Input &input,
                    const Record &reply) {
        keep(with_input(opcode, argument, input), KXDPA_STATUS_SUCCESS, bytes_of(reply));
    }

    // Keep that a request is refused which the described host would answer, as for
    // if_refused::KEPT.
    void keep_refusal(kxdpa_opcode opcode, uint32_t argument) {
        keep({opcode, argument, {}}, HOST_STATUS_NOT_FOUND, std::nullopt);
    }
    template <typename Input>
    void keep_refusal(kxdpa_opcode opcode, uint32_t argument, const Input &input) {
        keep(with_input(opcode, argument, input), HOST_STATUS_NOT_FOUND, std::nullopt);
    }

    // One line about something that the capture could not do.
    void report(std::string line) {
        reports_.push_back(std::move(line));
    }

    // The walk was cut after so many entries.
    void report_endless_walk(kxdpa_opcode opcode, size_t entries);
    // True once so many walks of the opcode were cut that no other one is worth beginning.
    bool is_hopeless(kxdpa_opcode opcode) const {
        return tallies_[opcode].endless == HOPELESS_WALKS;
    }

    // The answers that were kept, those that an opcode always gave alike as one.
    std::vector<override_rule> overrides() const;
    // Lines for standard error: what was reported, and the refused requests by opcode.
    std::vector<std::string> reports() const;
    // Take the progress line away.
    void end_progress();

private:
    struct tally {
        uint32_t answered = 0;
        uint32_t refused = 0; // walk ends among them
        uint32_t missed = 0;  // refusals without the walk ends
        uint32_t kept = 0;    // answers that were kept
        uint32_t endless = 0; // walks that were cut
    };

    // Far more than a large host needs. Behind these requests nothing more is asked, and behind
    // these answers none is kept.
    static constexpr uint64_t REQUESTS_LIMIT = uint64_t{1} << 24;
    static constexpr size_t KEPT_LIMIT = size_t{1} << 16;
    static constexpr uint32_t HOPELESS_WALKS = 3;

    static constexpr uint64_t REQUESTS_BETWEEN_LOOKS = 64;

    template <typename Input>
    static driver_request with_input(kxdpa_opcode opcode, uint32_t argument, const Input &input) {
        const byte_span bytes = bytes_of(input);
        return {opcode, argument, std::vector<uint8_t>(bytes.begin(), bytes.end())};
    }

    bool answered(uint16_t opcode) {
        tallies_[opcode].answered++;
        return true;
    }
    // Count the refusal, and keep it unless it is the described host's own. A reply that differs
    // from what stood in the buffer before (zeros when empty) was written all the same. Returns
    // false.
    bool refused(const driver_request &request, uint32_t status, if_refused meaning,
                 byte_span before, byte_span reply,
                 std::optional<uint32_t> returned = std::nullopt);
    bool may_ask() {
        if (requests_ == REQUESTS_LIMIT || given_up_) {
            return false;
        }
        if (++requests_ % REQUESTS_BETWEEN_LOOKS == 0) {
            look_around();
        }
        return true;
    }
    void look_around();
    void show_progress();

    std::vector<tally> tallies_; // by opcode
    std::vector<override_rule> kept_;
    std::set<driver_request> kept_requests_;
    std::vector<std::string> reports_;
    const char *asking_about_ = "";
    uint64_t requests_ = 0;
    bool shows_progress_;
    std::string progress_; // the line that is shown
    bool (*is_wanted_)();
    bool given_up_ = false;
    std::chrono::steady_clock::time_point next_progress_;
};

#endif
