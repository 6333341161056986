#include "frontend/handlers.h"

int kx_show_empty(const char * /*arg*/) {
    return -1;
}

#define DEFINE_STUB_HANDLER(handler)                                                               \
    int handler(const char * /*arg*/) {                                                            \
        return -1;                                                                                 \
    }
KESTREL_STUB_HANDLERS(DEFINE_STUB_HANDLER)

// Compared one by one: an array of them would be relocated at every start of the tool.
bool kx_is_stub(int (*handler)(const char *arg)) {
#define OR_IS_STUB(stub) || handler == stub
    return false KESTREL_STUB_HANDLERS(OR_IS_STUB);
#undef OR_IS_STUB
}
