// A file that is there whole or not at all.
#ifndef CAPTURE_OUTPUT_FILE_H
#define CAPTURE_OUTPUT_FILE_H

#include <string>
#include <string_view>

// Find out early whether the file will be writable. On failure returns false and sets `error` to
// one line without a newline that begins with the path.
bool check_output_file(const std::string &path, std::string &error);

// Write `text` into another file and rename it to `path`, so that whoever reads `path` meanwhile,
// and an interrupted run, find the file as it was. The other file has no name until it is renamed,
// so that nothing of it is left behind. A symbolic link stays and its file is replaced; what is no
// regular file (a pipe, a terminal) is written as it is. Fails as above.
bool write_output_file(const std::string &path, std::string_view text, std::string &error);

#endif
