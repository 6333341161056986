// Reads and writes objects by their key tables.
#ifndef HOST_OBJECTS_H
#define HOST_OBJECTS_H

#include "host/json_tree.h"
#include "host/keys.h"

#include <set>
#include <string>
#include <vector>

// Take all keys of the value into the object, which the table made. A key that is not given leaves
// what is there. What is wrong is added to `wrong`, and everything else is taken all the same.
void read_object(const json_value &given, const key_table &table, void *object,
                 std::vector<host_error> &wrong);

struct write_options {
    bool full = false;            // defaults are written, too
    std::set<std::string> keys{}; // only these of the outermost object; all when empty
};

// The object as the text of a JSON object, without a newline at the end. Unless all is wanted, a
// key is left out where reading without it gives the same. The paths of values that no key can say
// are added to `unsaid`; they are left out too, and so are items of lists whose required keys are.
std::string object_text(const key_table &table, const void *object, const write_options &options,
                        std::vector<std::string> &unsaid);

#endif
