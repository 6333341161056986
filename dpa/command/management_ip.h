// The host's management address, as the host itself gives it.
#ifndef DPA_COMMAND_MANAGEMENT_IP_H
#define DPA_COMMAND_MANAGEMENT_IP_H

#include <cstddef>
#include <cstdint>

// Bytes of "255.255.255.255", its newline, a NUL, and two spare bytes.
constexpr size_t KX_MANAGEMENT_IP_SIZE = 19;

// Ask the host's configuration command for the management address. The result is the last line that
// it prints, without the newline; empty when there is none. Of a line that does not fit, it is the
// last piece.
void kx_dpa_platform_read_management_ip(char (&address)[KX_MANAGEMENT_IP_SIZE]);

// Ask the host's configuration command for the management IPv4 address, send it to the driver
// (KXDPA_OP_SET_MANAGEMENT_IPV4) and store it in `out`, in network byte order; 0.0.0.0 when the
// command has no answer. Returns 0 whatever the driver answers, 1 when `out` is NULL.
uint32_t kx_dpa_platform_get_management_ip(uint32_t *out);

// A dotted address as a number in host order. Each part is read as kx_parse_number reads it;
// neither its range nor the number of parts is checked. 0 for an empty text. Changes the text.
uint32_t conv_ip_address(char *text);

// Only the agent itself names threads, but the code that it shares expects the function.
void kxdpa_set_thread_name();

#endif
