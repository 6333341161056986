#include "host/access.h"
#include "host/host.h"
#include "host/keys.h"

namespace {

constexpr key_word TYPES[] = {{"ipv4", KX_ACL_IPV4}, {"ipv6", KX_ACL_IPV6}, {"mac", KX_ACL_MAC}};

constexpr key_word STATISTICS[] = {{"enabled", KX_ACL_STATISTICS_ENABLED},
                                   {"disabled", KX_ACL_STATISTICS_DISABLED}};

template <auto member> constexpr key_access OF_LIST = at<&access_list::record, member>;

constexpr key ACCESS_LIST_ROWS[] = {
    number_key("id", OF_LIST<&kx_acl_record::id>, "its number").must(),
    word_key("type", OF_LIST<&kx_acl_record::type>, TYPES, "what it looks at"),
    text_key("name", OF_LIST<&kx_acl_record::name>, "its name"),
    number_key("references", OF_LIST<&kx_acl_record::references>, "policies that use it"),
    number_key("rules", OF_LIST<&kx_acl_record::rules>, "its rules"),
    word_key("statistics", OF_LIST<&kx_acl_record::statistics_state>, STATISTICS,
             "whether packets are counted"),
    number_key("statistics_id", OF_LIST<&kx_acl_record::statistics_id>, "number of its counters"),
    number_key("permitted", OF_LIST<&kx_acl_record::permitted>, "permitted").in("packets"),
    number_key("denied", OF_LIST<&kx_acl_record::denied>, "denied").in("packets"),
    number_key("unmatched", OF_LIST<&kx_acl_record::unmatched>, "that matched no rule")
        .in("packets"),
};

} // namespace

constinit const key_table ACCESS_LIST_KEYS = {"access_list", "An access control list",
                                              ACCESS_LIST_ROWS, make_object<access_list>};
