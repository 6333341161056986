// Reads objects by their key tables.
#ifndef HOST_READER_H
#define HOST_READER_H

#include "host/json_tree.h"
#include "host/keys.h"

#include <vector>

// Take all keys of the value into the object, which the table made. A key that is not given leaves
// what is there. What is wrong is added to `wrong`, and everything else is taken all the same.
void read_object(const json_value &given, const key_table &table, void *object,
                 std::vector<host_error> &wrong);

#endif
