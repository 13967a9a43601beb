#!/usr/bin/env python3
"""Checks what the simulated modem's diag channel received ($RPK_SIM_DIR/journal.jsonl).

  diag_journal.py count N          exactly N raw diag requests (callback or DCI)
  diag_journal.py req I KEY=VALUE  raw request I (1-based) has these fields
                                   (channel, proc, mode, request, response,
                                   response_len, pieces, fault)
  diag_journal.py calls NAME...    the DCI calls, in order, are exactly these
                                   (dci_register, dci_signal, ...), and every
                                   session was closed
"""
import json
import os
import sys


def entries():
    path = os.path.join(os.environ["RPK_SIM_DIR"], "journal.jsonl")
    if not os.path.exists(path):
        return []
    with open(path) as f:
        return [e for e in map(json.loads, filter(str.strip, f)) if e.get("service") == "diag"]


def main(argv):
    all_entries = entries()
    requests = [e for e in all_entries if "channel" in e]
    what = argv[1]
    if what == "count":
        if len(requests) != int(argv[2]):
            sys.exit(f"{len(requests)} requests: {requests}")
    elif what == "req":
        e = requests[int(argv[2]) - 1]
        for cond in argv[3:]:
            key, _, want = cond.partition("=")
            if str(e.get(key)) != want:
                sys.exit(f"{key}: want {want}, got {e.get(key)} in {e}")
    elif what == "calls":
        calls = [e["call"] for e in all_entries if e.get("call", "remote_mask") != "remote_mask"]
        if calls != argv[2:]:
            sys.exit(f"calls {calls}")
        opened = sum(1 for e in all_entries if e.get("session") == "open")
        closed = sum(1 for e in all_entries if e.get("session") == "closed")
        if opened != closed:
            sys.exit(f"{opened} sessions opened, {closed} closed")
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    main(sys.argv)
