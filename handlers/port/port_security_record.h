// The security state of one port.
#ifndef HANDLERS_PORT_PORT_SECURITY_RECORD_H
#define HANDLERS_PORT_PORT_SECURITY_RECORD_H

#include <cstddef>
#include <cstdint>

// Of kx_port_security_record::learning. A port whose flags are all clear learns like any other.
enum kx_secure_learning : uint8_t {
    KX_SECURE_AGES_ABSOLUTE = 0x04,   // learnt addresses age
    KX_SECURE_AGES_INACTIVITY = 0x08, // likewise
    KX_SECURE_NEVER_AGES = 0x10,      // they stay, whatever the other flags say
};

// Reply of KXDPA_OP_PORT_SECURITY, asked with the LTL. The bytes before the flags are not known to
// this tool and not read.
struct kx_port_security_record {
    uint8_t reserved0[80];
    uint8_t learning; // kx_secure_learning flags of a port that learns securely
    uint8_t reserved81[3];
};

static_assert(sizeof(kx_port_security_record) == 84);
static_assert(offsetof(kx_port_security_record, learning) == 80);

#endif
