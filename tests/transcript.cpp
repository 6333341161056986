#include "tests/transcript.h"

#include "frontend/hmx_cmd.h"
#include "tests/text.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <sstream>

namespace {

namespace fs = std::filesystem;

constexpr const char *WORDS = "host, case, shell, agent, page, patch, debug and mask-stamps, then "
                              "|TEXT|, !TEXT|, more, exit, result and requests";

std::string host_path(const std::string &name) {
    return fs::path(TESTS_DIR) / "hosts" / name;
}

// The functions below return the error, or nothing.

std::string read_host(const std::string &name, std::string &host) {
    host = host_path(name);
    return fs::is_regular_file(host) ? "" : "there is no tests/hosts/" + name;
}

std::string read_debug(const text_lines &words, transcript_case &into) {
    for (const auto &[name, word] : {std::pair{"kxdump", &kx_debug_print_kxdump},
                                     {"hmx_cmds", &kx_debug_print_hmx_cmds},
                                     {"kxdpa_indirect", &kx_debug_print_kxdpa_indirect},
                                     {"kxtarncmd_indirect", &kx_debug_print_kxtarncmd_indirect},
                                     {"kxcmd", &kx_debug_print_kxcmd},
                                     {"kxstrings", &kx_debug_print_kxstrings},
                                     {"dpa_platform", &kx_debug_print_dpa_platform},
                                     {"dpa_main", &kx_debug_print_dpa_main}}) {
        if (words.size() == 2 && words[0] == name) {
            char *end = nullptr;
            into.debug_words.emplace_back(
                word, static_cast<uint32_t>(strtoul(words[1].c_str(), &end, 0)));
            return *end == '\0' ? "" : "\"" + words[1] + "\" is no number";
        }
    }
    return "expected a debug word without kx_debug_print_, and a number";
}

void read_command(const std::string &mode, const std::string &text, transcript_case &into) {
    into.mode = mode;
    into.command += into.words.empty() ? (mode == "shell" ? "$ tarncmd " : mode + ": ") : "; ";
    into.command += text;
    if (!into.words.empty())
        into.words.back() += ';';
    const text_lines words = split_words(text);
    into.words.insert(into.words.end(), words.begin(), words.end());
}

bool is_result(const std::string &line, const std::string &key) {
    return line[0] == '|' || line[0] == '!' || key == "more" || key == "exit" || key == "result" ||
           line == "requests";
}

std::string read_line(const std::string &line, std::string &host, transcript &into) {
    if (line.empty() || line[0] == '#')
        return "";
    const std::string key = line.substr(0, line.find(' '));
    const std::string rest = key.size() == line.size() ? "" : line.substr(key.size() + 1);
    const size_t here = into.lines.size();
    if (key == "case") {
        transcript_case &begun = into.cases.emplace_back();
        begun.line = here;
        begun.host = host;
        begun.results_begin = begun.results_end = here;
        return "";
    }
    if (into.cases.empty())
        return key == "host" ? read_host(rest, host) : "no case begins before this line";
    transcript_case &open = into.cases.back();
    if (is_result(line, key) || (open.compare_requests && key == "op")) {
        if (open.results.empty())
            open.results_begin = here - 1;
        else if (open.results_end != here - 1)
            return "another line stands between this result and those before it";
        open.results_end = here;
        open.results.push_back(line);
        open.compare_requests |= line == "requests";
        return "";
    }
    if (!open.results.empty())
        return "\"" + key + "\" is no result, and stands after one";
    open.results_begin = open.results_end = here;
    if (key == "shell" || key == "agent" || key == "page") {
        read_command(key, rest, open);
    } else if (key == "host") {
        return read_host(rest, open.host);
    } else if (key == "patch") {
        open.patch = rest.ends_with(".json") ? read_file(host_path(rest)) : rest;
        return patch_host("{}", open.patch).empty() ? "the patch is no JSON object" : "";
    } else if (key == "debug") {
        return read_debug(split_words(rest), open);
    } else if (line == "mask-stamps") {
        open.mask_stamps = true;
    } else {
        return "\"" + key + "\" is no word of a transcript; these are " + WORDS;
    }
    return "";
}

// The changes that lead from one text to the other, as diff shows them, without its two lines of
// names.
text_lines differences(const text_lines &from, const text_lines &to) {
    std::string folder = fs::temp_directory_path() / "differences-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr)
        return {"no folder for diff"};
    std::ofstream(folder + "/from") << join_lines(from);
    std::ofstream(folder + "/to") << join_lines(to);
    const std::string command = "cd " + folder + " && diff -U1 from to >differences";
    const bool differ = system(command.c_str()) != 0;
    text_lines lines = split_lines(read_file(folder + "/differences"));
    fs::remove_all(folder);
    if (!differ || lines.size() < 2)
        return {"diff shows no difference"};
    lines.erase(lines.begin(), lines.begin() + 2);
    return lines;
}

} // namespace

text_lines split_words(const std::string &text) {
    text_lines words;
    std::istringstream in(text);
    for (std::string word; in >> std::ws && !in.eof();) {
        if (in.peek() == '"')
            in >> std::quoted(word, '"', '\0');
        else
            in >> word;
        words.push_back(word);
    }
    return words;
}

text_lines split_lines(const std::string &text) {
    text_lines lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

std::string join_lines(const text_lines &lines) {
    std::string text;
    for (const std::string &line : lines)
        text += line + "\n";
    return text;
}

transcript read_transcript(std::string name, text_lines lines) {
    transcript read;
    read.name = std::move(name);
    std::string host = fs::path(TESTS_DIR).parent_path() / "sim" / "builtin_host.json";
    const auto complain = [&](size_t line, const std::string &wrong) {
        if (!wrong.empty())
            read.errors.push_back(read.name + ":" + std::to_string(line) + ": " + wrong);
    };
    for (const std::string &line : lines) {
        read.lines.push_back(line);
        complain(read.lines.size(), read_line(line, host, read));
    }
    for (const transcript_case &one : read.cases)
        if (one.mode.empty() && read.errors.empty())
            complain(one.line, "the case has no shell, agent or page line");
    if (read.cases.empty())
        complain(1, "there is no case");
    return read;
}

text_lines with_results(text_lines lines, const transcript_case &of, const text_lines &results) {
    const auto at = [&](size_t index) { return lines.begin() + static_cast<ptrdiff_t>(index); };
    const auto after = lines.erase(at(of.results_begin), at(of.results_end));
    lines.insert(after, results.begin(), results.end());
    return lines;
}

std::string failure_report(const transcript &file, const transcript_case &failed,
                           const text_lines &results) {
    std::string report =
        file.name + ":" + std::to_string(failed.line) + ": " + failed.command + "\n";
    const text_lines found = differences(with_results(file.lines, failed, failed.results),
                                         with_results(file.lines, failed, results));
    for (size_t i = 0; i < std::min(found.size(), DIFF_LINES); i++)
        report += found[i] + "\n";
    if (found.size() > DIFF_LINES)
        report += "... and " + std::to_string(found.size() - DIFF_LINES) + " lines more\n";
    return report;
}
