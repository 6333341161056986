#include "capture/host_capture.h"
#include "handlers/acl/acl_record.h"

#include <algorithm>
#include <iterator>

namespace {

access_list described(const kx_acl_record &record) {
    access_list acl;
    acl.id = record.id;
    acl.references = record.references;
    acl.rules = record.rules;
    acl.type = record.type;
    acl.statistics = record.statistics_state;
    acl.statistics_id = record.statistics_id;
    acl.permitted = record.permitted;
    acl.denied = record.denied;
    acl.unmatched = record.unmatched;
    std::copy(std::begin(record.name), std::end(record.name), acl.name);
    return acl;
}

// Displays ask for the list when there are this many.
bool is_asked_for(uint32_t count) {
    return count != 0 && count <= KX_ACL_LIMIT;
}

} // namespace

void capture_acls(host_capture &host) {
    inquiry &driver = host.driver;
    driver.begin("access control lists");
    auto &into = host.captured.acls.acls;
    uint32_t count = 0;
    if (!driver.get<KXDPA_OP_ACL_COUNT>(0, &count)) {
        into.reset();
        return;
    }
    if (!is_asked_for(count)) {
        if (count != 0) {
            driver.keep_reply(KXDPA_OP_ACL_COUNT, 0, count);
        }
        return;
    }
    std::vector<kx_acl_record> records(count);
    const auto size = static_cast<uint32_t>(records.size() * sizeof(kx_acl_record));
    uint32_t returned = size;
    if (!driver.get_variable<KXDPA_OP_ACL_LIST>(0, records.data(), size, &returned,
                                                if_refused::KEPT)) {
        driver.keep_reply(KXDPA_OP_ACL_COUNT, 0, count);
        return;
    }
    if (returned != size) { // then nothing of the list is used
        driver.keep_reply(KXDPA_OP_ACL_COUNT, 0, count);
        driver.keep({KXDPA_OP_ACL_LIST, 0, {}}, KXDPA_STATUS_SUCCESS, byte_span(), returned);
        return;
    }
    std::transform(records.begin(), records.end(), std::back_inserter(*into), described);
}
