#include "infra/utils/kxassert.h"

#include "frontend/output_sink.h"

void kx_assert_report(const char *function, const char *expression) {
    kx_print("ASSERT  %s:  %s\n", function, expression);
}
