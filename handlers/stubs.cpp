#include "frontend/handlers.h"

int kx_show_empty(const char * /*arg*/) {
    return -1;
}

#define DEFINE_STUB_HANDLER(handler)                                                               \
    int handler(const char * /*arg*/) {                                                            \
        return -1;                                                                                 \
    }
KESTREL_STUB_HANDLERS(DEFINE_STUB_HANDLER)
