#include "host/interface.h"

#include "if_index/if_index_name.h"
#include "if_index/if_index_parse.h"

#include <string_view>

namespace {

// What stands in front of the numbers where names are shown, and where they are typed. The first of
// two that are shown alike is meant.
constexpr struct {
    std::string_view shown, typed;
} KINDS[] = {
    {"Eth", "hmx-ethernet"},    {"Eth", "ethernet"},         {"Po", "ethernet-port-channel"},
    {"San-po", "port-channel"}, {"GigE", "gigabitethernet"}, {"", ""},
};

} // namespace

std::string shown_interface(uint32_t index) {
    char name[IF_INDEX_NAME_SIZE] = "";
    snprintf_if_index_short(name, sizeof name, index);
    return name;
}

uint32_t interface_index(const std::string &name) {
    for (const auto &[shown, typed] : KINDS) {
        if (!name.starts_with(shown)) {
            continue;
        }
        const std::string text = std::string(typed) + name.substr(shown.size());
        uint32_t index = 0;
        // The index of a VLAN's interface depends on the environment, too.
        if (vsh_interface_name_to_ifindex(text.c_str(), &index) != 0 && index != 0 &&
            index >> 24 != IF_TYPE_VLAN && shown_interface(index) == name) {
            return index;
        }
    }
    return 0;
}
