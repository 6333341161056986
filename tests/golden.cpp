#include "tests/golden.h"

#include "tests/text.h"

#include <sstream>

#include <gtest/gtest.h>

namespace {

std::string with_bytes(std::string text) {
    for (size_t at = 0; (at = text.find("\\x", at)) != std::string::npos; at++)
        text.replace(at, 4, 1, static_cast<char>(number("0x" + text.substr(at + 2, 2))));
    return text;
}

} // namespace

std::string golden_text(const char *name) {
    std::string text = read_file(std::string(TESTS_DIR "/golden/") + name);
    EXPECT_NE(text, "") << name;
    return text;
}

std::vector<std::vector<std::string>> golden(const char *name) {
    std::istringstream lines(golden_text(name));
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with('#'))
            continue;
        std::istringstream columns(line + "\t");
        for (rows.emplace_back(); std::getline(columns, line, '\t');)
            rows.back().push_back(with_bytes(line));
    }
    EXPECT_FALSE(rows.empty()) << name;
    return rows;
}

uint32_t number(const std::string &text) {
    return static_cast<uint32_t>(std::stoul(text, nullptr, 0));
}
