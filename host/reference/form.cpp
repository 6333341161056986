// How values stand in a host file, whatever their key. Both documents tell it.
#include "host/reference/reference.h"

namespace {

constexpr value_form FORMS[] = {
    {"number", "a number, or a text with one in C notation: `28`, `\"0x1c\"`"},
    {"flag", "`true` or `false`; where a driver said more than 1, that number"},
    {"word", "one of the words; what a driver said and no word stands for is its number"},
    {"words", "a list of such words and numbers, for the bits of a number"},
    {"text", "a text without NUL; a driver's may fill its field, then it has no end there"},
    {"texts", "a list of such texts"},
    {"bytes", "in hexadecimal; `00*512` stands for 512 equal bytes, pieces are set off by commas"},
    {"MAC address", "`\"00:50:56:aa:bb:cc\"`"},
    {"IPv4, IPv6 address", "`\"10.1.2.3\"`, `\"2001:db8::1\"`"},
    {"interface",
     "the name that the tool prints, or the index as a number where the name leads to another one"},
    {"numbers", "a list of numbers, or a text such as `\"1,10-20\"`"},
};

constexpr const char *RULES[] = {
    R"(`null` says that the driver refuses what it is asked. A key that says `or null` can say so; where
leaving a key out is a refusal already, its default says "refused".)",
    R"(A text is UTF-8. A byte of the driver's that is no part of well-formed UTF-8 stands as one of the
characters U+EF80 to U+EFFF, for 0x80 to 0xFF; so do the three bytes of such a character itself.)",
    R"(Written by a program, a host has one form: keys in the order below, defaults left out (`--full` writes
them out, too), lists in the driver's order, two blanks a level, lists of values on one line, one
newline at the end. Equal hosts are equal files. The numbers that people compute with are numbers: a
counter of more than 53 bits is exact in the file, though some readers of JSON round it.)",
};

} // namespace

std::span<const value_form> value_forms() {
    return FORMS;
}

std::span<const char *const> form_rules() {
    return RULES;
}
