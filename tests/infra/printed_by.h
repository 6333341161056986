// What a call prints to standard output.
#ifndef TESTS_INFRA_PRINTED_BY_H
#define TESTS_INFRA_PRINTED_BY_H

#include <cstdio>
#include <gtest/gtest.h>
#include <string>

template <typename Call> std::string printed_by(Call call) {
    testing::internal::CaptureStdout();
    call();
    fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

#endif
