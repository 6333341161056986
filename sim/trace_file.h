// The file that a simulated host writes its request lines into.
#ifndef SIM_TRACE_FILE_H
#define SIM_TRACE_FILE_H

#include "sim/model.h"

#include <string>

// Add a line to the file for every request from now on. A file that cannot be written loses them.
void trace_into(model &driver, const std::string &path);

#endif
