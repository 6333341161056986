// A driver that never ends a walk.
#ifndef TESTS_HOSTILE_ENDLESS_H
#define TESTS_HOSTILE_ENDLESS_H

struct kxdpa_request;

// True while such a driver is to answer the requests.
bool is_endless();

void endless_answer(kxdpa_request *record);

// Run each walk on such drivers. False, with lines on standard error, when one ends too late or too
// early.
bool endless_walks_end();

#endif
