#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/card/memory_record.h"
#include "infra/utils/field_text.h"

int kx_show_mempools(const char *) {
    kx_print("      Pool Name  OSize  Pages    Min      Max    LWM    HWM  Total  Avail\n");
    kx_name_walk<kx_memory_pool_record> walk;
    while (kx_next_by_name(KXDPA_OP_NEXT_MEMORY_POOL, &walk)) {
        const kx_memory_pool_record &pool = walk.at;
        kx_print("%15s %6llu %6llu %6llu %8llu %6llu %6llu %6llu %6llu\n",
                 kx_field_text(pool.name).text, pool.object_size, pool.pages, pool.minimum,
                 pool.maximum, pool.low_water_mark, pool.high_water_mark, pool.total,
                 pool.available);
    }
    return 0;
}
