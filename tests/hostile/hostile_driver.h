// A driver and a host's shell that answer anything that a seed leads to. The tool must survive all
// of it.
//
// The driver never writes outside the buffers that a request names. So whatever the sanitizers
// report is a fault of the tool.
#ifndef TESTS_HOSTILE_HOSTILE_DRIVER_H
#define TESTS_HOSTILE_HOSTILE_DRIVER_H

#include <cstddef>
#include <cstdint>

// A small deterministic generator (splitmix64), so that a seed always gives the same run.
class hostile_random {
public:
    explicit hostile_random(uint64_t seed) : state_(seed) {
    }
    uint32_t next();
    uint32_t below(uint32_t limit) {
        return next() % limit;
    }
    bool one_in(uint32_t chances) {
        return below(chances) == 0;
    }

private:
    uint64_t state_;
};

enum class hostile_reply {
    zeros,
    ones,
    noise,
    letters, // strings without a terminator
    formats, // the same, of conversions
    small,   // words of small numbers
    edges,   // words around the limits of types and tables
    nothing, // the buffer stays as it was
    host,    // the simulated host's answer
    damaged, // the same with some bytes changed
    mixed,   // any of these, changing from request to request
};
constexpr uint32_t HOSTILE_REPLIES = static_cast<uint32_t>(hostile_reply::mixed) + 1;

enum class hostile_walk { forward, still, backward, anywhere };

struct hostile_driver {
    hostile_random random{0};
    hostile_reply reply = hostile_reply::zeros;
    hostile_walk walk = hostile_walk::forward;
    uint32_t failures = 0;  // one request in so many fails; 0 for none
    uint32_t patience = 64; // requests until walks are ended by failing
    uint32_t requests = 0;  // so far
};

extern hostile_driver the_hostile_driver;

struct kxdpa_request;

// Answer one request in place. Returns what the ioctl returns, with errno set for -1.
int hostile_driver_answer(kxdpa_request *record);

// A driver for one run; the seed decides everything about it.
void hostile_driver_restart(uint64_t seed);

// A run that makes so many requests will never end.
constexpr uint32_t HOSTILE_REQUESTS_LIMIT = 1000000;

#endif
