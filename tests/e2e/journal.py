#!/usr/bin/env python3
"""Checks what the simulated modem received, from $RPK_SIM_DIR/journal.jsonl.

  journal.py count N                 exactly N Extend-QMI requests (no journal: 0)
  journal.py req I CHECK...          request I (1-based; -1 the last) passes every CHECK
  journal.py each CHECK...           every request passes every CHECK
Several of these may be given in one call, separated by "--" (one start of
the interpreter instead of several).

A CHECK is one of
  request_id=N data_len=N data_valid=N   envelope fields
  fault=NAME delay_ms=N                  the fault applied
  data=HEX          the record starts with HEX and is zero after it
  @OFF=HEX          the record's bytes at offset OFF are HEX
  u8@OFF=N  u16@OFF=N  u32@OFF=N  u64@OFF=N   little-endian number at OFF
HEX may contain blanks; numbers may be 0x-hexadecimal. Failures say what was
found, so a failing e2e case reads well.
"""
import json
import os
import sys


def requests():
    path = os.path.join(os.environ["RPK_SIM_DIR"], "journal.jsonl")
    if not os.path.exists(path):
        return []
    with open(path) as f:
        entries = [json.loads(line) for line in f if line.strip()]
    return [e for e in entries if e.get("service") == "0xffe4" and "envelope" in e]


def number(text):
    return int(text, 0)


def check(entry, cond):
    env = entry["envelope"]
    data = bytes.fromhex(env.get("data", ""))
    key, _, want = cond.partition("=")
    if key in ("request_id", "data_len", "data_valid"):
        got = env.get(key)
        return got == number(want), got
    if key in ("fault", "delay_ms"):
        got = entry.get(key)
        return str(got) == want, got
    if key == "data":
        prefix = bytes.fromhex(want.replace(" ", ""))
        ok = data[: len(prefix)] == prefix and not any(data[len(prefix):])
        return ok, data.rstrip(b"\0").hex()
    kind, _, off = key.partition("@")
    off = number(off)
    if kind == "":
        expect = bytes.fromhex(want.replace(" ", ""))
        got = data[off : off + len(expect)]
        return got == expect, got.hex()
    width = {"u8": 1, "u16": 2, "u32": 4, "u64": 8}[kind]
    got = int.from_bytes(data[off : off + width], "little")
    return got == number(want), got


def main(argv):
    reqs = requests()
    if argv[:1] == ["count"]:
        if len(reqs) != number(argv[1]):
            print(f"journal: {len(reqs)} requests, expected {argv[1]}")
            return 1
        return 0
    if argv[:1] == ["req"]:
        index = number(argv[1])
        at = index - 1 if index > 0 else len(reqs) + index
        chosen = [(index, reqs[at])] if 0 <= at < len(reqs) else []
        conds = argv[2:]
    elif argv[:1] == ["each"]:
        chosen = list(enumerate(reqs, 1))
        conds = argv[1:]
    else:
        print(__doc__)
        return 2
    if not chosen:
        print(f"journal: no request {argv[1] if argv[0] == 'req' else ''}".rstrip())
        return 1
    failed = 0
    for i, entry in chosen:
        for cond in conds:
            ok, got = check(entry, cond)
            if not ok:
                print(f"journal: request {i}: {cond} not met, found {got}")
                failed = 1
    return failed


def main_all(argv):
    groups, cur = [], []
    for arg in argv:
        if arg == "--":
            groups.append(cur)
            cur = []
        else:
            cur.append(arg)
    groups.append(cur)
    return max(main(g) for g in groups)


if __name__ == "__main__":
    sys.exit(main_all(sys.argv[1:]))
