// The arguments of lists that show one entry a page when the agent asks.
#ifndef HANDLERS_LIST_PAGE_H
#define HANDLERS_LIST_PAGE_H

#include <cstdint>

enum kx_list_page_start : uint8_t {
    KX_PAGE_FIRST,     // no word: the list from its start
    KX_PAGE_KEY,       // one word: this entry alone, and no list
    KX_PAGE_CONTINUED, // two words: the entry behind the cookie
};

struct kx_list_page {
    kx_list_page_start start;
    uint32_t number; // the key or the cookie, 0 on the first page
};

// Read the words of an agent-driven list. Returns 0; -1, with a complaint, when the word "cookie"
// stands without a value.
int kx_read_list_page(const char *arg, kx_list_page *page);

#endif
