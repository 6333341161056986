// Runs the transcripts of tests/transcripts.
//
// Without TARN_COMMAND in the environment, every case runs the tool's own code in a child of this
// process, on the model. With it, the shell cases run that command instead; "{host}" and "{trace}"
// in it are replaced by files: "tarnlab --host {host} --trace {trace} tarncmd". Without "{trace}"
// the requests are not compared. TARN_ACCEPT_TRANSCRIPTS=1 writes the results of the run into the
// files (scripts/accept-transcripts).
#include "frontend/handlers.h"
#include "frontend/hmx_cmd.h"
#include "frontend/kestrel_cmd_list.h"
#include "frontend/kxcmd.h"
#include "host/host_file.h"
#include "sim/host_programs.h"
#include "sim/interpose.h"
#include "tests/rows.h"
#include "tests/text.h"
#include "tests/transcript.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

int tarncmd_main(int argc, char *argv[]);

namespace {

namespace fs = std::filesystem;

constexpr unsigned CASE_SECONDS = 60;
constexpr int PAGES_LIMIT = 5000;
constexpr int CASES_SHOWN = 3;              // of all files; of the others only their number
constexpr uint32_t LEFT_ALONE = 0xFFFFFFFF; // the continuation word before a page

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

// A handler knows only its argument. So each row gets a handler of its own, which knows the row.
kestrel_cmd_handler handlers[KESTREL_CMD_ROWS];
int (*on_row)(size_t row, const char *arg);

template <size_t ROW> int run_row(const char *arg) {
    return on_row(ROW, arg);
}

template <size_t... ROW>
constexpr std::array<kestrel_cmd_handler, KESTREL_CMD_ROWS>
row_runners(std::index_sequence<ROW...>) {
    return {run_row<ROW>...};
}

constexpr auto ROW_RUNNERS = row_runners(std::make_index_sequence<KESTREL_CMD_ROWS>());

int noted_results = -1; // a file

// Every handler notes its result. Rows that are not built keep their handlers, by which the command
// layer recognizes them.
void note_results() {
    on_row = [](size_t row, const char *arg) {
        const int result = handlers[row](arg);
        dprintf(noted_results, " %d", result);
        return result;
    };
    for (size_t row = 0; row < KESTREL_CMD_ROWS; row++) {
        kestrel_cmd_handler &handler = kestrel_cmd_list[row].handler;
        handlers[row] = handler;
        if (handler != nullptr && handler != kx_show_empty && !kx_is_stub(handler))
            handler = ROW_RUNNERS[row];
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
        // It begins with a control character, so that no output of a command looks like it.
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
    note_results();
    for (const auto &[word, value] : asked.debug_words)
        *word = value;
    if (asked.mode != "shell") {
        run_agent(asked);
        return 0;
    }
    text_lines words = asked.words;
    words.insert(words.begin(), "tarncmd");
    return tarncmd_main(static_cast<int>(words.size()), argument_vector(words).data());
}

[[noreturn]] void run_external(const char *command, const transcript_case &asked,
                               const fs::path &folder) {
    const std::string with_host = replace_all(command, "{host}", (folder / "host").string());
    text_lines words = split_words(replace_all(with_host, "{trace}", (folder / "trace").string()));
    words.insert(words.end(), asked.words.begin(), asked.words.end());
    execvp(words[0].c_str(), argument_vector(words).data());
    perror(words[0].c_str());
    _exit(127);
}

// Replaces every hexadecimal number after the word, which ends with the number's "0x", by ADDRESS.
std::string replace_addresses(std::string text, std::string_view word) {
    for (size_t at = 0; (at = text.find(word, at)) != std::string::npos;) {
        at += word.size() - 2;
        const size_t end = text.find_first_not_of("0123456789abcdef", at + 2);
        text.replace(at, end - at, "ADDRESS");
    }
    return text;
}

// A part of the output as result lines: a mark in front, "|" at the end where a newline was.
void show_output(text_lines &results, char mark, std::string text, bool mask_stamps) {
    if (mask_stamps) {
        text = replace_stamps(text, "STAMP: ");
        for (const char *word : {"buffer 0x", "Calling 0x", "DPA 0x"})
            text = replace_addresses(text, word);
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

text_lines collect_results(const transcript_case &asked, int exit_value, const fs::path &folder) {
    text_lines results;
    show_output(results, '|', read_file(folder / "out"), asked.mask_stamps);
    show_output(results, '!', read_file(folder / "err"), asked.mask_stamps);
    // tarnlab's report of unused parts of the host file is not output of the tool.
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

// Runs the case in a child process and returns its results.
text_lines run_case(const transcript_case &asked, const char *command) {
    const scratch_folder folder;
    const std::string description = patch_host(read_file(asked.host), asked.patch);
    std::ofstream(folder.path / "host") << description;
    fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        alarm(CASE_SECONDS);
        for (const auto &[descriptor, name] : {std::pair{1, "out"}, std::pair{2, "err"}})
            dup2(open((folder.path / name).c_str(), O_RDWR | O_CREAT | O_TRUNC, 0666), descriptor);
        if (command != nullptr)
            run_external(command, asked, folder.path);
        const int value = run_in_process(asked, folder.path);
        fflush(stdout);
        _exit(value);
    }
    int status = 0;
    waitpid(child, &status, 0);
    const int value = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    return collect_results(asked, value, folder.path);
}

// What TARN_COMMAND does not show is not compared.
void leave_out_unseen(transcript_case &asked, bool traced) {
    std::erase_if(asked.results, [](const auto &line) { return line.starts_with("result "); });
    if (!traced && asked.compare_requests) {
        asked.compare_requests = false;
        asked.results.erase(std::find(asked.results.begin(), asked.results.end(), "requests"),
                            asked.results.end());
    }
}

std::vector<fs::path> transcript_files() {
    std::vector<fs::path> files;
    for (const auto &entry : fs::directory_iterator(fs::path(TESTS_DIR) / "transcripts"))
        if (entry.path().extension() == ".txt")
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

transcript read_transcript_file(const fs::path &path) {
    const fs::path name = path.lexically_relative(fs::path(TESTS_DIR).parent_path());
    return read_transcript(name, split_lines(read_file(path)));
}

class Transcript : public testing::TestWithParam<fs::path> {};

TEST_P(Transcript, PrintsAndAsksWhatItSays) {
    const char *command = getenv("TARN_COMMAND");
    const bool accept = command == nullptr && getenv("TARN_ACCEPT_TRANSCRIPTS") != nullptr;
    const bool traced = command == nullptr || strstr(command, "{trace}") != nullptr;
    transcript file = read_transcript_file(GetParam());
    fputs(join_lines(file.errors).c_str(), stdout);
    ASSERT_TRUE(file.errors.empty()) << file.name << " cannot be read";
    static int failed_in_all = 0;
    std::vector<std::pair<const transcript_case *, text_lines>> failed;
    for (transcript_case &asked : file.cases) {
        if (command != nullptr) {
            if (asked.mode != "shell" || !asked.debug_words.empty())
                continue;
            leave_out_unseen(asked, traced);
        }
        const text_lines results = run_case(asked, command);
        if (results == asked.results)
            continue;
        failed.emplace_back(&asked, results);
        if (!accept && failed_in_all++ < CASES_SHOWN) {
            fputs(failure_report(file, asked, results).c_str(), stdout);
            fflush(stdout);
        }
    }
    if (accept) {
        // From the last to the first, so that the lines of the others do not move.
        text_lines lines = file.lines;
        for (auto one = failed.rbegin(); one != failed.rend(); ++one)
            lines = with_results(lines, *one->first, one->second);
        if (!failed.empty())
            std::ofstream(GetParam()) << join_lines(lines);
    } else if (!failed.empty()) {
        ADD_FAILURE() << failed.size() << " of " << file.cases.size() << " cases of " << file.name
                      << " differ, " << CASES_SHOWN << " of all files are shown; to accept all:\n"
                      << "    scripts/accept-transcripts " << GetParam().stem().string();
    }
}

INSTANTIATE_TEST_SUITE_P(Files, Transcript, testing::ValuesIn(transcript_files()),
                         [](const auto &file) {
                             std::string name = file.param.stem().string();
                             std::replace_if(
                                 name.begin(), name.end(), [](char c) { return !isalnum(c); }, '_');
                             return name;
                         });

// The keywords of the rows that ran: one row stands in the table twice.
std::set<std::string> rows_that_ran;

TEST(Transcripts, RunEveryRowThatIsBuilt) {
    kestrel_cmd_row table[KESTREL_CMD_ROWS];
    std::copy(std::begin(kestrel_cmd_list), std::end(kestrel_cmd_list), table);
    for (size_t row = 0; row < KESTREL_CMD_ROWS; row++)
        table[row].handler = table[row].handler == nullptr ? nullptr : ROW_RUNNERS[row];
    on_row = [](size_t row, const char * /*arg*/) {
        rows_that_ran.insert(all_keywords(kestrel_cmd_list[row]));
        return 0;
    };
    testing::internal::CaptureStdout(); // some cases run words that no row matches
    for (const fs::path &path : transcript_files()) {
        for (const transcript_case &one : read_transcript_file(path).cases) {
            std::string text;
            for (const std::string &word : one.words)
                text += word + " ";
            kxcmd_parse_multiple(table, text.c_str(), static_cast<int>(text.size()), 0);
        }
    }
    fflush(stdout);
    testing::internal::GetCapturedStdout();
    for (const kestrel_cmd_row &row : kestrel_cmd_list) {
        const bool built = row.handler != nullptr && !kx_is_stub(row.handler);
        EXPECT_TRUE(!built || rows_that_ran.contains(all_keywords(row)))
            << "no transcript runs \"" << all_keywords(row)
            << "\". Write a case into a file of tests/transcripts, run scripts/accept-transcripts,\n"
               "and read what it added:\n\n"
               "case what the reader should see\nshell "
            << command_of(row) << "\nrequests\n";
    }
}

} // namespace
