// An answer of a driver as an override of a host file.
#ifndef CAPTURE_RULE_H
#define CAPTURE_RULE_H

#include "capture/driver_call.h"
#include "host/override.h"

#include <cstdint>
#include <optional>
#include <span>

// The capacity word of an answer where it is neither the reply's size nor, without a reply, as it
// was asked with.
std::optional<uint32_t> odd_length(const kxdpa_request &asked, const driver_answer &told);

// The rule that gives this answer to this question, and to no other one. REQUIRES: the answer has
// no capacity word but an odd one.
override_rule rule_for(const kxdpa_request &asked, std::optional<std::span<const uint8_t>> input,
                       const driver_answer &told);

#endif
