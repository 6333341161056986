#include "host/access.h"
#include "host/host.h"
#include "host/keys.h"

namespace {

using table_entry = keyed<decltype(l2_state::tables)>;

std::optional<uint32_t> pvlan_of(const kx_l2_entry &entry) {
    return (entry.flags & KX_L2_PVLAN) != 0 ? std::optional(entry.pvlan) : std::nullopt;
}

void set_pvlan(kx_l2_entry &entry, std::optional<uint32_t> vlan) {
    entry.flags |= KX_L2_PVLAN;
    entry.pvlan = *vlan;
}

constexpr key_access AGE =
    computed<[](const kx_l2_entry &entry) { return entry.now - entry.seen_time; },
             [](kx_l2_entry &entry, uint32_t age) { entry.seen_time = entry.now - age; }>;

template <auto bit>
constexpr key_access FLAG =
    computed<[](const kx_l2_entry &entry) { return (entry.flags & bit) != 0; },
             [](kx_l2_entry &entry, bool on) {
                 entry.flags = static_cast<uint8_t>(on ? entry.flags | bit : entry.flags & ~bit);
             }>;

constexpr key ENTRY_ROWS[] = {
    mac_key("mac", at<&kx_l2_entry::mac>, "the address").once(),
    number_key("ltl", at<&kx_l2_entry::ltl>, "the port behind it").in("LTL"),
    number_key("age", AGE, "since it was last seen, in the DPA's own unit"),
    flag_key("static", FLAG<KX_L2_STATIC>, "configured, not learnt"),
    flag_key("secure", FLAG<KX_L2_SECURE>, "learnt securely"),
    flag_key("drop", FLAG<KX_L2_DROP>, "what it sends is dropped"),
    flag_key("software", FLAG<KX_L2_SOFTWARE>, "installed by software"),
    number_key("pvlan", computed<pvlan_of, set_pvlan>, "private VLAN that it was learnt on")
        .or_else("none")
        .in("VLAN"),
    number_key("dsn", at<&kx_l2_entry::dsn>, "sequence number of a segment's entry"),
    ipv4_key("remote_ip", at<&kx_l2_entry::remote_ip>, "remote tunnel endpoint"),
    number_key("slot", at<&kx_l2_entry::slot>, "slot of an entry that software installed"),
    number_key("encap", at<&kx_l2_entry::encap>, "encapsulation ID of a static entry in leaf mode"),
};

std::shared_ptr<void> make_entry(size_t /*place*/) {
    return std::make_shared<kx_l2_entry>(l2_entry_defaults());
}

constexpr key_table ENTRY_KEYS = {"l2_entry", "An address of an L2 table", ENTRY_ROWS, make_entry};

constexpr key ANNOUNCED_ROWS[] = {
    mac_key("mac", at<&kx_get_mac_entry::mac>, "the address"),
    flag_key("sent", at<&kx_get_mac_entry::sent>, "it has been announced"),
    number_key("last_sent", at<&kx_get_mac_entry::last_sent>, "when, in the DPA's own unit"),
};

constexpr key_table ANNOUNCED_KEYS = {"announced_mac", "An address of a get-mac table",
                                      ANNOUNCED_ROWS, make_object<kx_get_mac_entry>};

constexpr key TABLE_ROWS[] = {
    number_key("bridge_domain", at<&table_entry::key>, "the bridge domain's number")
        .from(1)
        .once()
        .in("bridge domain"),
    number_key("limit", at<&table_entry::value, &l2_table::limit>, "most entries"),
    number_key("aging_time", at<&table_entry::value, &l2_table::aging_time>,
               "before an address is forgotten")
        .in("seconds"),
    list_key("entries", items_of<&table_entry::value, &l2_table::entries>, ENTRY_KEYS,
             "the addresses, in the order of the walk"),
    list_key("announced", items_of<&table_entry::value, &l2_table::announced>, ANNOUNCED_KEYS,
             "the addresses that the bridge domain announces")
        .up_to(KX_GET_MAC_ENTRIES),
};

constexpr key_table TABLE_KEYS = {"l2_table", "The L2 table of a bridge domain", TABLE_ROWS,
                                  make_object<table_entry>};

constexpr key L2_ROWS[] = {
    number_key("now", at<&l2_state::now>, "the DPA's time, in its own unit"),
    number_key("slots", at<&l2_state::slots>,
               "slots of the tables; an address is in the one that its last byte gives")
        .from(1),
    number_key("flow_entries", head_of<&kx_l2_totals::flow_entries, &l2_state::totals>,
               "of the whole flow table; null for `vnic_entries` too"),
    number_key("vnic_entries", at<&l2_state::totals, &kx_l2_totals::vnic_entries>,
               "of virtual interfaces"),
    number_key("aged", head_of<&kx_l2_aging_statistics::aged, &l2_state::aging>,
               "entries that were forgotten; null for `rejected` too"),
    number_key("rejected", at<&l2_state::aging, &kx_l2_aging_statistics::rejected>,
               "entries that found no room"),
    list_key("tables", items_of<&l2_state::tables>, TABLE_KEYS, "the tables of bridge domains"),
};

} // namespace

constinit const key_table L2_KEYS = {"l2", "The L2 tables", L2_ROWS, make_object<l2_state>};
