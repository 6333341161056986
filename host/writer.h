// Writes objects by their key tables.
#ifndef HOST_WRITER_H
#define HOST_WRITER_H

#include "host/key.h"

#include <string>
#include <vector>

// The object as the text of a JSON object, without a newline at the end. A key is left out where
// reading without it gives the same. The paths of values that no key can say are added to `unsaid`;
// they are left out too.
std::string object_text(const key_table &table, const void *object,
                        std::vector<std::string> &unsaid);

#endif
