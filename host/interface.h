// Interfaces by the names that tables show.
#ifndef HOST_INTERFACE_H
#define HOST_INTERFACE_H

#include <cstdint>
#include <string>

// The name under which an interface index is shown, empty for an index without one.
std::string shown_interface(uint32_t index);

// The index behind such a name, 0 for none. Names that stand for several indexes lead to one.
uint32_t interface_index(const std::string &name);

#endif
