// The driver's device as a real file, for programs that nothing can be preloaded into.
//
// The file lives in a mount namespace of this process and of the programs that it starts from then
// on: no other process sees it, several can exist side by side, and it is gone with the last of
// those processes. It is a FUSE mount of one file. The kernel's protocol is spoken here directly;
// the only request that matters is the ioctl, which carries the caller's process id and the address
// of its request record.
#ifndef SIM_DEVICE_DEVICE_FILE_H
#define SIM_DEVICE_DEVICE_FILE_H

#include "sim/model.h"

#include <string>

// Put this process into its own mount namespace and mount the device file there. Returns the
// descriptor that its requests are read from, or -1 with one line in `error`. Nothing outside the
// process changes, also on failure. Needs root and /dev/fuse.
int mount_device_file(std::string &error);

// Read one request from the descriptor and answer it. Waits for one when there is none. Returns
// false when the file is no longer mounted.
bool serve_device_request(int channel, model &driver);

#endif
