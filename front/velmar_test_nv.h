// Category 1: the modem's NV store as a whole or item by item, through
// Extend-QMI request id 1,
//   rpk 1 1 | rpk 1 2 [privacy] | rpk 1 3 [goldencopy] | rpk 1 4 <nv_id>
// Only the first character of argv[1] and of argv[2] is looked at. The
// dispatcher velmar_test_nv_do is in front/velmar_handlers.h.
#pragma once

// Reads and prints the identity and OEM items, in a fixed order. Each value
// lands in g_nv_data_buf, which is never cleared: bytes past a short item keep
// those of the longer items read before it. An item longer than the buffer
// prints code 0x0FFFF001 and no dump.
void output_nv();

// The self-test: lists the items, writes the first 124 bytes of g_nv_data_buf
// with 'd' in front as NV_OEM_ITEM_6_I, and lists them again. The write's
// outcome shows only in the second listing.
void nv_test();
