#!/usr/bin/env python3
"""Fails when a source file includes a header of a layer it must not see.

Layers, lowest first; a file may include its own layer and the ones below:
  0  platform/include, platform/rpk_platform.h, common/   the base
  1  modem_stats/, velmar_extend_qmi/                     engine and modem clients
  2  front/                                               entry, categories, help
The host platform (platform/host/, platform/device/) and the simulated modem
(sim/) sit beside: they may use the base, but product code never includes them.
modem_stats/decode/ is the rpk-decode host tool: the engine and the host
platform, never front/. Tests and benchmarks may include anything.

An include is resolved the way the compiler finds it: beside the including
file, then from the repository root, then from platform/include; anything
else (system and package headers) is not ours and is skipped.

Usage: check_layers.py <repository root>
"""
import pathlib
import re
import sys

BASE = "base"
ENGINE = "engine"
FRONT = "front"
HOST = "host"
SIM = "sim"
DECODE = "decode"

# First matching prefix wins, so the longer prefixes come first.
LAYER_OF = [
    ("modem_stats/decode/", DECODE),
    ("platform/include/", BASE),
    ("platform/rpk_platform.h", BASE),
    ("platform/host/", HOST),
    ("platform/device/", HOST),
    ("common/", BASE),
    ("modem_stats/", ENGINE),
    ("velmar_extend_qmi/", ENGINE),
    ("front/", FRONT),
    ("sim/", SIM),
]

# What each layer may include (its own layer is always allowed).
MAY_INCLUDE = {
    BASE: set(),
    ENGINE: {BASE},
    FRONT: {BASE, ENGINE},
    HOST: {BASE},
    SIM: {BASE, HOST},
    DECODE: {BASE, ENGINE, HOST},
}

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


def layer(rel):
    for prefix, name in LAYER_OF:
        if rel == prefix or rel.startswith(prefix):
            return name
    return None


def resolve(root, including, quote, target):
    candidates = []
    if quote == '"':
        candidates.append(including.parent / target)
        candidates.append(root / target)
    candidates.append(root / "platform/include" / target)
    for c in candidates:
        if c.is_file():
            return c.resolve().relative_to(root).as_posix()
    return None


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    bad = []
    for path in sorted(root.rglob("*")):
        if path.suffix not in (".h", ".cpp") or not path.is_file():
            continue
        rel = path.relative_to(root).as_posix()
        if rel.startswith("build") or "/." in "/" + rel:
            continue
        own = layer(rel)
        if own is None:
            continue
        text = path.read_text(encoding="utf-8", errors="replace")
        for m in INCLUDE.finditer(text):
            target = resolve(root, path, m.group(1), m.group(2))
            if target is None:
                continue
            theirs = layer(target)
            if theirs is None or theirs == own or theirs in MAY_INCLUDE[own]:
                continue
            line = text.count("\n", 0, m.start()) + 1
            bad.append(f"{rel}:{line}: {own} includes {theirs} header {target}")
    for b in bad:
        print(b)
    if bad:
        print(f"{len(bad)} include(s) against the layering (see tests/check_layers.py)")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
