// The calls that stand between the tool and the model, inside this process.
#include "sim/interpose.h"

#include "dpa/userspace/kxdpa_indirect.h"
#include "dpa/userspace/kxdpa_opcodes.h"

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

struct attached_model : model {
    std::vector<std::string> complaints;
    attached_model() {
        state.card.domain = 7;
        complain = [this](const std::string &line) { complaints.push_back(line); };
        interpose_model(this);
    }
    ~attached_model() {
        interpose_model(nullptr);
    }
    attached_model(const attached_model &) = delete;
    attached_model &operator=(const attached_model &) = delete;
};

TEST(Interpose, EveryOpenReachesTheModel) {
    const attached_model driver;
    const int descriptors[] = {
        open(DRIVER_DEVICE_PATH, O_RDONLY), open64(DRIVER_DEVICE_PATH, O_RDONLY | O_CLOEXEC),
        openat(AT_FDCWD, DRIVER_DEVICE_PATH, O_RDONLY), openat64(3, DRIVER_DEVICE_PATH, O_RDONLY)};
    for (const int descriptor : descriptors) {
        uint32_t domain = 0;
        kx_dpa_call_fd = descriptor;
        EXPECT_EQ(kx_dpa_call_indirect1(KXDPA_OP_CARD_DOMAIN, 0, KXDPA_FLAG_OUT, &domain,
                                        sizeof domain, nullptr),
                  0U);
        EXPECT_EQ(domain, 7U);
        EXPECT_EQ(kx_platform_close(), 0);
    }
    kx_dpa_call_fd = -1;
    EXPECT_TRUE(driver.complaints.empty());
}

TEST(Interpose, RefusesOtherRequestCodesAndBadAddresses) {
    const attached_model driver;
    const int device = open(DRIVER_DEVICE_PATH, O_RDONLY);
    kxdpa_request record{};
    EXPECT_EQ(ioctl(device, 5, &record), -1);
    EXPECT_EQ(errno, ENOTTY);
    EXPECT_EQ(driver.complaints, std::vector<std::string>{"request code is 5, expected 0"});
    EXPECT_EQ(ioctl(device, 0, nullptr), -1);
    EXPECT_EQ(errno, EFAULT);
    close(device);
}

TEST(Interpose, OtherFilesPassThrough) {
    const attached_model driver;
    // A descriptor that was the device's belongs to the next file that gets its number.
    const int device = open(DRIVER_DEVICE_PATH, O_RDONLY);
    close(device);
    char path[] = "/tmp/interpose-XXXXXX";
    close(mkstemp(path));
    unlink(path);
    const int file = open(path, O_RDWR | O_CREAT | O_EXCL, 0640);
    EXPECT_EQ(file, device);
    struct stat created {};
    EXPECT_EQ(fstat(file, &created), 0);
    EXPECT_EQ(created.st_mode & 07777, 0640U);
    EXPECT_EQ(write(file, "abc", 3), 3);
    int waiting = 0;
    lseek(file, 0, SEEK_SET);
    EXPECT_EQ(ioctl(file, FIONREAD, &waiting), 0);
    EXPECT_EQ(waiting, 3);
    EXPECT_EQ(close(file), 0);
    EXPECT_EQ(close(file), -1);
    unlink(path);
}

} // namespace
