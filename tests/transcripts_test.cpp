// Runs the transcripts of tests/transcripts: a described host, a command, the exact text that it
// prints and the exact requests that it makes. The format is told in tests/transcripts/README.md.
//
// Without TARN_COMMAND in the environment every case runs the tool's own code in a child of this
// process, on the model. With it the shell cases run that command instead, with "{host}" and
// "{trace}" in it replaced by files: "tarnlab --host {host} --trace {trace} tarncmd". Without
// "{trace}" the requests are not compared. TARN_TRANSCRIPT_PRINT=1 prints every file as it would
// have to be written for the results that were seen.
#include "frontend/handlers.h"
#include "frontend/hmx_cmd.h"
#include "frontend/kestrel_cmd_list.h"
#include "host/host_file.h"
#include "sim/host_programs.h"
#include "sim/interpose.h"
#include "tests/text.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

int tarncmd_main(int argc, char *argv[]);

namespace {

namespace fs = std::filesystem;
using lines = std::vector<std::string>;

constexpr unsigned CASE_SECONDS = 60;
constexpr int PAGES_LIMIT = 5000;
constexpr uint32_t LEFT_ALONE = 0xFFFFFFFF; // the continuation word before a page

struct transcript_case {
    std::string name;
    std::string mode; // "shell", "agent" (a whole walk) or "page" (one page of it)
    lines words;
    std::string host;         // path of the host file
    std::string patch = "{}"; // JSON merge patch of it
    std::map<std::string, uint32_t> debug_words;
    bool mask_stamps = false;
    bool compare_requests = false;
    lines head; // the lines above the results, as they stand
    lines results;
};

struct transcript {
    lines head;
    std::vector<transcript_case> cases;
};

// Blank-separated words; double quotes keep blanks.
lines split_words(const std::string &text) {
    lines words;
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

std::string host_path(const std::string &name) {
    return fs::path(TESTS_DIR) / "hosts" / name;
}

// One line of a case above its results. False when it is a result already.
bool read_directive(const std::string &line, transcript_case &into) {
    const std::string key = line.substr(0, line.find(' '));
    const std::string rest = key.size() == line.size() ? "" : line.substr(key.size() + 1);
    if (key == "shell" || key == "agent" || key == "page") {
        into.mode = key;
        if (!into.words.empty())
            into.words.back() += ';';
        const lines words = split_words(rest);
        into.words.insert(into.words.end(), words.begin(), words.end());
    } else if (key == "host") {
        into.host = host_path(rest);
    } else if (key == "patch") {
        into.patch = rest.ends_with(".json") ? read_file(host_path(rest)) : rest;
    } else if (key == "debug") {
        const lines words = split_words(rest);
        into.debug_words[words.at(0)] = static_cast<uint32_t>(std::stoul(words.at(1), nullptr, 0));
    } else if (key == "mask-stamps") {
        into.mask_stamps = true;
    } else {
        return key.empty() || key[0] == '#';
    }
    return true;
}

transcript read_transcript(const fs::path &path) {
    transcript read;
    std::string host = fs::path(TESTS_DIR).parent_path() / "sim" / "builtin_host.json";
    std::istringstream text(read_file(path));
    for (std::string line; std::getline(text, line);) {
        if (line.starts_with("case ")) {
            read.cases.emplace_back().name = line.substr(5);
            read.cases.back().host = host;
        }
        lines &head = read.cases.empty() ? read.head : read.cases.back().head;
        if (line.starts_with("case ")) {
            head.push_back(line);
        } else if (read.cases.empty()) {
            if (line.starts_with("host "))
                host = host_path(line.substr(5));
            head.push_back(line);
        } else if (read.cases.back().results.empty() && read_directive(line, read.cases.back())) {
            head.push_back(line);
        } else if (!line.empty()) {
            read.cases.back().results.push_back(line);
            if (line == "requests")
                read.cases.back().compare_requests = true;
        }
    }
    return read;
}

// A private folder for the files of one run, removed with its object.
struct scratch_folder {
    fs::path path;
    scratch_folder() {
        std::string name = fs::temp_directory_path() / "transcript-XXXXXX";
        path = mkdtemp(name.data());
    }
    ~scratch_folder() {
        fs::remove_all(path);
    }
    scratch_folder(const scratch_folder &) = delete;
    scratch_folder &operator=(const scratch_folder &) = delete;
};

// Every handler of the command table behind one that notes its result. The rows that have nothing
// to answer keep their own: the command layer knows them by it.
kestrel_cmd_handler handlers[KESTREL_CMD_ROWS];
int noted_results = -1; // a file

template <size_t ROW> int note_result(const char *arg) {
    const int result = handlers[ROW](arg);
    dprintf(noted_results, " %d", result);
    return result;
}

template <size_t ROW> void note_results_of() {
    handlers[ROW] = kestrel_cmd_list[ROW].handler;
    if (handlers[ROW] != nullptr && handlers[ROW] != kx_show_empty && !kx_is_stub(handlers[ROW]))
        kestrel_cmd_list[ROW].handler = note_result<ROW>;
}

template <size_t... ROW> void note_results(std::index_sequence<ROW...>) {
    (note_results_of<ROW>(), ...);
}

void set_debug_words(const std::map<std::string, uint32_t> &words) {
    for (const auto &[name, word] : {std::pair{"kxdump", &kx_debug_print_kxdump},
                                     {"hmx_cmds", &kx_debug_print_hmx_cmds},
                                     {"kxdpa_indirect", &kx_debug_print_kxdpa_indirect},
                                     {"kxtarncmd_indirect", &kx_debug_print_kxtarncmd_indirect},
                                     {"kxcmd", &kx_debug_print_kxcmd},
                                     {"kxstrings", &kx_debug_print_kxstrings},
                                     {"dpa_platform", &kx_debug_print_dpa_platform},
                                     {"dpa_main", &kx_debug_print_dpa_main}}) {
        const auto given = words.find(name);
        *word = given == words.end() ? *word : given->second;
    }
}

// The command as the agent runs it, page by page through the remote-CLI buffer.
void run_agent(const transcript_case &asked) {
    std::string command;
    for (const std::string &word : asked.words)
        command += (command.empty() ? "" : " ") + word;
    std::string text = command;
    hmx_rcli_fromdpa = 1;
    kx_dpa_api_init();
    hmx_cmd_init();
    for (int page = 0; page < PAGES_LIMIT; page++) {
        hmx_rcli_buffer_ptr = hmx_rcli_buffer;
        hmx_rcli_entry_start_ptr = nullptr;
        hmx_rcli_print_len = 0;
        hmx_rcli_more_output = LEFT_ALONE;
        hmx_cmd_run(text.c_str(), static_cast<int>(text.size()), 1);
        const auto used = static_cast<size_t>(hmx_rcli_buffer_ptr - hmx_rcli_buffer);
        fwrite(hmx_rcli_buffer, 1, std::min<size_t>(used, HMX_RCLI_BUFFER_SIZE), stdout);
        if (hmx_rcli_more_output == 0)
            break;
        // A control character, so that no output of a command reads like it.
        if (hmx_rcli_more_output == LEFT_ALONE)
            printf("\001more -\n");
        else
            printf("\001more %u\n", hmx_rcli_more_output);
        if (asked.mode == "page" || hmx_rcli_more_output == LEFT_ALONE)
            break;
        text = command + " cookie " + std::to_string(hmx_rcli_more_output);
    }
    hmx_cmd_exit();
}

// In the child: the tool's own code on the model. Returns its exit value.
int run_in_process(const transcript_case &asked, const fs::path &folder) {
    static model driver;
    std::string error;
    host_programs programs;
    host described;
    if (!load_host(folder / "host", described, error) || !programs.install(described, error)) {
        fprintf(stderr, "%s\n", error.c_str());
        return 2;
    }
    driver.take(std::move(described));
    const int trace = open((folder / "trace").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
    driver.trace = [trace](const std::string &line) { dprintf(trace, "%s\n", line.c_str()); };
    interpose_model(&driver);
    noted_results = open((folder / "results").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
    note_results(std::make_index_sequence<KESTREL_CMD_ROWS>());
    set_debug_words(asked.debug_words);
    if (asked.mode != "shell") {
        run_agent(asked);
        return 0;
    }
    lines words = asked.words;
    words.insert(words.begin(), "tarncmd");
    return tarncmd_main(static_cast<int>(words.size()), argument_vector(words).data());
}

[[noreturn]] void run_external(const char *command, const transcript_case &asked,
                               const fs::path &folder) {
    const std::string with_host = replace_all(command, "{host}", (folder / "host").string());
    lines words = split_words(replace_all(with_host, "{trace}", (folder / "trace").string()));
    words.insert(words.end(), asked.words.begin(), asked.words.end());
    execvp(words[0].c_str(), argument_vector(words).data());
    perror(words[0].c_str());
    _exit(127);
}

// Runs the case in a child process. Returns the exit value; output, complaints and requests are
// left in the folder.
int run_case(const transcript_case &asked, const char *command, const fs::path &folder) {
    fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        alarm(CASE_SECONDS);
        for (const auto &[descriptor, name] : {std::pair{1, "out"}, std::pair{2, "err"}})
            dup2(open((folder / name).c_str(), O_RDWR | O_CREAT | O_TRUNC, 0666), descriptor);
        if (command != nullptr)
            run_external(command, asked, folder);
        const int value = run_in_process(asked, folder);
        fflush(stdout);
        _exit(value);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

// A stretch of output as result lines: a mark in front, "|" behind where a newline was.
void show_output(lines &results, char mark, std::string text, bool mask_stamps) {
    if (mask_stamps) {
        static const std::regex ADDRESS("(buffer|Calling|DPA) 0x[0-9a-f]+");
        text = std::regex_replace(replace_stamps(text, "STAMP: "), ADDRESS, "$1 ADDRESS");
    }
    std::string line(1, mark);
    for (const char byte : text) {
        if (byte == '\n') {
            const bool more = line.starts_with("|\\x01more ");
            results.push_back(more ? line.substr(5) : line + '|');
            line = mark;
        } else if (byte == '\\') {
            line += "\\\\";
        } else if (byte < ' ' || byte > '~') {
            char escaped[8];
            snprintf(escaped, sizeof escaped, "\\x%02x", static_cast<uint8_t>(byte));
            line += escaped;
        } else {
            line += byte;
        }
    }
    if (line.size() > 1)
        results.push_back(line);
}

lines collect_results(const transcript_case &asked, int exit_value, const fs::path &folder) {
    lines results;
    show_output(results, '|', read_file(folder / "out"), asked.mask_stamps);
    show_output(results, '!', read_file(folder / "err"), asked.mask_stamps);
    // What tarnlab finds unused in the host file is no output of the tool.
    std::erase_if(results, [](const auto &line) { return line.starts_with("!tarnlab: "); });
    if (exit_value != 0)
        results.push_back("exit " + std::to_string(exit_value));
    const std::string noted = read_file(folder / "results");
    if (noted.find_first_not_of(" 0") != std::string::npos)
        results.push_back("result" + noted);
    if (!asked.compare_requests)
        return results;
    results.emplace_back("requests");
    std::ifstream trace(folder / "trace");
    for (std::string line; std::getline(trace, line);)
        results.push_back(line);
    return results;
}

void write_host(const transcript_case &asked, const fs::path &folder) {
    const std::string description = patch_host(read_file(asked.host), asked.patch);
    ASSERT_FALSE(description.empty()) << asked.host << " with " << asked.patch;
    std::ofstream(folder / "host") << description;
}

std::string joined(const lines &of) {
    std::string text;
    for (const std::string &line : of)
        text += line + "\n";
    return text;
}

std::vector<fs::path> transcript_files() {
    std::vector<fs::path> files;
    for (const auto &entry : fs::directory_iterator(fs::path(TESTS_DIR) / "transcripts"))
        if (entry.path().extension() == ".txt")
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

class Transcript : public testing::TestWithParam<fs::path> {};

TEST_P(Transcript, PrintsAndAsksWhatItSays) {
    const char *command = getenv("TARN_COMMAND");
    const bool print = getenv("TARN_TRANSCRIPT_PRINT") != nullptr;
    const bool traced = command == nullptr || strstr(command, "{trace}") != nullptr;
    transcript file = read_transcript(GetParam());
    ASSERT_FALSE(file.cases.empty());
    if (print)
        fputs(joined(file.head).c_str(), stdout);
    for (transcript_case &asked : file.cases) {
        SCOPED_TRACE(asked.name);
        ASSERT_FALSE(asked.mode.empty()) << "no shell, agent or page line";
        if (command != nullptr && (asked.mode != "shell" || !asked.debug_words.empty()))
            continue;
        const scratch_folder folder;
        write_host(asked, folder.path);
        if (command != nullptr) {
            std::erase_if(asked.results,
                          [](const auto &line) { return line.starts_with("result "); });
        }
        if (!traced && asked.compare_requests) {
            asked.compare_requests = false;
            asked.results.erase(std::find(asked.results.begin(), asked.results.end(), "requests"),
                                asked.results.end());
        }
        const int exit_value = run_case(asked, command, folder.path);
        const lines results = collect_results(asked, exit_value, folder.path);
        if (print)
            printf("%s%s\n", joined(asked.head).c_str(), joined(results).c_str());
        else
            EXPECT_EQ(joined(asked.results), joined(results));
    }
}

INSTANTIATE_TEST_SUITE_P(Files, Transcript, testing::ValuesIn(transcript_files()),
                         [](const auto &file) {
                             std::string name = file.param.stem().string();
                             std::replace_if(
                                 name.begin(), name.end(), [](char c) { return !isalnum(c); }, '_');
                             return name;
                         });

} // namespace
