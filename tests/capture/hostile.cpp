// Recordings replayed: every row of the command table, with a few of its arguments, on a hostile
// driver, and the recording of the run on a simulated host. And captures of hostile drivers, which
// end and give a host file.
//
//     capture_hostile [--every N] SEED...
//     capture_hostile --limits
//
// prints how many rows, runs and requests were replayed and captured, and exits with 0. A
// difference ends it, with a line on standard error that names the seed and the command. With
// --every only each Nth run and capture is done, each as it is without it, and no capture of a walk
// upwards for ever: its host file takes the sanitizers minutes. With --limits only what meets the
// limits of captures and recordings is done.
#include "capture/capture.h"
#include "capture/recorder.h"
#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/kestrel_cmd_list.h"
#include "handlers/port/bridge_domain_record.h"
#include "handlers/port/counter_records.h"
#include "handlers/port/l2_record.h"
#include "handlers/port/port_record.h"
#include "host/host_file.h"
#include "sim/host_programs.h"
#include "tests/capture/tool_run.h"
#include "tests/hostile/hostile_driver.h"
#include "tests/hostile/row_arguments.h"
#include "tests/rows.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

uint32_t every = 1;
uint64_t turn = 0;

bool is_done_now() {
    return turn++ % every == 0;
}

struct tally {
    std::set<std::string> rows;
    uint64_t runs = 0;
    uint64_t requests = 0;
    uint64_t captures = 0;
} done;

int answer_hostile(kxdpa_request &record) {
    return hostile_driver_answer(&record) == 0 ? 0 : errno;
}

[[noreturn]] void give_up(uint64_t seed, const std::string &command, const std::string &what) {
    std::fprintf(stderr, "seed %llu: %s\n%s\n", static_cast<unsigned long long>(seed),
                 command.c_str(), what.c_str());
    _exit(1);
}

// The command on a hostile driver, on a host whose own program prints `address`, and again from
// nothing but the file of the recording.
void replay(uint64_t seed, const std::string &command,
            const std::optional<std::string> &address = std::nullopt) {
    hostile_driver_restart(seed);
    std::string error;
    std::string text;
    tool_run recorded;
    {
        host recording_on;
        recording_on.management_address = address;
        host_programs programs;
        if (!programs.install(recording_on, error))
            give_up(seed, command, error);
        recorder_start();
        recorded = run_tool({command}, answer_hostile);
        host told;
        const std::string why = recorder_stop(told);
        if (why == TOO_LARGE)
            give_up(seed, command, why);
        text = write_host(told);
    }
    host read;
    host_programs programs;
    if (!parse_host(text, "recording", read, error) || !programs.install(read, error))
        give_up(seed, command, error + "\n" + text);
    model simulated(std::move(read));
    simulated.complain = [&](const std::string &line) { give_up(seed, command, line); };
    const tool_run replayed = run_tool({command}, driver_of(simulated));
    if (replayed != recorded) {
        give_up(seed, command,
                "recorded:\n" + recorded.text + "replayed:\n" + replayed.text + text);
    }
    done.runs++;
    done.requests += recorded.requests.size();
}

bool is_recorded(const kestrel_cmd_row &row) {
    // The agent's pipe is no driver.
    return row.kind == KESTREL_CMD_COMMAND && row.handler != kx_dpa_cmd;
}

// One line of this display comes from a program of the host.
void replay_card(hostile_random &random) {
    static const std::optional<std::string> addresses[] = {
        std::nullopt, "", "10.1.2.3", "no address", "a-line-that-does-not-fit-into-the-room"};
    for (const auto &address : addresses) {
        const uint64_t run_seed = uint64_t{random.next()} << 32 | random.next();
        replay(run_seed, "show card", address);
    }
}

void replay_rows(uint64_t seed) {
    hostile_random random(seed);
    for (const kestrel_cmd_row &row : kestrel_cmd_list) {
        if (!is_recorded(row))
            continue;
        const std::string command = command_of(row);
        done.rows.insert(command);
        if (row.handler == kx_card_dump) {
            replay_card(random);
            continue;
        }
        for (const std::string &argument : arguments_of(row, random)) {
            const uint64_t run_seed = uint64_t{random.next()} << 32 | random.next();
            if (is_done_now())
                replay(run_seed, command + (argument.empty() ? "" : " ") + argument);
        }
    }
}

// --- Captures ---

constexpr uint32_t CAPTURES_OF_A_SEED = 40;

// Returns what was cut.
std::vector<std::string> capture(uint64_t seed, const char *what, const test_driver &driver,
                                 std::chrono::seconds time_limit = std::chrono::minutes(10)) {
    set_test_driver(driver);
    host captured;
    capture_host({.time_limit = time_limit}, "", captured);
    std::vector<std::string> unsaid;
    const std::string text = write_host(captured, {}, &unsaid);
    host described;
    std::string error;
    if (!parse_host(text, "capture", described, error))
        give_up(seed, what, error + "\n" + text);
    if (!unsaid.empty())
        give_up(seed, what, "no key says " + unsaid.front());
    done.captures++;
    return captured.capture->cut.value_or(std::vector<std::string>());
}

void capture_hostile_drivers(uint64_t seed) {
    hostile_random random(seed);
    for (uint32_t i = 0; i < CAPTURES_OF_A_SEED; i++) {
        const uint64_t run_seed = uint64_t{random.next()} << 32 | random.next();
        if (is_done_now()) {
            hostile_driver_restart(run_seed);
            capture(run_seed, "capture", answer_hostile);
        }
    }
}

// Every walk goes on for ever, upwards or in a circle. Ports without VLANs keep it within memory.
void capture_endless_driver(uint32_t circle) {
    uint32_t last = 0;
    const std::vector<std::string> cut = capture(circle, "endless", [&](kxdpa_request &record) {
        const bool two = (record.flags & KXDPA_FLAG_TWO) != 0;
        auto *const bytes = reinterpret_cast<uint8_t *>(two ? record.buf2 : record.buf1);
        const uint32_t size = two ? record.len2 : record.len1;
        record.status = record.opcode == KXDPA_OP_PORT_VLAN_SET ? 5 : KXDPA_STATUS_SUCCESS;
        last = circle == 0 ? last + 1 : last % circle + 1;
        for (uint32_t at = 0; record.status == 0 && at + sizeof last <= size; at += sizeof last)
            memcpy(bytes + at, &last, sizeof last);
        return 0;
    });
    if (cut.empty())
        give_up(circle, "endless", "nothing is cut");
}

uint8_t *reply_of(const kxdpa_request &record) {
    const bool two = (record.flags & KXDPA_FLAG_TWO) != 0;
    return reinterpret_cast<uint8_t *>(two ? record.buf2 : record.buf1);
}

template <typename Value> void tell(kxdpa_request &record, Value value) {
    record.status = KXDPA_STATUS_SUCCESS;
    memcpy(reply_of(record), &value, sizeof value);
}

// That a capture of the test's driver is cut for this reason.
void expect_cut(const char *what, const std::string &expected,
                const std::set<std::string> &keys = {}) {
    host captured;
    capture_host({.keys = keys}, "", captured);
    const auto cut = captured.capture->cut.value_or(std::vector<std::string>());
    if (std::count(cut.begin(), cut.end(), expected) != 1)
        give_up(0, what, cut.empty() ? "nothing is cut" : cut.front());
}

// A driver with one bridge domain, one of whose walks goes upwards for ever.
void capture_endless_walks() {
    const struct {
        kxdpa_opcode opcode;
        const char *key;
        const char *entries;
    } rows[] = {
        {KXDPA_OP_NEXT_LTL, "ports", "4096"},
        {KXDPA_OP_BD_NEXT_PORT, "bridge_domains", "4096"},
        {KXDPA_OP_NEXT_L2_ENTRY, "l2", "65536"},
        {KXDPA_OP_L2_SLOTS, "l2", "65536"},
        {KXDPA_OP_NEXT_VLAN, "vlans", "16384"},
        {KXDPA_OP_NEXT_BD, "bridge_domains", "16384"},
        {KXDPA_OP_NEXT_VLAN_GROUP, "bridge_domains", "16384"},
        {KXDPA_OP_NEXT_HEAP, "heaps", "16384"},
        {KXDPA_OP_NEXT_MEMORY_POOL, "memory_pools", "16384"},
    };
    for (const auto &row : rows) {
        uint32_t last = 0;
        set_test_driver([&](kxdpa_request &record) {
            record.status = 5;
            if (record.opcode == row.opcode) {
                last++;
                const uint32_t size = record.len2 != 0 ? record.len2 : record.len1;
                for (uint32_t at = 0; at + sizeof last <= size; at += sizeof last)
                    memcpy(reply_of(record) + at, &last, sizeof last);
                record.status = KXDPA_STATUS_SUCCESS;
            } else if (record.opcode == KXDPA_OP_NEXT_BD && record.arg == 0) {
                tell(record, uint32_t{1});
            } else if (record.opcode == KXDPA_OP_BD_RECORD) {
                kx_bd_record bd{};
                bd.vlan = 1;
                tell(record, bd);
            } else if (record.opcode == KXDPA_OP_L2_TABLE_LIMIT ||
                       record.opcode == KXDPA_OP_L2_ENTRY_COUNT ||
                       record.opcode == KXDPA_OP_L2_AGING_TIME) {
                tell(record, uint32_t{1});
            }
            return 0;
        });
        expect_cut("endless walk",
                   "the walk of opcode " + std::to_string(row.opcode) +
                       " does not end and is cut after " + row.entries + " entries",
                   {row.key});
    }
}

// What is equal is remembered once, but the description keeps it for each bridge domain.
void capture_equal_tables() {
    constexpr uint32_t DOMAINS = 4000, ENTRIES = 60000;
    set_test_driver([](kxdpa_request &record) {
        record.status = 5;
        if (record.opcode == KXDPA_OP_NEXT_BD && record.arg < DOMAINS) {
            tell(record, record.arg + 1);
        } else if (record.opcode == KXDPA_OP_BD_RECORD) {
            tell(record, kx_bd_record{});
        } else if (record.opcode == KXDPA_OP_BD_COUNT) {
            tell(record, DOMAINS);
        } else if (record.opcode == KXDPA_OP_L2_ENTRY_COUNT ||
                   record.opcode == KXDPA_OP_L2_TABLE_LIMIT ||
                   record.opcode == KXDPA_OP_L2_AGING_TIME) {
            tell(record, ENTRIES);
        } else if (record.opcode == KXDPA_OP_NEXT_L2_ENTRY) {
            kx_l2_entry entry{};
            memcpy(entry.mac, reinterpret_cast<const void *>(record.buf1), sizeof entry.mac);
            uint32_t number = 0;
            memcpy(&number, entry.mac, sizeof number);
            memcpy(entry.mac, &++number, sizeof number);
            if (number <= ENTRIES)
                tell(record, entry);
        }
        return 0;
    });
    expect_cut("equal tables", "more answers than 128 MiB hold");
}

// Each port says of each VLAN of each view whether it forwards, and all say the same.
void capture_many_trunks() {
    constexpr uint32_t LAST_PORT = 4000, DOMAINS = 4094;
    set_test_driver([](kxdpa_request &record) {
        const bool steps = record.opcode == KXDPA_OP_NEXT_LTL || record.opcode == KXDPA_OP_NEXT_BD;
        const uint32_t last = record.opcode == KXDPA_OP_NEXT_BD ? DOMAINS : LAST_PORT;
        record.status = 5;
        if (steps && record.arg + 1 <= last) {
            tell(record, record.arg + 1);
        } else if (record.opcode == KXDPA_OP_PORT_RECORD) {
            kx_port_record port{};
            port.vlan_mode = KX_VLAN_MODE;
            tell(record, port);
        } else if (record.opcode == KXDPA_OP_BD_RECORD) {
            kx_bd_record bd{};
            bd.vlan = static_cast<uint16_t>(record.arg);
            tell(record, bd);
        } else if (record.opcode == KXDPA_OP_VLAN_FORWARDING ||
                   record.opcode == KXDPA_OP_PORT_PVLAN) {
            record.status = KXDPA_STATUS_SUCCESS;
        }
        return 0;
    });
    expect_cut("many trunks", "no end after 33554432 requests");
}

void capture_slow_driver() {
    hostile_driver_restart(1);
    const std::vector<std::string> cut =
        capture(1, "slow", answer_hostile, std::chrono::seconds(0));
    if (std::count(cut.begin(), cut.end(), "no end after 0 seconds") != 1)
        give_up(1, "slow", "the time is not limited");
}

// More than a host file holds.
void record_too_much() {
    constexpr uint32_t REQUESTS = 400000;
    set_test_driver([](kxdpa_request &record) {
        auto *const bytes = reinterpret_cast<uint8_t *>(record.buf1);
        memcpy(bytes, &record.arg, sizeof record.arg);
        memset(bytes + sizeof record.arg, 1, record.len1 - sizeof record.arg);
        record.status = KXDPA_STATUS_SUCCESS;
        return 0;
    });
    for (const uint32_t requests : {1U, REQUESTS}) {
        recorder_start();
        kx_dpa_api_init();
        kx_drop_counters counters{};
        for (uint32_t i = 0; i < requests; i++)
            kx_dpa_get(KXDPA_OP_DROP_COUNTERS, i, &counters);
        kx_dpa_api_exit();
        host recorded;
        const std::string why = recorder_stop(recorded);
        if (why != (requests == REQUESTS ? TOO_LARGE : ""))
            give_up(requests, "recording", why.empty() ? "is not limited" : why);
    }
}

void meet_limits() {
    capture_endless_driver(0);
    capture_equal_tables();
    capture_many_trunks();
    record_too_much();
}

} // namespace

int main(int argc, char *argv[]) {
    int first = 1;
    if (argc == 2 && std::strcmp(argv[1], "--limits") == 0) {
        meet_limits();
        return 0;
    }
    if (argc > 2 && std::strcmp(argv[1], "--every") == 0) {
        every = std::max(1U, static_cast<uint32_t>(std::strtoul(argv[2], nullptr, 0)));
        first = 3;
    }
    for (int i = first; i < argc; i++) {
        char *end = nullptr;
        const uint64_t seed = std::strtoull(argv[i], &end, 0);
        if (*end != '\0')
            give_up(seed, argv[i], "is no seed");
        replay_rows(seed);
        capture_hostile_drivers(seed);
    }
    if (done.runs == 0)
        give_up(0, argv[0], "no seed is given");
    if (every == 1)
        meet_limits();
    capture_endless_driver(7);
    capture_endless_walks();
    capture_slow_driver();
    std::printf("captures of hostile drivers: %llu\n",
                static_cast<unsigned long long>(done.captures));
    std::printf("recordings: %zu rows, %llu runs, %llu requests replayed\n", done.rows.size(),
                static_cast<unsigned long long>(done.runs),
                static_cast<unsigned long long>(done.requests));
    return 0;
}
