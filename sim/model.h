// The driver's side of the request channel, over a described host.
//
// The model knows nothing of descriptors and processes: whoever receives the ioctl (the interposed
// calls of interpose.h, or a device file) hands it the record and a way into the caller's memory.
#ifndef SIM_MODEL_H
#define SIM_MODEL_H

#include "dpa/userspace/kxdpa_request.h"
#include "host/host.h"
#include "sim/answer.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

// The calling process's memory, by 32-bit user address. Both return false for a bad address.
class caller_memory {
public:
    virtual ~caller_memory();
    virtual bool read(uint32_t address, void *to, uint32_t length) = 0;
    virtual bool write(uint32_t address, const void *from, uint32_t length) = 0;
};

// A caller in this very process; only the lowest page counts as a bad address.
class own_memory : public caller_memory {
public:
    bool read(uint32_t address, void *to, uint32_t length) override;
    bool write(uint32_t address, const void *from, uint32_t length) override;
};

// What overrides ask for; any argument or input when absent.
using override_question =
    std::tuple<uint16_t, std::optional<uint32_t>, std::optional<std::vector<uint8_t>>>;

// The overrides that ask for the same requests.
struct override_group {
    uint32_t seen = 0;                  // requests so far, for the rules' `time`
    std::map<uint32_t, size_t> by_time; // place of the first rule of each time, 0 for each time
};

struct model {
    model() = default;
    explicit model(host described) {
        take(std::move(described));
    }
    // Answer for this host, or with these overrides, from now on. The count of requests for
    // overrides starts again.
    void take(host described);
    void take_overrides(std::vector<override_rule> rules);

    host state; // changed by requests
    // Of the host's overrides. A recording has one for each of many thousand requests.
    std::map<override_question, override_group> overrides;
    walk_places places;
    // One line for every request, without its newline; see docs/simulated-host.md.
    std::function<void(const std::string &line)> trace;
    // Told the place of each override that a request is answered by.
    std::function<void(size_t place)> met;
    // Told the form of each request that there is one of.
    std::function<void(const answer &form)> asked;
    // One line for every malformed record; nullptr writes to standard error.
    std::function<void(const std::string &line)> complain;
};

// Answer a well-formed request of this form as the host does by itself, whatever its overrides. A
// fixed-size reply is of its size then.
void answer_as_host(host &state, const answer &form, exchange &talk);

// Answer one record in place. Returns 0, or the errno that the ioctl fails with; the record is then
// as the caller left it, unless an override says what becomes of it all the same. A malformed
// record is complained about and answered with SIM_STATUS_MALFORMED.
int model_request(model &driver, kxdpa_request &record, caller_memory &memory);

// The ioctl itself: the request code, which is always 0, and the record's address. Returns 0 or the
// errno that it fails with.
int model_ioctl(model &driver, unsigned long code, uint32_t address, caller_memory &memory);

#endif
