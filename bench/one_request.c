/* The smallest program there is: open the device, make one request, print a line. */
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <sys/ioctl.h>

int main(void) {
    uint32_t domain = 0;
    uint32_t request[12] = {63 | 0x7Cu << 16 | 1u << 24, 1, 0, 1, sizeof domain};
    request[10] = (uint32_t)(uintptr_t)&domain;
    const int device = open("/vmfs/devices/char/vmkdriver/kestrel", O_RDONLY);
    ioctl(device, 0, request);
    printf("%u\n", domain);
    return 0;
}
