#include "capture/host_capture.h"
#include "capture/walk.h"
#include "handlers/card/memory_record.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

namespace {

// A list that is walked by name. An entry without one would start the walk again.
template <kxdpa_opcode opcode, typename Record> std::vector<Record> ask_list(inquiry &driver) {
    std::vector<Record> list;
    Record record{};
    const auto names = collect_walk(driver, opcode, std::string(), [&](std::string *name) {
        Record next{};
        std::copy(std::begin(record.name), std::end(record.name), next.name);
        if (!driver.exchange<opcode>(0, &next, if_refused::WALK_END)) {
            return false;
        }
        name->assign(next.name, strnlen(next.name, sizeof next.name));
        if (name->empty()) {
            driver.report_endless_walk(opcode, list.size());
            return false;
        }
        record = next;
        list.push_back(record);
        return true;
    });
    list.resize(names.size()); // without the one that came back
    return list;
}

} // namespace

void capture_heaps(host_capture &host) {
    host.driver.begin("heaps");
    host.captured.memory.heaps = ask_list<KXDPA_OP_NEXT_HEAP, kx_heap_record>(host.driver);
}

void capture_memory_pools(host_capture &host) {
    host.driver.begin("memory pools");
    host.captured.memory.pools =
        ask_list<KXDPA_OP_NEXT_MEMORY_POOL, kx_memory_pool_record>(host.driver);
}

void capture_asserts(host_capture &host) {
    host.driver.begin("asserts");
    host.driver.get<KXDPA_OP_ASSERT_COUNT>(0, &host.captured.memory.asserts);
}
