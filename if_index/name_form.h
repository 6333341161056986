// The forms of interface names, once, as data: short names, long names and ranges are made from
// them.
#ifndef IF_INDEX_NAME_FORM_H
#define IF_INDEX_NAME_FORM_H

#include <cstdint>

#include "if_index/if_index_layout.h"

// In what a range of such names ends: nothing, the name's last number, or one more than that.
enum class range_rule : uint8_t { none, last, next };

enum class platform_rule : uint8_t { any, control_eobc, module_base_128, po_only, san_pc };

// The indexes whose field stores the value; those of every value when the field is none, of type 0.
struct name_condition {
    if_index_field field;
    uint8_t value;
};

struct name_form {
    uint8_t type;
    char short_name[15]; // the next number stands where it has a "#"
    char long_name[30];  // empty where there is none
    if_index_field numbers[3];
    range_rule range;
    if_index_field sub_intf{};  // follows a "." when it is not 0; ranges end in it then
    name_condition condition{}; // which indexes of the type have the form
    platform_rule platform = platform_rule::any;
};

// The form of an index when it is read as one of the type, or null.
const name_form *find_name_form(uint8_t type, uint32_t if_index);

#endif
