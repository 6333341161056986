#include "infra/utils/kxstrings.h"

#include "frontend/output_sink.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

constexpr size_t IPV4_TEXT_SIZE = 16;
constexpr size_t CTIME_BUFFER_SIZE = 32;
constexpr size_t CTIME_TEXT_LENGTH = 19; // up to the seconds, without the year
constexpr size_t DUMP_LINE_LENGTH = 80;
constexpr int EXTRA_TEXT_LENGTH = 84;

bool ends_line(uint8_t byte) {
    return byte == '\n' || byte == '\r' || byte == '\0';
}

} // namespace

// Digit by digit: in a MAC table, six printf conversions would take a third of the time of a row.
int snprintf_mac_address(char *destination, size_t size, const uint8_t mac[6]) {
    constexpr const char *DIGITS = "0123456789abcdef";
    char text[KX_MAC_TEXT_SIZE];
    for (size_t i = 0; i < 6; ++i) {
        text[3 * i] = DIGITS[mac[i] >> 4];
        text[3 * i + 1] = DIGITS[mac[i] & 0xF];
        text[3 * i + 2] = ':';
    }
    if (size > 0) {
        const size_t length = std::min(size, sizeof text) - 1;
        memcpy(destination, text, length);
        destination[length] = '\0';
    }
    return sizeof text - 1;
}

int snprintf_ip_address(char *destination, size_t size, uint32_t address) {
    uint8_t field[4];
    memcpy(field, &address, sizeof field);
    return snprintf(destination, size, "%d.%d.%d.%d", field[0], field[1], field[2], field[3]);
}

int snprintf_ipv6_address(char *destination, size_t size, const uint8_t address[16]) {
    return snprintf(destination, size,
                    "%02x%02x:%02x%02x:%02x%02x:%02x%02x:%02x%02x:%02x%02x:%02x%02x:%02x%02x",
                    address[0], address[1], address[2], address[3], address[4], address[5],
                    address[6], address[7], address[8], address[9], address[10], address[11],
                    address[12], address[13], address[14], address[15]);
}

int ipv4_to_a(uint32_t address, char *destination, size_t size) {
    if (destination == nullptr || size < IPV4_TEXT_SIZE) {
        return -1;
    }
    snprintf(destination, IPV4_TEXT_SIZE, "%u.%u.%u.%u", address >> 24, address >> 16 & 0xff,
             address >> 8 & 0xff, address & 0xff);
    return 0;
}

void kx_format_mac_address() {
}

char *kx_local_ctime(time_t seconds, char *buffer) {
    if (buffer == nullptr) {
        return nullptr;
    }
    memset(buffer, 0, CTIME_BUFFER_SIZE);
    ctime_r(&seconds, buffer);
    buffer[CTIME_TEXT_LENGTH] = '\0';
    return buffer;
}

void od_dump(const char *title, const uint8_t *bytes, int length) {
    kx_print("%s\n", title);
    char line[DUMP_LINE_LENGTH + 1];
    size_t used = 0;
    for (int i = 0; i < length; ++i) {
        if (ends_line(bytes[i]) || used == DUMP_LINE_LENGTH) {
            line[used] = '\0';
            kx_print("%s\n", line);
            used = 0;
        } else {
            line[used++] = static_cast<char>(bytes[i]);
        }
    }
}

void dump_extra_ascii(const char *title, const uint8_t *bytes, int length) {
    kx_print("%s\n", title);
    int start = 0;
    while (start < length && (bytes[start] < 32 || bytes[start] > 127)) {
        ++start;
    }
    if (start >= length) {
        return;
    }
    const int count = length - start < EXTRA_TEXT_LENGTH ? length - start : EXTRA_TEXT_LENGTH;
    kx_print("%.*s\n", count, reinterpret_cast<const char *>(bytes + start));
}
