// Failed preconditions of the libraries.
//
// A library function that is called wrongly prints one line and does nothing: a diagnostic must not
// end the host process in which it runs.
#ifndef INFRA_UTILS_KXASSERT_H
#define INFRA_UTILS_KXASSERT_H

// Print "ASSERT  <function>:  <expression>" as one line through the output sink.
void kx_assert_report(const char *function, const char *expression);

// Check a precondition and report it when it does not hold. Returns whether it holds; the caller
// gives up when it does not:
//
//     if (!kx_assert(b && b1, __func__, "b && b1")) {
//         return;
//     }
//
// The expression is written out because its text is part of the output that users know.
inline bool kx_assert(bool holds, const char *function, const char *expression) {
    if (!holds) {
        kx_assert_report(function, expression);
    }
    return holds;
}

#endif
