#include "host/override.h"
#include "host/access.h"
#include "host/hex.h"
#include "host/keys.h"

#include <cerrno>

namespace {

constexpr uint64_t LAST_ERROR = 4095; // the kernel has no larger ones

constexpr key_word ERROR_NAMES[] = {{"EPERM", EPERM},   {"ENOENT", ENOENT}, {"EINTR", EINTR},
                                    {"EIO", EIO},       {"ENXIO", ENXIO},   {"EBADF", EBADF},
                                    {"EAGAIN", EAGAIN}, {"ENOMEM", ENOMEM}, {"EACCES", EACCES},
                                    {"EFAULT", EFAULT}, {"EBUSY", EBUSY},   {"ENODEV", ENODEV},
                                    {"EINVAL", EINVAL}, {"ENOTTY", ENOTTY}, {"ENOSYS", ENOSYS}};

constexpr key OVERRIDE_ROWS[] = {
    number_key("opcode", at<&override_rule::opcode>, "of the requests that it answers").must(),
    number_key("argument", at<&override_rule::argument>, "of those requests").or_else("any"),
    hex_key("in", at<&override_rule::in>, "the input of those requests, as the trace shows it")
        .or_else("any"),
    number_key("time", at<&override_rule::only_time>, "the n-th of those requests")
        .from(1)
        .or_else("each"),
    word_key("error", at<&override_rule::error>, ERROR_NAMES,
             "the ioctl fails with this errno, after what the other keys say is done")
        .from(1)
        .to(LAST_ERROR)
        .or_else("none"),
    number_key("status", at<&override_rule::status>, "this status, and no reply without `reply`")
        .or_else("the answer's"),
    hex_key("reply", at<&override_rule::reply>,
            "these bytes, as they are, as far as the caller's buffer goes")
        .or_else("the answer's"),
    number_key("length", at<&override_rule::length>, "the reply is cut or filled up to this")
        .to(HEX_LIMIT)
        .or_else("the reply's")
        .in("bytes"),
    number_key("returned", at<&override_rule::returned>,
               "the length handed back in the capacity word")
        .or_else("the reply's")
        .in("bytes"),
};

} // namespace

constinit const key_table OVERRIDE_KEYS = {"override", "An answer to replace", OVERRIDE_ROWS,
                                           make_object<override_rule>};
