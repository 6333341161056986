#include "host/host_file.h"

#include "sim/answer.h"
#include "sim/object_reader.h"
#include "sim/overrides.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

void parse_families(std::string_view text, host &into) {
    const json_value tree = parse_json(text);
    object_reader file(tree, "");
    for (const family *part : all_families()) {
        part->parse(file, into);
    }
    parse_overrides(file, into.overrides);
    file.finish();
}

} // namespace

bool parse_host(std::string_view text, const std::string &name, host &into, std::string &error) {
    try {
        parse_families(text, into);
        return true;
    } catch (const host_error &wrong) {
        error = name + ":" + std::to_string(wrong.line) + ": " + wrong.reason;
        return false;
    }
}

bool load_host(const std::string &path, host &into, std::string &error) {
    std::FILE *file = std::fopen(path.c_str(), "re");
    std::string text;
    if (file != nullptr) {
        char piece[4096];
        size_t got = 0;
        while ((got = std::fread(piece, 1, sizeof piece, file)) > 0) {
            text.append(piece, got);
        }
    }
    const bool failed = file == nullptr || std::ferror(file) != 0;
    const int reason = errno;
    if (file != nullptr) {
        std::fclose(file);
    }
    if (failed) {
        error = path + ":0: cannot be read: " + std::strerror(reason);
        return false;
    }
    return parse_host(text, path, into, error);
}
