// Addresses as the described host keeps them.
#ifndef HOST_ADDRESS_H
#define HOST_ADDRESS_H

#include <array>
#include <cstdint>

using mac_address = std::array<uint8_t, 6>;   // in transmission order
using ipv6_address = std::array<uint8_t, 16>; // likewise

#endif
