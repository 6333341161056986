#include "if_index/if_index.h"

int if_index_get_type(uint32_t if_index, uint8_t *type) {
    if (type == nullptr)
        return IF_INDEX_OUT_OF_RANGE;
    *type = if_index_type_bits(if_index);
    const bool valid = *type != 0 && *type != IF_TYPE_RESERVED && *type <= IF_TYPE_LAST;
    return valid ? IF_INDEX_OK : IF_INDEX_INVALID_TYPE;
}
