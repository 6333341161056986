#include "capture/rule.h"

#include "sim/transfer.h"

std::optional<uint32_t> odd_length(const kxdpa_request &asked, const driver_answer &told) {
    kxdpa_request record = asked;
    const reply_place to = reply_place_of(record);
    const bool odd =
        to.returned != nullptr && told.returned != (told.reply ? told.reply->size() : *to.returned);
    return odd ? told.returned : std::nullopt;
}

override_rule rule_for(const kxdpa_request &asked, std::optional<std::span<const uint8_t>> input,
                       const driver_answer &told) {
    override_rule rule;
    rule.opcode = asked.opcode;
    rule.argument = asked.arg;
    if (input) {
        rule.in.emplace(input->begin(), input->end());
    }
    rule.error = told.error;
    if (told.reply) {
        rule.reply.emplace(told.reply->begin(), told.reply->end());
    }
    rule.returned = told.returned;
    // A call that fails and writes nothing leaves the status as the tool has set it, and a reply by
    // itself is a success.
    const bool wrote_nothing = !rule.reply && !rule.returned;
    const bool by_itself = told.error != 0
                               ? wrote_nothing && told.status == KXDPA_STATUS_NO_EXCHANGE
                               : rule.reply && told.status == KXDPA_STATUS_SUCCESS;
    if (!by_itself) {
        rule.status = told.status;
    }
    return rule;
}
