// The names of interface ranges.
#include <cstdio>

#include "if_index/if_index_name.h"
#include "if_index/name_form.h"

using namespace if_layout;

// The number with which the range ends, or -1 for names without a range form.
static int last_number(uint32_t if_index) {
    const uint8_t type = if_index_type_bits(if_index);
    if (type == IF_TYPE_VFC) { // deliberately the same bits for every sub-type
        return shown(if_index, vfc_vfc_num);
    }
    const name_form *form = find_name_form(type, if_index);
    if (form == nullptr || form->range == range_rule::none) {
        return -1;
    }
    if (form->sub_intf.type != 0 && stored(if_index, form->sub_intf) != 0) {
        return shown(if_index, form->sub_intf);
    }
    int last = 0;
    for (const if_index_field &number : form->numbers) {
        last = number.type != 0 ? shown(if_index, number) : last;
    }
    return form->range == range_rule::next ? last + 1 : last;
}

using name_printer = int (*)(char *buffer, size_t size, uint32_t if_index);

static int print_range(char *buffer, size_t size, const if_index_range *range,
                       name_printer print_name) {
    uint8_t first_type = 0;
    uint8_t last_type = 0;
    if (range == nullptr || if_index_get_type(range->first, &first_type) != IF_INDEX_OK ||
        if_index_get_type(range->last, &last_type) != IF_INDEX_OK || first_type != last_type) {
        return 0;
    }

    const int length = print_name(buffer, size, range->first);
    if ((size_t)length >= size) {
        if (size > 0) {
            buffer[0] = '\0';
        }
        return 0;
    }
    if (range->first == range->last) {
        return length;
    }
    const int number = last_number(range->last);
    if (number < 0) {
        return 2 * length; // deliberate: the first name is counted twice
    }

    // Deliberate: the limit of the end is the whole size, not what the first name left of it. The
    // caller's buffer has room for that.
    char *end = buffer + length;
    int appended = 0;
    if (first_type == IF_TYPE_PHY_FC && stored(range->last, phy_fc_sub_intf) != 0) {
        // Deliberate: this form repeats the first name. A copy is needed, because the text to
        // repeat is in the buffer that is written.
        char first_name[IF_INDEX_NAME_SIZE];
        snprintf(first_name, sizeof first_name, "%s", buffer);
        appended = snprintf(end, size, "%s-%d", first_name, number);
    } else {
        appended = snprintf(end, size, "-%d", number);
    }
    if ((size_t)appended >= size) {
        *end = '\0';
        return 0;
    }
    return length + appended;
}

int snprintf_if_index_range_short(char *buffer, size_t size, const if_index_range *range) {
    return print_range(buffer, size, range, snprintf_if_index_short);
}

int snprintf_if_index_range(char *buffer, size_t size, const if_index_range *range) {
    return print_range(buffer, size, range, snprintf_if_index);
}
