#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/card/memory_record.h"
#include "infra/utils/field_text.h"

namespace {

void print_heap(const kx_heap_record &heap) {
    // The record has the last three columns in the opposite order.
    kx_print("%15s %6llu %9llu %6llu %9llu %8llu %8llu %8llu\n", kx_field_text(heap.name).text,
             heap.objects, heap.bytes, heap.denied, heap.denied_bytes, heap.minimum, heap.maximum,
             heap.largest_object);
    if (heap.null_pointers != 0) {
        kx_print("      Warning : Attempted to check or free %lld null pointers\n",
                 static_cast<int64_t>(heap.null_pointers));
    }
    if (heap.bad_magics != 0) {
        kx_print("      Warning : Attempted to check or free %lld bad magic pointers\n",
                 static_cast<int64_t>(heap.bad_magics));
    }
    if (heap.bad_redzones != 0) {
        kx_print("      Warning : Attempted to check or free %lld bad redzone pointers\n",
                 static_cast<int64_t>(heap.bad_redzones));
    }
    if (heap.wrong_heaps != 0) {
        kx_print("      Warning : Attempted to check or free %lld wrong heap pointers\n",
                 static_cast<int64_t>(heap.wrong_heaps));
    }
}

} // namespace

int kx_show_heaps(const char *) {
    kx_print("      Heap Name   Objs  ObjBytes Denied  DenBytes      Min      Max   MaxObj\n");
    for (kx_name_walk<kx_heap_record> walk; kx_next_by_name(KXDPA_OP_NEXT_HEAP, &walk);) {
        print_heap(walk.at);
    }
    return 0;
}
