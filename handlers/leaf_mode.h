#ifndef HANDLERS_LEAF_MODE_H
#define HANDLERS_LEAF_MODE_H

// True when the HMX runs as a leaf of the overlay policy controller. Then several views have other
// columns or rules. Makes one request; when it fails, there is no leaf mode.
bool kx_hmx_is_leaf_mode();

#endif
