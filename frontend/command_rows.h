// What the command table tells about a row: the words to type, and what to tell the operator about
// a run.
#ifndef FRONTEND_COMMAND_ROWS_H
#define FRONTEND_COMMAND_ROWS_H

#include "frontend/kestrel_cmd_list.h"

#include <cstddef>

// How many keywords of the row are typed as they stand. The keywords after them only document: they
// begin with the first word that has a bracket or a bar or is "cookie".
int kx_typed_keywords(const kestrel_cmd_row &row);

// The number of letters in which what was typed differs from a keyword: too many, missing, wrong
// (upper and lower case are the same), or swapped with the next one. Of words with 32 bytes or more
// 32.
size_t kx_typing_errors(const char *typed, size_t typed_length, const char *keyword);

// Tell the operator what the output does not say about a run of `command` on this row, whose first
// `matched` keywords the command has. One line on standard error; what standard output holds back
// is written first. The cases:
// - the row is the catch-all of unknown displays (the line names the nearest display), or the row
// is not built and the command has only its first words;
// - the row is not built;
// - the row sets or clears, and it ran although the command has only its first words;
// - a display has printed nothing.
// Prints nothing for any other run.
void kx_explain_run(const kestrel_cmd_row &row, int matched, const char *command);

#endif
