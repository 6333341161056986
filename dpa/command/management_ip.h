// The host's management address, as the host itself tells it.
#ifndef DPA_COMMAND_MANAGEMENT_IP_H
#define DPA_COMMAND_MANAGEMENT_IP_H

#include <cstddef>
#include <cstdint>

// Bytes of "255.255.255.255", its newline and a NUL, and two to spare.
constexpr size_t KX_MANAGEMENT_IP_SIZE = 19;

// Ask the host's configuration command for the management address, as the last line that it prints,
// without its newline; empty when there is none. Of a line that does not fit it is the last piece.
void kx_dpa_platform_read_management_ip(char (&address)[KX_MANAGEMENT_IP_SIZE]);

// Ask the host's configuration command for the management IPv4 address, tell it to the driver
// (KXDPA_OP_SET_MANAGEMENT_IPV4) and store it in `out`, in network byte order; 0.0.0.0 when the
// command has no answer. Returns 0 whatever the driver answers, 1 when `out` is NULL.
uint32_t kx_dpa_platform_get_management_ip(uint32_t *out);

// A dotted address as a number in host order. Every part is a number as kx_parse_number reads it;
// neither its range nor the number of parts is checked. 0 for an empty text. Alters the text.
uint32_t conv_ip_address(char *text);

// Naming a thread is for the agent itself; its shared code expects the function.
void kxdpa_set_thread_name();

#endif
