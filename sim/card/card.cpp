#include "sim/card/card.h"

#include "sim/host.h"
#include "sim/object_reader.h"

namespace {

void parse_card(object_reader &file, host &into) {
    file.object("card", [&](object_reader &keys) {
        card_state &card = into.card;
        keys.number("domain", card.domain);
        keys.flag("version_mismatch", card.version_mismatch);
        keys.number("tunnel_mode", card.tunnel_mode);
        keys.flag("leaf_mode", card.leaf_mode);
    });
}

void answer_domain(host &state, exchange &talk) {
    if (state.card.version_mismatch) {
        talk.fail(KXDPA_STATUS_VERSION_MISMATCH);
    } else {
        talk.reply_with(state.card.domain);
    }
}

void answer_tunnel_mode(host &state, exchange &talk) {
    talk.reply_with(state.card.tunnel_mode);
}

void answer_leaf_mode(host &state, exchange &talk) {
    talk.reply_with(static_cast<uint8_t>(state.card.leaf_mode ? 1 : 0));
}

constexpr answer ANSWERS[] = {
    {.opcode = KXDPA_OP_CARD_DOMAIN, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_domain},
    {.opcode = KXDPA_OP_TUNNEL_MODE,
     .flags = KXDPA_FLAG_OUT,
     .len1 = 4,
     .reply = answer_tunnel_mode},
    {.opcode = KXDPA_OP_LEAF_MODE, .flags = KXDPA_FLAG_OUT, .len1 = 1, .reply = answer_leaf_mode},
};

} // namespace

constinit const family card_family = {parse_card, ANSWERS};
