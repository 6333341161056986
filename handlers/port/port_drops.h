// Drop counters of the pipeline's stages.
#ifndef HANDLERS_PORT_PORT_DROPS_H
#define HANDLERS_PORT_PORT_DROPS_H

#include "handlers/port/counter_records.h"

// Bytes of the text of one row's counters or of the column titles, with its NUL.
constexpr size_t KX_DROPS_TEXT_SIZE = 512;

// Format one cell, "%15u" and a blank, for each used entry of the ingress (egress) stages into
// `text` of `size` bytes. Cells stop when fewer than 16 bytes are left.
void kx_port_ingress_drops_to_str(char *text, size_t size, const kx_drop_counters *counters);
void kx_port_egress_drops_to_str(char *text, size_t size, const kx_drop_counters *counters);

#endif
