// The files of tests/transcripts: a described host, a command, the exact text that it prints and
// the exact requests that it makes. tests/transcripts/README.md explains the format.
#ifndef TESTS_TRANSCRIPT_H
#define TESTS_TRANSCRIPT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

using text_lines = std::vector<std::string>;

struct transcript_case {
    size_t line = 0;     // of its "case NAME", from 1
    std::string mode;    // "shell", "agent" (a whole walk) or "page" (one page of it)
    std::string command; // as a message shows it
    text_lines words;    // its arguments; of several commands, each word but the last ends with ";"
    std::string host;    // path of the host file
    std::string patch = "{}"; // JSON merge patch of it
    std::vector<std::pair<uint32_t *, uint32_t>> debug_words;
    bool mask_stamps = false;
    bool compare_requests = false;
    text_lines results;
    size_t results_begin = 0; // line indexes, from 0: where the results stand or would stand
    size_t results_end = 0;
};

struct transcript {
    std::string name; // as a message shows it: tests/transcripts/port_table.txt
    text_lines lines;
    std::vector<transcript_case> cases;
    text_lines errors; // "NAME:LINE: what is wrong with it"
};

// Reads lines that are already split; the name is for messages.
transcript read_transcript(std::string name, text_lines lines);

// Blank-separated words; double quotes keep blanks.
text_lines split_words(const std::string &text);

text_lines split_lines(const std::string &text);
std::string join_lines(const text_lines &lines);

// The lines of a file after one of its cases got other results.
text_lines with_results(text_lines lines, const transcript_case &of, const text_lines &results);

// What a failed case prints: where it is, its command, and the lines of the file that differ,
// DIFF_LINES of them at most.
std::string failure_report(const transcript &file, const transcript_case &failed,
                           const text_lines &results);
constexpr size_t DIFF_LINES = 40;

#endif
