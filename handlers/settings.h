// What the set commands of the features share: a fixed number of words, whole numbers, and lines on
// standard output with a time stamp, like those of "set port-mode".
#ifndef HANDLERS_SETTINGS_H
#define HANDLERS_SETTINGS_H

#include <cstddef>
#include <cstdint>

constexpr int KX_SETTING_MAX_WORDS = 5;

// The words of a set command, in a copy of its argument.
struct kx_setting_words {
    char copy[256]; // a command is no longer
    char *words[KX_SETTING_MAX_WORDS + 1];
};

// Split the argument, NULL for none, at its blanks. True when it has exactly `count` words.
bool kx_split_setting(kx_setting_words *setting, const char *arg, int count);

// Read a word that is, as a whole, a number from 0 to `most` in C notation. For any other word
// returns false and does not change `number`.
bool kx_read_setting_number(const char *word, uint32_t most, uint32_t *number);

// "enable" gives 1, "disable" 0, ignoring case. False for any other word.
bool kx_read_setting_switch(const char *word, uint32_t *enabled);

// Print how a command is used; `usage` is the command and its argument hint. Returns 1, the result
// of a handler that was used wrongly.
int kx_refuse_setting(const char *usage);

// The handler's result for the status of its request: 0, or 1 after a line with the status.
int kx_report_setting(const char *command, uint32_t status);

#endif
