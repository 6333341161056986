// Small edits of texts that several tests make.
#ifndef TESTS_TEXT_H
#define TESTS_TEXT_H

#include <string>
#include <string_view>
#include <vector>

// Why a test that runs a command in the agent is skipped; scripts/test prints lines that begin so.
inline constexpr const char *NO_OUTPUT_FOLDER =
    "skipped: no command is run in the agent, whose output comes through /var/log, which cannot be "
    "written";

// Replaces every time stamp "Nov 21 10:00:00.123456: " of a trace line by `with`.
std::string replace_stamps(std::string_view text, std::string_view with);

std::string replace_all(std::string text, std::string_view what, std::string_view with);

// A whole file; empty when there is none.
std::string read_file(const std::string &path);

// The words as a program's argument vector, which ends with a null pointer.
std::vector<char *> argument_vector(std::vector<std::string> &words);

// A host file with a JSON merge patch applied; empty when either one is not JSON.
std::string patch_host(const std::string &host, const std::string &patch);

#endif
