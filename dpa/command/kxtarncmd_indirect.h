// The agent's socket channel: numbered requests to the user-space agent.
//
// A request is one message on a local stream socket: the kxdpa_request, then the contents of its
// buffers. The agent answers with a message of the same length, whose head carries the status and
// whose body goes back into the buffers. The connection is made by the first request and serves all
// later ones; a broken exchange closes it, and the next request connects anew. Nothing is retried
// and there is no timeout: a request waits until the agent answers or closes.
// One descriptor for the process, no lock.
#ifndef DPA_COMMAND_KXTARNCMD_INDIRECT_H
#define DPA_COMMAND_KXTARNCMD_INDIRECT_H

#include "dpa/command/kxtarncmd_opcodes.h"
#include "dpa/userspace/kxdpa_request.h"

// The connection's descriptor, -1 while there is none.
extern int kx_tarncmd_call_fd;

// Connect to the agent into kx_tarncmd_call_fd, see unix(7). Returns the descriptor, -1 on failure.
int dpa_platform_open();

// Close the connection, if there is one, and forget it. Returns 0.
int dpa_platform_close();

// Close the connection and return close's result, or -1 without one; the variable keeps its value.
int kx_tarncmd_api_exit();

// Exchange one message for `record`. The head is its first `header_len` bytes (at least a
// kxdpa_request). A negative `fd` connects first. A buffer is sent with its length plus its
// capacity, when the capacity is valid. It is copied back whole whatever the flags say, so an input
// buffer receives the agent's echo. Of the reply's head only the status is used. Returns 0 when a
// whole reply arrived, -1 on any failure; the record's status is then KXDPA_STATUS_NO_EXCHANGE.
int kx_tarncmd_socket_api(int fd, kxdpa_request *record, uint32_t header_len);

// The call forms return the record's status word and have the parameters of the kernel channel's
// forms (kxdpa_indirect.h). A capacity stays as the caller gave it, since only the status of the
// reply's head is used. The reply itself must say how much of a variable-length reply is valid.
uint32_t kx_tarncmd_call_indirect1(int opcode, uint32_t arg, uint8_t flags, void *buf, uint32_t len,
                                   const uint32_t *max_ref);
uint32_t kx_tarncmd_call_indirect2(int opcode, uint32_t arg, uint8_t flags, void *buf1,
                                   uint32_t len1, const uint32_t *max1_ref, void *buf2,
                                   uint32_t len2, const uint32_t *max2_ref);
int kx_tarncmd_call_indirect_simple(uint16_t opcode, uint32_t arg, uint8_t flags, void *buf,
                                    uint32_t len);

#endif
