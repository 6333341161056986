#include "host/host_file.h"

#include "host/json_tree.h"
#include "host/keys.h"
#include "host/objects.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

// In the order of the lines.
std::vector<host_error> read_host(std::string_view text, host &into) {
    std::vector<host_error> wrong;
    try {
        read_object(parse_json(text), HOST_KEYS, &into, wrong);
    } catch (const host_error &malformed) {
        wrong = {malformed};
    }
    std::stable_sort(
        wrong.begin(), wrong.end(),
        [](const host_error &one, const host_error &other) { return one.line < other.line; });
    return wrong;
}

std::string error_line(const std::string &name, const host_error &wrong) {
    return name + ":" + std::to_string(wrong.line) + ": " + wrong.reason;
}

} // namespace

bool parse_host(std::string_view text, const std::string &name, host &into, std::string &error) {
    const std::vector<host_error> wrong = read_host(text, into);
    if (!wrong.empty()) {
        error = error_line(name, wrong.front());
    }
    return wrong.empty();
}

std::vector<std::string> check_host(std::string_view text, const std::string &name) {
    host checked;
    std::vector<std::string> lines;
    for (const host_error &wrong : read_host(text, checked)) {
        lines.push_back(error_line(name, wrong));
    }
    return lines;
}

bool read_host_file(const std::string &path, std::string &text, std::string &error) {
    std::FILE *file = std::fopen(path.c_str(), "re");
    if (file == nullptr) {
        error = path + ": cannot be read: " + std::strerror(errno);
        return false;
    }
    char piece[65536];
    size_t got = 0;
    text.clear();
    while (text.size() <= HOST_FILE_LIMIT && (got = std::fread(piece, 1, sizeof piece, file)) > 0) {
        text.append(piece, got);
    }
    const bool failed = std::ferror(file) != 0;
    const int reason = errno;
    std::fclose(file);
    if (failed) {
        error = path + ": cannot be read: " + std::strerror(reason);
    } else if (text.size() > HOST_FILE_LIMIT) {
        error = path + ": is larger than " + std::to_string(HOST_FILE_LIMIT >> 20) + " MiB";
    }
    return !failed && text.size() <= HOST_FILE_LIMIT;
}

bool load_host(const std::string &path, host &into, std::string &error) {
    std::string text;
    return read_host_file(path, text, error) && parse_host(text, path, into, error);
}

std::string write_host(const host &described, const write_options &options,
                       std::vector<std::string> *unsaid) {
    std::vector<std::string> unread;
    std::string text =
        object_text(HOST_KEYS, &described, options, unsaid == nullptr ? unread : *unsaid);
    text += '\n';
    return text;
}
