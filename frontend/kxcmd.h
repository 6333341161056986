// Matching command texts against a command table, and the help catalogue.
//
// A command is matched by whole keywords, ignoring case; abbreviations do not match. The row that
// matches the most keywords wins, and the earliest of equally deep ones.
#ifndef FRONTEND_KXCMD_H
#define FRONTEND_KXCMD_H

#include "frontend/kestrel_cmd_list.h"

// The result of a handler that stops the later commands of the same text.
constexpr int KXCMD_STOP = -2;

// Split `text` of `length` bytes (no NUL needed) into commands at ";" and at bytes outside 32..126,
// and run each in turn until one returns KXCMD_STOP. A command of 256 bytes or more ends the run.
void kxcmd_parse_multiple(kestrel_cmd_row *table, const char *text, int length, int from_agent);

// Match one NUL-terminated command and call its handler with the words after the matched keywords
// (NULL for none). Returns the handler's result; -1, with a line on standard output, when nothing
// matches or the row is not allowed from the agent.
int kxcmd_parse_single(kestrel_cmd_row *table, const char *command, int length, int from_agent);

// Sort the table in place and write the catalogue into `buffer` of `size` bytes. Returns the
// characters written, or `size` when the text did not fit (the buffer then holds the part that
// did).
int kxcmd_snprintf_help(kestrel_cmd_row *table, char *buffer, int size);

// Exchange two rows of the table when the second belongs before the first: keyword by keyword in
// byte order; a row with fewer keywords comes before those that continue it.
void kxcmd_compare_and_swap(kestrel_cmd_row *a, kestrel_cmd_row *b);

// Count the characters of `text`, and complain about bytes that are neither printable nor white
// space. Returns the count, or -1 when there is no NUL within `max_length` bytes.
int kxcmd_validate_data(const char *text, int max_length);

#endif
