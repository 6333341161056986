// What a call prints to standard output, and its trace lines without their time stamps.
#ifndef TESTS_INFRA_PRINTED_BY_H
#define TESTS_INFRA_PRINTED_BY_H

#include "tests/text.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <string>

template <typename Call> std::string printed_by(Call call) {
    testing::internal::CaptureStdout();
    call();
    fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

template <typename Call> std::string traced_by(Call call) {
    return replace_stamps(printed_by(call), "");
}

#endif
