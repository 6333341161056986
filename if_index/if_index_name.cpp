#include "if_index/if_index_name.h"

#include <cstdio>
#include <cstring>

#include "if_index/name_form.h"

using namespace if_layout;

static void clear_buffer(char *buffer, size_t size) {
    if (size > 0) {
        buffer[0] = '\0';
    }
}

static int shown_sub_intf(uint32_t if_index, const name_form &form) {
    switch (form.type) {
    case IF_TYPE_LVETH: // deliberately shown with its place in the index, as 4, 8 or 12
        return (int)if_field_bits(form.sub_intf, stored(if_index, form.sub_intf));
    case IF_TYPE_SAT: // deliberately not shown
        return 0;
    default:
        return form.sub_intf.type == 0 ? 0 : shown(if_index, form.sub_intf);
    }
}

static int print_form(char *buffer, size_t size, uint32_t if_index, const name_form &form,
                      bool is_long) {
    const char *text = is_long ? form.long_name : form.short_name;
    if (text[0] == '\0') {
        return snprintf(buffer, size, "0x%08x", if_index);
    }
    char name[64]; // much more than the longest form with its numbers
    int length = 0;
    for (const if_index_field *number = form.numbers; *text != '\0'; text++) {
        if (*text == '#') {
            length += snprintf(name + length, sizeof name - (size_t)length, "%d",
                               shown(if_index, *number++));
        } else {
            name[length++] = *text;
        }
    }
    name[length] = '\0';
    const int sub_intf = shown_sub_intf(if_index, form);
    return sub_intf == 0 ? snprintf(buffer, size, "%s", name)
                         : snprintf(buffer, size, "%s.%d", name, sub_intf);
}

static int print_native(char *buffer, size_t size, uint32_t if_index, bool is_long) {
    clear_buffer(buffer, size);
    uint8_t type = 0;
    if (if_index_get_type(if_index, &type) != IF_INDEX_OK) {
        return 0;
    }
    if (type >= IF_TYPE_OPAQUE_38) {
        return snprintf(buffer, size, "0x%08x", if_index);
    }
    const name_form *form = find_name_form(type, if_index);
    const int length = form == nullptr ? 0 : print_form(buffer, size, if_index, *form, is_long);
    // Deliberate: a vfc whose bits also read as an overlay kind has the overlay's name.
    const name_form *overlay =
        type == IF_TYPE_VFC ? find_name_form(IF_TYPE_OVERLAY, if_index) : nullptr;
    return overlay == nullptr ? length : print_form(buffer, size, if_index, *overlay, is_long);
}

int if_db_ifindex2str_wrapper(uint32_t, char *, size_t) {
    return IF_INDEX_NO_DATABASE;
}

int snprintf_if_index_from_if_db(char *buffer, size_t size, uint32_t if_index) {
    clear_buffer(buffer, size);
    uint8_t type = 0;
    if (if_index_get_type(if_index, &type) != IF_INDEX_OK || type != IF_TYPE_PHY_FC) {
        return 0;
    }
    if (if_db_ifindex2str_wrapper(if_index, buffer, size) != IF_INDEX_OK) {
        return 0;
    }
    return (int)strnlen(buffer, size);
}

int snprintf_if_index_short_native(char *buffer, size_t size, uint32_t if_index) {
    return print_native(buffer, size, if_index, false);
}

int snprintf_if_index_short(char *buffer, size_t size, uint32_t if_index) {
    const int length = snprintf_if_index_from_if_db(buffer, size, if_index);
    return length != 0 ? length : snprintf_if_index_short_native(buffer, size, if_index);
}

int sprintf_if_index_short(char *buffer, uint32_t if_index) {
    return snprintf_if_index_short(buffer, IF_INDEX_NAME_SIZE, if_index);
}

int snprintf_if_index_native(char *buffer, size_t size, uint32_t if_index) {
    return print_native(buffer, size, if_index, true);
}

int snprintf_if_index(char *buffer, size_t size, uint32_t if_index) {
    const int length = snprintf_if_index_from_if_db(buffer, size, if_index);
    return length != 0 ? length : snprintf_if_index_native(buffer, size, if_index);
}

int sprintf_if_index(char *buffer, uint32_t if_index) {
    return snprintf_if_index(buffer, IF_INDEX_NAME_SIZE, if_index);
}

// The inband sub-type's queue, or null for one without.
static const char *inband_queue(uint32_t if_index) {
    static const char *const queues[] = {"(high)", "(low)", "(drop)", "(L)", "(LC)", "(R)"};
    const uint32_t subtype = stored(if_index, inband_subtype);
    return subtype < sizeof queues / sizeof queues[0] ? queues[subtype] : nullptr;
}

int snprintf_if_index_internal(char *buffer, size_t size, uint32_t if_index) {
    uint8_t type = 0;
    if (if_index_get_type(if_index, &type) != IF_INDEX_OK) {
        return snprintf_if_index_short(buffer, size, if_index);
    }
    const uint32_t port_channel_form = stored(if_index, port_channel_subtype);
    const char *queue = inband_queue(if_index);
    if (type == IF_TYPE_PORT_CHANNEL && port_channel_form > IF_PORT_CHANNEL_PAIR) {
        return snprintf(buffer, size, "ipc %d/%d/%d", (int)port_channel_form,
                        shown(if_index, port_channel_channel_num),
                        shown(if_index, port_channel_subtype_arg));
    }
    if (type == IF_TYPE_IFC) {
        return snprintf(buffer, size, "xgfc %d/%d/%d", shown(if_index, ifc_first),
                        shown(if_index, ifc_second), shown(if_index, ifc_third));
    }
    if (type == IF_TYPE_INBAND && stored(if_index, inband_subtype) == IF_INBAND_LINECARD) {
        return snprintf(buffer, size, "lc-eth(%d) %s", shown(if_index, inband_linecard_num), queue);
    }
    if (type == IF_TYPE_INBAND && queue != nullptr) {
        return snprintf(buffer, size, "sup-fc%s %s", "0", queue);
    }
    return snprintf_if_index_short(buffer, size, if_index);
}

int sprintf_if_index_internal(char *buffer, uint32_t if_index) {
    return snprintf_if_index_internal(buffer, IF_INDEX_NAME_SIZE, if_index);
}
