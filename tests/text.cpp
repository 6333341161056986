#include "tests/text.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>

#include <nlohmann/json.hpp>

namespace {

// One character of a stamp: A a capital, a a small letter, 0 a digit, _ a digit or a blank.
constexpr std::string_view STAMP = "Aaa _0 00:00:00.000000: ";

bool fits(char pattern, char c) {
    const auto byte = static_cast<unsigned char>(c);
    switch (pattern) {
    case 'A':
        return isupper(byte) != 0;
    case 'a':
        return islower(byte) != 0;
    case '_':
        return c == ' ' || isdigit(byte) != 0;
    case '0':
        return isdigit(byte) != 0;
    default:
        return c == pattern;
    }
}

bool is_stamp(std::string_view text) {
    return text.size() >= STAMP.size() &&
           std::equal(STAMP.begin(), STAMP.end(), text.begin(), fits);
}

} // namespace

std::string replace_stamps(std::string_view text, std::string_view with) {
    std::string replaced;
    while (!text.empty()) {
        const bool stamp = is_stamp(text);
        replaced += stamp ? with : text.substr(0, 1);
        text.remove_prefix(stamp ? STAMP.size() : 1);
    }
    return replaced;
}

std::string replace_all(std::string text, std::string_view what, std::string_view with) {
    for (size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
        text.replace(at, what.size(), with);
    return text;
}

std::string read_file(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<char *> argument_vector(std::vector<std::string> &words) {
    std::vector<char *> arguments;
    for (std::string &word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    return arguments;
}

std::string patch_host(const std::string &host, const std::string &patch) {
    nlohmann::json description = nlohmann::json::parse(host, nullptr, false);
    const nlohmann::json change = nlohmann::json::parse(patch, nullptr, false);
    if (description.is_discarded() || !change.is_object())
        return "";
    description.merge_patch(change);
    return description.dump(1);
}
