#ifndef FRONTEND_RUN_STATE_H
#define FRONTEND_RUN_STATE_H

#include <cstdint>

// True in tarncmd itself, where an operator reads standard error. Only the tool's main sets it. The
// library never does, whatever its sink points at: standard error belongs to its host process.
extern bool kx_run_from_shell;

// What happened since the command began: whether it printed something, and how many requests its
// walks made.
extern bool kx_has_printed;
extern uint32_t kx_walked_requests;

// True once a VLAN of this run had multicast groups, whose tables are not built.
extern bool kx_has_unbuilt_groups;

// True once a broken invariant has ended the run; the tool then exits with -1 and never clears it.
extern bool kx_run_broken;

// What a handler returns after it has reported a broken invariant. A run from a shell ends there:
// the commands after it do not run, and the tool exits with -1. In agent-driven mode only this
// command fails, since a diagnostic must not end its host process.
int kx_give_up();

#endif
