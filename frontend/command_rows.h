// What a row of the command table says of itself: the words to type, and why a run of it is silent.
#ifndef FRONTEND_COMMAND_ROWS_H
#define FRONTEND_COMMAND_ROWS_H

#include "frontend/kestrel_cmd_list.h"

// How many keywords of the row are typed as they stand. The keywords behind them document: a word
// with a bracket or a bar, or "cookie", and everything after it.
int kx_typed_keywords(const kestrel_cmd_row &row);

// Tell the operator, in one line on standard error, that running `command` on this row, of which it
// gave the first `matched` keywords, answers nothing: the row is not built, the command only begins
// like one that is not built, or the row is the catch-all of unknown display commands. Prints
// nothing for any other row. What standard output holds back is written first.
void kx_explain_silence(const kestrel_cmd_row &row, int matched, const char *command);

#endif
