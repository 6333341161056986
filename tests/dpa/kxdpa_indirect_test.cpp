#include "dpa/userspace/kxdpa_indirect.h"
#include "sim/interpose.h"
#include "tests/host/described.h"
#include "tests/infra/printed_by.h"

#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace {

// The driver for these requests: 700 succeeds, 701 is refused, 702 fails in the ioctl, 703 returns
// a length.
constexpr const char *DRIVER = R"({"overrides": [
    {"opcode": 700, "reply": "07000000"}, {"opcode": 701, "status": 77},
    {"opcode": 702, "error": "EIO"}, {"opcode": 703, "reply": "0102", "returned": 99}]})";

class KernelChannel : public testing::Test {
protected:
    void SetUp() override {
        driver.take(described(DRIVER));
        driver.trace = [this](const std::string &line) { requests += line + "\n"; };
        driver.complain = [](const std::string &line) { ADD_FAILURE() << line; };
        interpose_model(&driver);
        ASSERT_EQ(kx_dpa_api_init(), 0);
    }
    void TearDown() override {
        kx_debug_print_kxdpa_indirect = 0x87;
        kx_dpa_api_exit();
        interpose_model(nullptr);
    }
    model driver;
    std::string requests;
};

TEST_F(KernelChannel, IsOpenedReadOnlyAndNotInherited) {
    EXPECT_EQ(fcntl(kx_dpa_call_fd, F_GETFL) & O_ACCMODE, O_RDONLY);
    EXPECT_EQ(fcntl(kx_dpa_call_fd, F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(kx_platform_open(), kx_dpa_call_fd);
    EXPECT_EQ(kx_platform_close(), 0);
    interpose_model(nullptr);
    EXPECT_EQ(kx_platform_open(), -1);
    EXPECT_EQ(kx_dpa_api_init(), -1);
    EXPECT_EQ(kx_dpa_api_exit(), 0);
}

TEST_F(KernelChannel, TracesAndReturnsWhatHappened) {
    const auto asking = [](int form, int opcode) {
        return "kx_dpa_call_indirect" + (form == 0 ? "_simple" : std::to_string(form)) +
               ": Generating ioctl() for opcode " + std::to_string(opcode) + "\n";
    };
    const std::string place = "dpa/userspace/kxdpa_indirect.cpp";
    uint8_t key[4] = {1, 2, 3, 4};
    uint8_t reply[4] = {};
    uint32_t max1 = 0;
    uint32_t max2 = 0;
    const auto one = [&](int opcode, uint8_t flags, uint32_t *max) {
        return kx_dpa_call_indirect1(opcode, 0xABCDEF01, flags, key, 4, max);
    };
    const auto two = [&](int opcode, uint8_t flags, uint32_t *first, uint32_t *second) {
        return kx_dpa_call_indirect2(opcode, 5, flags, key, 4, first, reply, 3, second);
    };
    const auto simple = [&](uint16_t opcode) {
        return static_cast<uint32_t>(kx_dpa_call_indirect_simple(opcode, 6, 3, key, 4));
    };
    const struct {
        const char *what;
        uint32_t debug_word;
        std::function<uint32_t()> call;
        uint32_t status;
        std::string trace;
        std::string request; // as the driver saw it, "" for none
    } rows[] = {
        {"one buffer", 0x97, [&] { return one(700, 3, nullptr); }, 0, asking(1, 700),
         "op 700 arg 0xabcdef01 flags 3 len 4 in 01020304 -> 0\n"},
        {"a status that is the operation's", 0x97, [&] { return one(701, 1, nullptr); }, 77,
         asking(1, 701), "op 701 arg 0xabcdef01 flags 1 len 4 -> 77\n"},
        {"an opcode of more than 16 bits is cut", 0x10,
         [&] { return one(0x10000 + 701, 1, &max1); }, 77, asking(1, 0x10000 + 701),
         "op 701 arg 0xabcdef01 flags 1 len 4 -> 77\n"},
        {"traces are off by default", 0x87, [&] { return one(702, 1, nullptr); }, 1, "",
         "op 702 arg 0xabcdef01 flags 1 len 4 -> EIO\n"},
        {"one buffer, and the ioctl fails", 0x97, [&] { return one(702, 1, nullptr); }, 1,
         asking(1, 702) + place + "/152: Failed: -1, opcode 702\ndi status 1\n",
         "op 702 arg 0xabcdef01 flags 1 len 4 -> EIO\n"},
        {"one buffer without its capacity", 0x97, [&] { return one(700, 5, nullptr); }, 2,
         asking(1, 700) + place + "/134: Failed, opcode 700\n", ""},
        {"the same, silently", 0x87, [&] { return one(700, 5, nullptr); }, 2, "", ""},
        {"two buffers", 0x97, [&] { return two(700, 11, nullptr, nullptr); }, 0, asking(2, 700),
         "op 700 arg 0x5 flags 11 len 4 len2 3 in 01020304 -> 0\n"},
        {"two buffers, and the ioctl fails", 0x97, [&] { return two(702, 11, nullptr, nullptr); },
         1, asking(2, 702) + place + "/217: Failed, opcode 702\ndi status 1\n",
         "op 702 arg 0x5 flags 11 len 4 len2 3 in 01020304 -> EIO\n"},
        {"two buffers without the first capacity", 0x97,
         [&] { return two(700, 15, nullptr, &max2); }, 2,
         asking(2, 700) + place + "/190: Failed, opcode 700\n", ""},
        {"two buffers without the second", 0x97, [&] { return two(700, 15, &max1, nullptr); }, 2,
         asking(2, 700) + place + "/204: Failed, opcode 700\n", ""},
        {"simple", 0x97, [&] { return simple(701); }, 77, asking(0, 701),
         "op 701 arg 0x6 flags 3 len 4 in 01020304 -> 77\n"},
        {"simple, and the ioctl fails", 0x97, [&] { return simple(702); }, 1,
         asking(0, 702) + place + "/105: Failed\n",
         "op 702 arg 0x6 flags 3 len 4 in 01020304 -> EIO\n"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        kx_debug_print_kxdpa_indirect = row.debug_word;
        requests.clear();
        memcpy(key, "\1\2\3\4", sizeof key);
        uint32_t status = 0;
        EXPECT_EQ(traced_by([&] { status = row.call(); }), row.trace);
        EXPECT_EQ(status, row.status);
        EXPECT_EQ(requests, row.request);
    }
}

TEST_F(KernelChannel, HandsBackTheLengthsThatTheDriverLeft) {
    uint8_t key[4] = {};
    uint8_t reply[4] = {};
    uint32_t max1 = 3;
    uint32_t max2 = 4;
    EXPECT_EQ(kx_dpa_call_indirect1(703, 0, 5, reply, 0, &max2), 0U);
    EXPECT_EQ(max2, 99U);
    max2 = 4;
    EXPECT_EQ(kx_dpa_call_indirect1(703, 0, 1, reply, 4, &max2), 0U);
    EXPECT_EQ(max2, 4U) << "without the flag it is left alone";
    EXPECT_EQ(kx_dpa_call_indirect2(703, 0, 15, key, 0, &max1, reply, 0, &max2), 0U);
    EXPECT_EQ(max1, 3U);
    EXPECT_EQ(max2, 99U);
    EXPECT_EQ(reply[1], 2);
}

} // namespace
