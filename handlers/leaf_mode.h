#ifndef HANDLERS_LEAF_MODE_H
#define HANDLERS_LEAF_MODE_H

// True when the HMX runs as a leaf of the overlay policy controller, under which several views
// change their columns or rules. Makes one request; a failed one counts as not leaf mode.
bool kx_hmx_is_leaf_mode();

#endif
