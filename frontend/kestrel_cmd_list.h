// The command table: every command of the tool, its help text and its handler.
#ifndef FRONTEND_KESTREL_CMD_LIST_H
#define FRONTEND_KESTREL_CMD_LIST_H

#include <cstddef>
#include <cstdint>

enum kestrel_cmd_kind : uint32_t {
    KESTREL_CMD_END = 0,          // the last row
    KESTREL_CMD_COMMAND = 1,      // keywords and a handler
    KESTREL_CMD_CONTINUATION = 2, // a second line of help; no keywords, no handler
    KESTREL_CMD_HEADING = 3,      // a heading of the help; only its help text counts
    KESTREL_CMD_CALLBACK = 4,     // a line of help that the row's help callback writes
};

constexpr int KESTREL_CMD_KEYWORDS = 7;
constexpr int KESTREL_CMD_ROWS = 253;

// See frontend/handlers.h for the contract.
using kestrel_cmd_handler = int (*)(const char *arg);

// Writes its line of help at `position`, `room` bytes at most; returns the characters written.
using kestrel_cmd_help_callback = int (*)(char *position, int room);

// Fourteen 32-bit words. Keywords in brackets only document: no typed word equals them. So the row
// matches up to its last literal keyword, and the handler receives the rest.
struct kestrel_cmd_row {
    kestrel_cmd_kind kind;
    kestrel_cmd_handler handler;
    kestrel_cmd_help_callback help_callback;
    const char *help_text;                      // NULL for none
    const char *argument_hint;                  // follows the keywords in the help; NULL for none
    const char *keywords[KESTREL_CMD_KEYWORDS]; // the first NULL ends them
    uint32_t reserved;                          // 0
    uint32_t allowed_from_agent;                // 1 when the agent side may run it, else 0
};

static_assert(sizeof(kestrel_cmd_row) == 14 * 4);
static_assert(offsetof(kestrel_cmd_row, handler) == 1 * 4);
static_assert(offsetof(kestrel_cmd_row, help_callback) == 2 * 4);
static_assert(offsetof(kestrel_cmd_row, help_text) == 3 * 4);
static_assert(offsetof(kestrel_cmd_row, argument_hint) == 4 * 4);
static_assert(offsetof(kestrel_cmd_row, keywords) == 5 * 4);
static_assert(offsetof(kestrel_cmd_row, reserved) == 12 * 4);
static_assert(offsetof(kestrel_cmd_row, allowed_from_agent) == 13 * 4);

// In catalogue order, which decides between equal matches, until the help sorts it in place.
extern kestrel_cmd_row kestrel_cmd_list[KESTREL_CMD_ROWS];

#endif
