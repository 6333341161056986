// The arguments of lists that show one entry a page when the agent asks.
#ifndef HANDLERS_LIST_PAGE_H
#define HANDLERS_LIST_PAGE_H

#include <cstdint>

struct kx_list_page {
    bool is_key;     // one word: the number is this one entry's key, and there is no list
    uint32_t number; // otherwise the cookie after which the page begins, 0 without words
};

// Read the words of an agent-driven list. Returns 0, or -1 with a complaint when the word "cookie"
// has no value after it.
int kx_read_list_page(const char *arg, kx_list_page *page);

#endif
