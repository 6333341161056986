// Commands that run inside the agent: the text goes to the agent's command pipe, and what the agent
// prints comes back through a file of this process.
//
// The conversation on the pipe:
//     "redirect set FILE" NUL     the agent prints into FILE from now on
//     COMMAND "\n"                the command to run; the agent ends its output with "#byeBye#"
//     "redirect reset " NUL       the agent stops printing into the file
// kx_dpa_cmd itself is declared in frontend/handlers.h. It prints to standard output, past the
// output sink, because the remote CLI may not run the command.
//
// The conversation ends on an interrupt, a hang-up, a termination, or when nobody reads standard
// output any more. The agent is then told to stop printing, and the file is removed. After that the
// signal (SIGPIPE for the output) does what it did before. If the process goes on, kx_dpa_cmd
// returns KXCMD_STOP.
#ifndef DPA_COMMAND_DPA_CMD_H
#define DPA_COMMAND_DPA_CMD_H

// Write all `length` bytes, see write(2). Returns 0, or -1 after a line about the error. A length
// below 1 writes nothing.
int kx_send_to_fd(int fd, const void *data, int length);

// Copy a growing file to standard output, the end marker included. Returns the marker, or NULL when
// the file could not be read, standard output is gone, a signal ended the conversation, or about 20
// seconds passed without output.
const char *kx_read_out_from_fd(int fd);

#endif
