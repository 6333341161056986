// Interface names: the text under which an interface index is displayed.
//
// Every function writes into the caller's buffer and never beyond `size` bytes (the range forms:
// beyond if_index_range_storage(size)). When size is not 0, the text ends with a NUL. Like
// snprintf, a function returns the length of the whole name, which may exceed `size`. An index
// without a valid type gives the empty string and 0.
#ifndef IF_INDEX_IF_INDEX_NAME_H
#define IF_INDEX_IF_INDEX_NAME_H

#include <cstddef>
#include <cstdint>

#include "if_index/if_index.h"

// Bytes of the buffer that the sprintf_ forms require.
constexpr size_t IF_INDEX_NAME_SIZE = 32;

// The short name (Eth3/1, Veth12, Po5): from the interface database when it knows the index, else
// from the index's own bits. Types without a form of their own print as 0x%08x.
int snprintf_if_index_short(char *buffer, size_t size, uint32_t if_index);

// The short name from the index's own bits alone.
int snprintf_if_index_short_native(char *buffer, size_t size, uint32_t if_index);

// The name in the interface database: empty and 0 while there is no database. Only Fibre Channel
// ports are asked for.
int snprintf_if_index_from_if_db(char *buffer, size_t size, uint32_t if_index);

// An interface database would write its name for the index here. There is none: returns
// IF_INDEX_NO_DATABASE and does not change the buffer.
int if_db_ifindex2str_wrapper(uint32_t if_index, char *buffer, size_t size);

// The short name into a buffer of IF_INDEX_NAME_SIZE bytes.
int sprintf_if_index_short(char *buffer, uint32_t if_index);

// The long name (Ethernet3/1, Vethernet12, port-channel5), in the same order of sources. Supervisor
// inband ports have none and print as 0x%08x.
int snprintf_if_index(char *buffer, size_t size, uint32_t if_index);
int snprintf_if_index_native(char *buffer, size_t size, uint32_t if_index);
int sprintf_if_index(char *buffer, uint32_t if_index);

// The name that tells inband queues, internal port-channels and internal Fibre Channel ports
// apart; the short name for everything else.
int snprintf_if_index_internal(char *buffer, size_t size, uint32_t if_index);
int sprintf_if_index_internal(char *buffer, uint32_t if_index);

// Bytes that a buffer for a range's name must have. `size` limits the first name, and then once
// more the end of the range, from where the first name ends.
constexpr size_t if_index_range_storage(size_t size) {
    return size == 0 ? 0 : 2 * size - 1;
}

// The name of a range: the first index's short or long name and the last number of the second
// (Eth3/1-4). For two equal indexes it is their name. Returns the length of the whole name. Returns
// 0
// - with the buffer unchanged when the two are not of one valid type,
// - with an empty buffer when the first name does not fit into `size`,
// - with the first name alone when the end does not fit.
// Types without a range form write the first name and deliberately return twice its length.
// REQUIRES: a buffer of if_index_range_storage(size) bytes.
int snprintf_if_index_range_short(char *buffer, size_t size, const if_index_range *range);
int snprintf_if_index_range(char *buffer, size_t size, const if_index_range *range);

#endif
