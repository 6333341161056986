// Stands in for the driver's device file inside a process.
//
// Linked into a program, or preloaded, this module takes over open, open64, openat, openat64, ioctl
// and close. Calls for the device path, and on descriptors that it gave out for it, reach the
// model; every other call passes through to the C library untouched.
#ifndef SIM_INTERPOSE_H
#define SIM_INTERPOSE_H

#include "sim/model.h"

constexpr const char *DRIVER_DEVICE_PATH = "/vmfs/devices/char/vmkdriver/kestrel";

// The model that answers from now on, which stays the caller's; nullptr takes the device away, so
// that opening it fails as on a machine without the driver.
void interpose_model(model *driver);

#endif
