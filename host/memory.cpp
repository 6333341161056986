#include "host/memory.h"
#include "host/access.h"
#include "host/keys.h"

namespace {

constexpr key HEAP_ROWS[] = {
    text_key("name", at<&kx_heap_record::name>, "the heap's name").once(),
    number_key("objects", at<&kx_heap_record::objects>, "allocated"),
    number_key("bytes", at<&kx_heap_record::bytes>, "allocated").in("bytes"),
    number_key("denied", at<&kx_heap_record::denied>, "allocations denied"),
    number_key("denied_bytes", at<&kx_heap_record::denied_bytes>, "allocations denied").in("bytes"),
    number_key("largest_object", at<&kx_heap_record::largest_object>, "largest object").in("bytes"),
    number_key("minimum", at<&kx_heap_record::minimum>, "least size of the heap").in("bytes"),
    number_key("maximum", at<&kx_heap_record::maximum>, "most size of the heap").in("bytes"),
    number_key("null_pointers", at<&kx_heap_record::null_pointers>,
               "null pointers checked or freed"),
    number_key("bad_magics", at<&kx_heap_record::bad_magics>, "pointers with a bad magic"),
    number_key("bad_redzones", at<&kx_heap_record::bad_redzones>, "pointers with a bad red zone"),
    number_key("wrong_heaps", at<&kx_heap_record::wrong_heaps>, "pointers of another heap"),
};

constexpr key POOL_ROWS[] = {
    text_key("name", at<&kx_memory_pool_record::name>, "the pool's name").once(),
    number_key("object_size", at<&kx_memory_pool_record::object_size>, "size of an object")
        .in("bytes"),
    number_key("pages", at<&kx_memory_pool_record::pages>, "pages in use"),
    number_key("minimum", at<&kx_memory_pool_record::minimum>, "least objects of the pool"),
    number_key("maximum", at<&kx_memory_pool_record::maximum>, "most objects of the pool"),
    number_key("total", at<&kx_memory_pool_record::total>, "objects there are"),
    number_key("available", at<&kx_memory_pool_record::available>, "objects that are free"),
    number_key("low_water_mark", at<&kx_memory_pool_record::low_water_mark>,
               "free objects below which the pool grows"),
    number_key("high_water_mark", at<&kx_memory_pool_record::high_water_mark>,
               "free objects above which it shrinks"),
};

} // namespace

constinit const key_table HEAP_KEYS = {"heap", "A heap of the DPA", HEAP_ROWS,
                                       make_object<kx_heap_record>};

constinit const key_table MEMORY_POOL_KEYS = {"memory_pool", "A memory pool of the DPA", POOL_ROWS,
                                              make_object<kx_memory_pool_record>};
