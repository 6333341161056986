// Texts as the host file writes them.
//
// A driver's text is any bytes without NUL, a JSON file is UTF-8. A byte that is no part of
// well-formed UTF-8 is written as one of the private-use characters U+EF80 to U+EFFF, for 0x80 to
// 0xFF, and these read as the byte that they stand for. Where the driver's text itself holds such a
// character, its three bytes are written one by one. So every text comes back as it was.
#ifndef HOST_TEXT_H
#define HOST_TEXT_H

#include <string>
#include <string_view>

std::string bytes_to_utf8(std::string_view bytes);
std::string bytes_from_utf8(std::string_view text);

// Append a JSON string, quotes included, of well-formed UTF-8. Nothing but quotes, backslashes and
// control characters is escaped.
void append_quoted(std::string &json, std::string_view utf8);

#endif
