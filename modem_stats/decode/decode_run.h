// rpk-decode: passes captured diag packets through the statistics engine's
// dispatchers and reports what each made of them.
//
//   rpk-decode [--json] [--text | --hdlc] FILE...     (FILE "-" is stdin)
//
// Input is the text form ("<code hex> <payload hex>", "E<id> <payload hex>")
// or a binary HDLC diag stream (.qmdl); without --text/--hdlc the first bytes
// decide. Each packet's payload is zero-padded to the engine's 2000-byte
// readable area. Plain output is the engine's own lines plus a "=> " line per
// packet; with --json every packet is one JSON object on one line, in input
// order:
//   {"code": "B193", "lines": [...], "stat_id": 25, "record": "hex",
//    "status": "decoded", "source": "file:line"}
// (stat_id and record are null without a record). Damaged input is counted
// and skipped, reported on stderr. The counts per code end the output (on
// stderr with --json, so stdout stays pure JSON lines). Input is streamed in
// fixed blocks and output written through one buffer, so memory does not
// grow with the capture and there is no system call per packet.
#pragma once

// Returns the process exit status: 0, 1 when a file could not be read, 2 for
// a usage error.
int rpk_decode_main(int argc, char **argv);
