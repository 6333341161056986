// Bytes as the trace and the host file write them: two hexadecimal digits a byte, a run of eight or
// more equal bytes as the byte, "*" and the count, runs set off by commas: "00020000,00*512".
#ifndef HOST_HEX_H
#define HOST_HEX_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

constexpr size_t HEX_LIMIT = size_t{1} << 20; // bytes that a text may stand for

// Append the two digits.
void append_hex_byte(std::string &text, uint8_t byte);

std::string bytes_to_hex(std::span<const uint8_t> bytes);

// Also takes shorter runs. Nothing for a malformed text or one that stands for more bytes.
std::optional<std::vector<uint8_t>> bytes_from_hex(std::string_view text);

#endif
