// What a row of the command table says of itself: the words to type, and what there is to say of a
// run of it.
#ifndef FRONTEND_COMMAND_ROWS_H
#define FRONTEND_COMMAND_ROWS_H

#include "frontend/kestrel_cmd_list.h"

// How many keywords of the row are typed as they stand. The keywords after them document: a word
// with a bracket or a bar, or "cookie", and everything after it.
int kx_typed_keywords(const kestrel_cmd_row &row);

// Tell the operator what a run of `command` on this row, of which it gave the first `matched`
// keywords, did not say by itself. One line on standard error, after what standard output holds
// back:
// - the row is the catch-all of unknown displays (with the nearest display that there is), or a
//   command only begins like a row that is not built;
// - the row is not built;
// - a command that only begins like the row has set or cleared something;
// - a display has printed nothing.
// Prints nothing for any other run.
void kx_explain_run(const kestrel_cmd_row &row, int matched, const char *command);

#endif
