// The request lines of a simulated host, in a file.
#ifndef SIM_TRACE_H
#define SIM_TRACE_H

#include "sim/model.h"

// Write a line to the descriptor for every request from now on. What cannot be written is lost.
void trace_into(model &driver, int descriptor);

#endif
