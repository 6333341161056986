// The interface index: a 32-bit number that identifies every interface of the switch data path.
//
// The index describes itself: its type and the meaning of its other bits are in
// if_index_layout.h. The functions here are plain arithmetic over the value; none allocates or
// holds state. Results go through output pointers, the return value is a status.
#ifndef IF_INDEX_IF_INDEX_H
#define IF_INDEX_IF_INDEX_H

#include <cstdint>

#include "if_index/if_index_layout.h"

// Statuses of the library.
enum if_index_status : int {
    IF_INDEX_OK = 0,
    IF_INDEX_NO_DATABASE = 7,   // the interface database is not available
    IF_INDEX_INVALID_TYPE = 11, // the index carries no valid type
    IF_INDEX_WRONG_TYPE = 12,   // a valid index, but of another type than is asked for
    IF_INDEX_NO_MORE = 13,      // the end of a walk
    IF_INDEX_OUT_OF_RANGE = 14, // a field value is out of range, or an output pointer is null
};

// Store the type number of the index, valid or not. IF_INDEX_INVALID_TYPE unless it is 1 to 74
// except 3.
int if_index_get_type(uint32_t if_index, uint8_t *type);

#endif
