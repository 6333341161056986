// Programs of the virtualization host that the tool runs, in a private folder at the head of PATH.
#ifndef SIM_HOST_PROGRAMS_H
#define SIM_HOST_PROGRAMS_H

#include "host/host.h"

#include <string>

class host_programs {
public:
    host_programs() = default;
    // Removes the folder; PATH is restored.
    ~host_programs();
    host_programs(const host_programs &) = delete;
    host_programs &operator=(const host_programs &) = delete;

    // Install "esxcfg-advcfg", which tells the host's management address. A host without one has no
    // such program, and nothing is installed. Folders that killed processes of the same user have
    // left are removed on the way. On failure returns false and sets `error` to one line.
    bool install(const host &described, std::string &error);

private:
    bool make_folder();

    std::string folder_; // empty while nothing is installed
    std::string path_before_;
    int lock_ = -1; // the folder itself, locked for as long as it is in use
};

#endif
