// Prints the random host of a seed, as a host file.
#include "host/host_file.h"
#include "tests/host/random_host.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char *argv[]) {
    const auto seed = static_cast<uint32_t>(argc > 1 ? strtoul(argv[1], nullptr, 0) : 0);
    fputs(write_host(random_host(seed)).c_str(), stdout);
    return 0;
}
