#include "host/acl.h"
#include "host/access.h"
#include "host/keys.h"

namespace {

constexpr key_word TYPES[] = {{"ipv4", KX_ACL_IPV4}, {"ipv6", KX_ACL_IPV6}, {"mac", KX_ACL_MAC}};

constexpr key_word STATISTICS[] = {{"enabled", KX_ACL_STATISTICS_ENABLED},
                                   {"disabled", KX_ACL_STATISTICS_DISABLED}};

constexpr key ACCESS_LIST_ROWS[] = {
    number_key("id", at<&access_list::id>, "its number").must(),
    word_key("type", at<&access_list::type>, TYPES, "what it looks at"),
    text_key("name", at<&access_list::name>, 0, "its name"),
    number_key("references", at<&access_list::references>, "policies that use it"),
    number_key("rules", at<&access_list::rules>, "its rules"),
    word_key("statistics", at<&access_list::statistics>, STATISTICS, "whether packets are counted"),
    number_key("statistics_id", at<&access_list::statistics_id>, "number of its counters"),
    number_key("permitted", at<&access_list::permitted>, "permitted").in("packets"),
    number_key("denied", at<&access_list::denied>, "denied").in("packets"),
    number_key("unmatched", at<&access_list::unmatched>, "that matched no rule").in("packets"),
};

} // namespace

constinit const key_table ACCESS_LIST_KEYS = {"access_list", "An access control list",
                                              ACCESS_LIST_ROWS, make_object<access_list>};
