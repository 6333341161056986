// Bytes as the trace and the host file write them: two hexadecimal digits a byte, a run of eight or
// more equal bytes as the byte, "*" and the count, runs set off by commas: "00020000,00*512".
#ifndef HOST_HEX_H
#define HOST_HEX_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

std::string bytes_to_hex(std::span<const uint8_t> bytes);

// Also takes shorter runs. Nothing for a malformed text or one that stands for more than 1 MiB.
std::optional<std::vector<uint8_t>> bytes_from_hex(std::string_view text);

#endif
