#include "sim/lab/command_file.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <elf.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr const char *DEFAULT_PATH = "/bin:/usr/bin"; // what execvp searches without PATH
constexpr const char *SHELL = "/bin/sh";              // what it runs a script without "#!" by
constexpr size_t HEAD_SIZE = 256;                     // bytes, all that the kernel looks at
constexpr int SCRIPT_LIMIT = 5; // interpreters that are scripts themselves, as in the kernel

enum class program_kind { unknown, dynamic, fixed, wide, script };

bool is_program(const std::string &path) {
    struct stat found {};
    return stat(path.c_str(), &found) == 0 && S_ISREG(found.st_mode) &&
           access(path.c_str(), X_OK) == 0;
}

// The path of a command, empty when there is none.
std::string find_program(const std::string &command) {
    if (command.find('/') != std::string::npos) {
        return is_program(command) ? command : "";
    }
    const char *path = std::getenv("PATH");
    std::string_view rest = path == nullptr ? DEFAULT_PATH : path;
    for (;;) {
        const size_t end = rest.find(':');
        const std::string folder(rest.substr(0, end));
        const std::string candidate = (folder.empty() ? "." : folder) + "/" + command;
        if (is_program(candidate)) {
            return candidate;
        }
        if (end == std::string_view::npos) {
            return "";
        }
        rest.remove_prefix(end + 1);
    }
}

bool names_a_loader(int file, const Elf32_Ehdr &head) {
    for (size_t i = 0; i < head.e_phnum; i++) {
        Elf32_Phdr part{};
        const auto at = static_cast<off_t>(head.e_phoff + i * head.e_phentsize);
        if (pread(file, &part, sizeof part, at) == static_cast<ssize_t>(sizeof part) &&
            part.p_type == PT_INTERP) {
            return true;
        }
    }
    return false;
}

// What a file is; for a script its interpreter too.
program_kind look_at(const std::string &path, std::string &interpreter) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file == -1) {
        return program_kind::unknown;
    }
    char start[HEAD_SIZE] = {};
    const ssize_t length = pread(file, start, sizeof start - 1, 0);
    program_kind kind = program_kind::script;
    if (length <= 0) {
        kind = program_kind::unknown;
    } else if (std::memcmp(start, ELFMAG, SELFMAG) == 0) {
        Elf32_Ehdr head{};
        std::memcpy(&head, start, sizeof head);
        kind = start[EI_CLASS] == ELFCLASS64 ? program_kind::wide
               : names_a_loader(file, head)  ? program_kind::dynamic
                                             : program_kind::fixed;
    } else if (std::memcmp(start, "#!", 2) == 0) {
        const size_t first = 2 + std::strspn(start + 2, " \t");
        interpreter.assign(start + first, std::strcspn(start + first, " \t\n"));
    } else {
        interpreter = SHELL;
    }
    close(file);
    return kind;
}

} // namespace

std::string why_not_preloaded(const std::string &command) {
    std::string path = find_program(command);
    std::string subject = command;
    for (int scripts = 0; scripts < SCRIPT_LIMIT && !path.empty(); scripts++) {
        std::string interpreter;
        switch (look_at(path, interpreter)) {
        case program_kind::wide:
            return subject + ": is a 64-bit program, which the device cannot be preloaded into; " +
                   "give the 32-bit program itself, or --device";
        case program_kind::fixed:
            return subject + ": is a static program, which nothing can be preloaded into; " +
                   "use --device";
        case program_kind::script:
            path = interpreter;
            subject = command + ": its interpreter " + interpreter;
            break;
        default:
            return "";
        }
    }
    return "";
}
