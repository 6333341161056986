// A host of a text that has to be a host file.
#ifndef TESTS_HOST_DESCRIBED_H
#define TESTS_HOST_DESCRIBED_H

#include "host/host_file.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

inline host described(std::string_view text) {
    host parsed;
    std::string error;
    EXPECT_TRUE(parse_host(text, "f", parsed, error)) << error << text;
    return parsed;
}

#endif
