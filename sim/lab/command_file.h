// The file that a command is, looked at before it runs.
#ifndef SIM_LAB_COMMAND_FILE_H
#define SIM_LAB_COMMAND_FILE_H

#include <string>

// Why the command, found as the shell finds it, cannot have the library preloaded: one line that
// says what to do. Empty when it can, and for a command that cannot be looked at, which to start
// will say more about. A script is what its interpreter is.
std::string why_not_preloaded(const std::string &command);

#endif
