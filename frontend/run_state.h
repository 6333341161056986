#ifndef FRONTEND_RUN_STATE_H
#define FRONTEND_RUN_STATE_H

// True in tarncmd itself, where an operator reads standard error. Only the tool's own main sets it,
// and not the library, whatever its sink points at: in a host process standard error is the host's.
extern bool kx_run_from_shell;

// True once a handler has printed something since its command began.
extern bool kx_has_printed;

// True once a VLAN of this run had multicast groups, whose tables are not built.
extern bool kx_has_unbuilt_groups;

// True once a broken invariant has ended the run; the tool then exits with -1. It is never cleared.
extern bool kx_run_broken;

// What a handler returns after a broken invariant has been reported. A run from a shell ends there:
// the commands after it are not run, and the tool exits with -1. Driven by the agent it is this
// command alone that fails, since a diagnostic must not take its host process down.
int kx_give_up();

#endif
