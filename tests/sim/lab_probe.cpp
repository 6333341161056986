// A command for tarnlab to run in its tests: shows what a program sees that is started with it.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

int main(int argc, char *argv[]) {
    const char *what = argc > 1 ? argv[1] : "";
    if (strcmp(what, "exit") == 0)
        return atoi(argv[2]);
    if (strcmp(what, "signal") == 0)
        return raise(atoi(argv[2]));
    if (strcmp(what, "environment") == 0) {
        execl("/usr/bin/env", "env", nullptr);
    } else if (strcmp(what, "open") == 0) {
        const int file = open(argv[2], O_RDONLY);
        printf("%s\n", file == -1 ? strerror(errno) : "opened");
        return 0;
    }
    return 1;
}
