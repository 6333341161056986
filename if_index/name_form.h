// The forms of interface names, once, as data: short names, long names and ranges are made from
// them.
#ifndef IF_INDEX_NAME_FORM_H
#define IF_INDEX_NAME_FORM_H

#include <cstdint>

#include "if_index/if_index_layout.h"

// What follows the "-" of a range of such names: nothing (no range form), the name's last number,
// or one more.
enum class range_rule : uint8_t { none, last, next };

enum class platform_rule : uint8_t { any, control_eobc, module_base_128, po_only, san_pc };

// The indexes whose field stores the value. Without a field (type 0), all indexes.
struct name_condition {
    if_index_field field;
    uint8_t value;
};

struct name_form {
    uint8_t type;
    char short_name[15]; // each "#" stands for the next number
    char long_name[30];  // empty where there is none
    if_index_field numbers[3];
    range_rule range;
    if_index_field sub_intf{};  // after a "." when it is not 0; ranges then end with it
    name_condition condition{}; // which indexes of the type have the form
    platform_rule platform = platform_rule::any;
};

// The form of an index, read as one of the given type, or null.
const name_form *find_name_form(uint8_t type, uint32_t if_index);

#endif
