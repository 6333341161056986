// The model as a driver: what it refuses, what it writes into the caller's memory, what it
// replaces.
#include "sim/model.h"

#include "dpa/userspace/kxdpa_opcodes.h"
#include "sim/answer.h"
#include "sim/builtin_host.h"
#include "sim/exchange.h"
#include "tests/golden.h"
#include "tests/host/described.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr uint8_t NO_REPLY = 0xEE;

// One model with one caller: two buffers, filled with a mark to show what was written.
struct bench {
    model driver;
    std::vector<std::string> trace;
    std::vector<std::string> complaints;
    uint8_t buffer1[1400];
    uint8_t buffer2[64];

    explicit bench(const std::string &host_text) {
        driver.take(described(host_text));
        driver.trace = [this](const std::string &line) { trace.push_back(line); };
        driver.complain = [this](const std::string &line) { complaints.push_back(line); };
        memset(buffer1, NO_REPLY, sizeof buffer1);
        memset(buffer2, NO_REPLY, sizeof buffer2);
    }

    kxdpa_request request(uint16_t opcode, uint32_t arg, uint8_t flags, uint32_t len1) {
        kxdpa_request made{};
        made.opcode = opcode;
        made.marker = KXDPA_KERNEL_MARKER;
        made.version = KXDPA_KERNEL_VERSION;
        made.flags = flags;
        made.arg = arg;
        made.status = KXDPA_STATUS_NO_EXCHANGE;
        made.len1 = len1;
        if ((flags & KXDPA_FLAG_NODATA) == 0)
            made.buf1 = reinterpret_cast<uintptr_t>(buffer1);
        return made;
    }

    kxdpa_request variable(uint16_t opcode, uint32_t arg, uint8_t flags, uint32_t len1,
                           uint32_t capacity) {
        kxdpa_request made = request(opcode, arg, flags | KXDPA_FLAG_MAX, len1);
        made.max1 = capacity;
        made.max1_valid = 1;
        return made;
    }

    int ask(kxdpa_request &record) {
        own_memory memory;
        return model_request(driver, record, memory);
    }

    uint32_t status_of(uint16_t opcode, uint32_t arg, uint8_t flags, uint32_t len1) {
        kxdpa_request record = request(opcode, arg, flags, len1);
        EXPECT_EQ(ask(record), 0);
        return record.status;
    }

    // Bytes from the start of buffer 1 that were written.
    size_t written() const {
        size_t count = sizeof buffer1;
        while (count > 0 && buffer1[count - 1] == NO_REPLY)
            count--;
        return count;
    }
};

// Memory that nothing is taken from and nothing written into.
class no_memory : public caller_memory {
public:
    bool read(uint32_t, void *, uint32_t) override {
        ADD_FAILURE() << "read";
        return false;
    }
    bool write(uint32_t, const void *, uint32_t) override {
        ADD_FAILURE() << "written";
        return false;
    }
};

TEST(Model, ComplainsAboutTheFieldThatIsWrong) {
    const struct {
        const char *complaint;
        std::function<void(kxdpa_request &)> spoil;
    } rows[] = {
        {"op 44: marker is 3, expected 124", [](auto &r) { r.marker = KXDPA_SOCKET_MARKER; }},
        {"op 44: version is 0, expected 1", [](auto &r) { r.version = 0; }},
        {"op 44: reserved is 7, expected 0", [](auto &r) { r.reserved[2] = 7; }},
        {"op 44: flags is 3, expected 1", [](auto &r) { r.flags = 3; }},
        {"op 44: len1 is 1140, expected 1148", [](auto &r) { r.len1 = 1140; }},
        {"op 44: len2 is 4, expected 0", [](auto &r) { r.len2 = 4; }},
        {"op 44: max1_valid is 1, expected 0", [](auto &r) { r.max1_valid = 1; }},
        {"op 44: max2_valid is 2, expected 0", [](auto &r) { r.max2_valid = 2; }},
        {"op 44: max1 is 9, expected 0", [](auto &r) { r.max1 = 9; }},
        {"op 44: max2 is 9, expected 0", [](auto &r) { r.max2 = 9; }},
        {"op 44: buf1 is 0, expected a buffer", [](auto &r) { r.buf1 = 0; }},
        {"op 44: buf2 is set, expected 0", [](auto &r) { r.buf2 = r.buf1; }},
        {"op 44: length is 4294967295, expected at most 16777216",
         [](auto &r) { r.len2 = 0xFFFFFFFF; }},
        {"op 9999: length is 4294967295, expected at most 16777216",
         [](auto &r) {
             r.opcode = 9999;
             r.flags = 3;
             r.len1 = 0xFFFFFFFF;
         }},
    };
    no_memory memory;
    for (const auto &row : rows) {
        SCOPED_TRACE(row.complaint);
        bench on(R"({"ports": [{"ltl": 20}]})");
        kxdpa_request record = on.request(44, 2U << 24 | 20, KXDPA_FLAG_OUT, 1148);
        row.spoil(record);
        EXPECT_EQ(model_request(on.driver, record, memory), 0);
        EXPECT_EQ(record.status, SIM_STATUS_MALFORMED);
        EXPECT_EQ(on.complaints, std::vector<std::string>{row.complaint});
    }
}

TEST(Model, TakesOnlyItsOwnCodeAndGoodAddresses) {
    bench on(R"({"card": {"domain": 9}})");
    own_memory memory;
    kxdpa_request record = on.request(63, 0, KXDPA_FLAG_OUT, 4);
    const auto address = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(&record));
    EXPECT_EQ(model_ioctl(on.driver, 5, address, memory), ENOTTY);
    EXPECT_EQ(on.complaints, std::vector<std::string>{"request code is 5, expected 0"});
    EXPECT_EQ(model_ioctl(on.driver, 0, 4095, memory), EFAULT);
    EXPECT_EQ(record.status, KXDPA_STATUS_NO_EXCHANGE);
    EXPECT_EQ(model_ioctl(on.driver, 0, address, memory), 0);
    EXPECT_EQ(record.status, KXDPA_STATUS_SUCCESS);
    record.buf1 = 4095;
    EXPECT_EQ(model_ioctl(on.driver, 0, address, memory), EFAULT);
    record.status = KXDPA_STATUS_NO_EXCHANGE;
    on.driver.take_overrides(
        described(R"({"overrides": [{"opcode": 63, "error": 4000}]})").overrides);
    EXPECT_EQ(model_ioctl(on.driver, 0, address, memory), 4000);
    EXPECT_EQ(on.trace, (std::vector<std::string>{"op 63 arg 0x0 flags 1 len 4 -> 0",
                                                  "op 63 arg 0x0 flags 1 len 4 -> EFAULT",
                                                  "op 63 arg 0x0 flags 1 len 4 -> error 4000"}));
}

// Whatever it is told to reply, the driver writes no more than the request has room for; behind the
// room of the card's UUID, the type alone.
TEST(Model, NeverWritesBeyondTheRoom) {
    std::string text(builtin_host_text());
    size_t asked = 0;
    for (const char *override : {"", R"(, "reply": "77*9000")", R"(, "length": 9000)"}) {
        for (const family *part : all_families()) {
            for (const answer &form : *part) {
                SCOPED_TRACE(form.opcode);
                bench on(text);
                if (*override != '\0') {
                    const std::string opcode = std::to_string(form.opcode);
                    on.driver.take_overrides(
                        described(R"({"overrides": [{"opcode": )" + opcode + override + "}]}")
                            .overrides);
                }
                std::vector<uint8_t> first(10000, NO_REPLY);
                std::vector<uint8_t> second(10000, NO_REPLY);
                const bool two = (form.flags & KXDPA_FLAG_TWO) != 0;
                const uint32_t argument = form.argument == ANY_ARGUMENT ? 0 : form.argument;
                kxdpa_request record = on.request(form.opcode, argument, form.flags, form.len1);
                record.buf1 = record.buf1 == 0 ? 0 : reinterpret_cast<uintptr_t>(first.data());
                if ((form.flags & KXDPA_FLAG_MAX) != 0) {
                    record.max1 = form.capacity + 1;
                    record.max1_valid = 1;
                }
                if (two) {
                    record.buf2 = reinterpret_cast<uintptr_t>(second.data());
                    record.len2 = form.len2;
                }
                const uint32_t room = two ? record.len2 : record.len1 + record.max1;
                const uint32_t behind = form.opcode == KXDPA_OP_CARD_UUID ? 4 : 0;
                on.ask(record);
                EXPECT_TRUE(on.complaints.empty()) << on.complaints.at(0);
                const std::vector<uint8_t> &reply = two ? second : first;
                EXPECT_EQ(std::count(reply.begin() + room + behind, reply.end(), NO_REPLY),
                          static_cast<ptrdiff_t>(reply.size() - room - behind));
                asked++;
            }
        }
    }
    EXPECT_GT(asked, 300U);
}

TEST(Model, WantsRoomForAVariableReply) {
    bench on(R"({"ports": [{"ltl": 20, "mac": "00:50:56:aa:bb:cc"}]})");
    kxdpa_request small = on.variable(68, 20, KXDPA_FLAG_OUT, 0, 5);
    on.ask(small);
    EXPECT_EQ(on.complaints, std::vector<std::string>{"op 68: max1 is 5, expected at least 6"});
    kxdpa_request large = on.variable(68, 20, KXDPA_FLAG_OUT, 0, 32);
    on.ask(large);
    EXPECT_EQ(large.status, KXDPA_STATUS_SUCCESS);
    EXPECT_EQ(large.max1, 6U);
    EXPECT_EQ(on.written(), 6U);
    EXPECT_EQ(on.complaints.size(), 1U);
}

TEST(Model, UnknownOpcodesAndViewsAreErrorsWithoutAComplaint) {
    bench on(R"({"ports": [{"ltl": 20}]})");
    EXPECT_EQ(on.status_of(9999, 0, KXDPA_FLAG_OUT, 8), SIM_STATUS_UNKNOWN_OPCODE);
    EXPECT_EQ(on.status_of(44, 3U << 24 | 20, KXDPA_FLAG_OUT, 1148), HOST_STATUS_NOT_FOUND);
    EXPECT_TRUE(on.complaints.empty());
    EXPECT_EQ(on.written(), 0U);
}

TEST(Model, OverridesReplaceWhatTheyName) {
    for (const auto &row : golden("overrides.tsv")) {
        SCOPED_TRACE(row.at(0));
        bench on(R"({"ports": [{"ltl": 20, "mac": "01:02:03:04:05:06"}],
                     "overrides": [{"opcode": 68, )" +
                 row[0] + "}]}");
        kxdpa_request record = on.variable(68, 20, KXDPA_FLAG_OUT, 0, 32);
        EXPECT_EQ(on.ask(record), static_cast<int>(number(row.at(1))));
        EXPECT_EQ(record.status, number(row.at(2)));
        EXPECT_EQ(record.max1, number(row.at(3)));
        EXPECT_EQ(on.written(), number(row.at(4)));
    }
}

// A rule holds for its input whatever was asked before, and each request counts for all that ask
// for it.
TEST(Model, OverridesAskForTheInput) {
    bench on(R"({"overrides": [
        {"opcode": 9999, "in": "0101", "time": 2, "status": 12},
        {"opcode": 9999, "in": "0202", "status": 20},
        {"opcode": 9999, "argument": 7, "in": "0101", "status": 17},
        {"opcode": 9999, "time": 3, "status": 33},
        {"opcode": 9999, "in": "0101", "status": 10}]})");
    std::vector<size_t> met;
    on.driver.met = [&](size_t place) { met.push_back(place); };
    const struct {
        uint32_t arg;
        uint8_t input;
        uint32_t status;
    } rows[] = {{0, 1, 10}, {0, 2, 20}, {7, 1, 12}, {7, 1, 17}, {0, 3, 38}};
    for (const auto &row : rows) {
        on.buffer1[0] = on.buffer1[1] = row.input;
        kxdpa_request record = on.request(9999, row.arg, KXDPA_FLAG_IN, 2);
        EXPECT_EQ(on.ask(record), 0);
        EXPECT_EQ(record.status, row.status);
    }
    EXPECT_EQ(met, (std::vector<size_t>{4, 1, 0, 2}));
    override_rule any;
    any.opcode = 9999;
    any.status = 1;
    on.driver.take_overrides({any});
    EXPECT_EQ(on.status_of(9999, 0, KXDPA_FLAG_OUT, 2), 1U);
    any.opcode = 9998; // in the place of the other one
    on.driver.take_overrides({any});
    EXPECT_EQ(on.status_of(9999, 0, KXDPA_FLAG_OUT, 2), SIM_STATUS_UNKNOWN_OPCODE);
    EXPECT_EQ(on.status_of(9998, 0, KXDPA_FLAG_OUT, 2), 1U);
}

TEST(Model, OverrideOfTheSecondTimeHoldsOnce) {
    bench on(R"({"card": {"domain": 9},
                 "overrides": [{"opcode": 63, "time": 2, "error": "ENODEV"}]})");
    for (const int expected : {0, ENODEV, 0}) {
        kxdpa_request record = on.request(63, 0, KXDPA_FLAG_OUT, 4);
        EXPECT_EQ(on.ask(record), expected);
    }
    EXPECT_EQ(on.trace, (std::vector<std::string>{"op 63 arg 0x0 flags 1 len 4 -> 0",
                                                  "op 63 arg 0x0 flags 1 len 4 -> ENODEV",
                                                  "op 63 arg 0x0 flags 1 len 4 -> 0"}));
}

TEST(Model, ReplyOfTwoBuffersGoesIntoTheSecond) {
    bench on(R"({"overrides": [{"opcode": 9999, "reply": "0a0b0c"}]})");
    kxdpa_request record = on.request(9999, 0, 11, 2);
    on.buffer1[0] = on.buffer1[1] = 0x55;
    record.buf2 = reinterpret_cast<uintptr_t>(on.buffer2);
    record.len2 = 2;
    EXPECT_EQ(on.ask(record), 0);
    EXPECT_EQ(on.written(), 2U);
    EXPECT_EQ(on.buffer2[1], 0x0b);
    EXPECT_EQ(on.buffer2[2], NO_REPLY);
    EXPECT_EQ(on.trace.at(0), "op 9999 arg 0x0 flags 11 len 2 len2 2 in 5555 -> 0");
    kxdpa_request text = on.variable(9999, 31, 11, 0, 30);
    on.buffer1[2] = 0;
    text.buf2 = record.buf2;
    text.max2 = 20;
    text.max2_valid = 1;
    EXPECT_EQ(on.ask(text), 0);
    text.max2 = 10;
    on.driver.take_overrides({});
    EXPECT_EQ(on.ask(text), 0);
    EXPECT_EQ(on.trace.at(1),
              "op 9999 arg 0x1f flags 15 max 30 max2 20 in 5555 -> 0 max 30 max2 3");
    EXPECT_EQ(on.trace.at(2),
              "op 9999 arg 0x1f flags 15 max 30 max2 10 in 5555 -> 38 max 30 max2 10");
}

} // namespace
