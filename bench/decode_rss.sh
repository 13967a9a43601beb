#!/usr/bin/env bash
# Peak memory of rpk-decode on a 1 GB capture: builds one in HDLC and one in
# the text form from packets in the text form (default: the shared real
# packets beside the repository), decodes each plain, --json and --json from
# stdin, and prints the peak RSS of each run. The captures live in a
# temporary directory that is removed at the end.
#
#   bench/decode_rss.sh [RPK_DECODE] [PACKETS.txt...]
set -euo pipefail
cd "$(dirname "$0")/.."
decode=${1:-build/bench/rpk-decode}
shift || true
packets=("$@")
[[ ${#packets[@]} -gt 0 ]] || packets=(../shared/realdata/*.txt)
size=$(( ${RPK_CAPTURE_MB:-1024} * 1024 * 1024 ))  # RPK_CAPTURE_MB: another size

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# One pass over the packets in each form, then repeated up to the size.
python3 - "$work" "${packets[@]}" <<'PY'
import sys

def crc16(b):
    crc = 0xFFFF
    for x in b:
        crc ^= x
        for _ in range(8):
            crc = (crc >> 1) ^ 0x8408 if crc & 1 else crc >> 1
    return crc ^ 0xFFFF

def frame(packet):
    c = crc16(packet)
    out = bytearray()
    for x in packet + bytes([c & 0xFF, c >> 8]):
        out += bytes([0x7D, x ^ 0x20]) if x in (0x7E, 0x7D) else bytes([x])
    return bytes(out) + b"\x7e"

hdlc, text = bytearray(), bytearray()
for path in sys.argv[2:]:
    for line in open(path):
        fields = line.split()
        if len(fields) != 2 or fields[0].startswith("#"):
            continue
        code, payload = fields[0], bytes.fromhex(fields[1])
        if code[0] in "Ee":
            n = len(payload)
            if n > 255:
                continue
            length = n if n <= 2 else 3
            ev = (int(code[1:]) | length << 13).to_bytes(2, "little") + bytes(8)
            ev += (bytes([n]) if length == 3 else b"") + payload
            packet = b"\x60" + len(ev).to_bytes(2, "little") + ev
        else:
            item = (12 + len(payload)).to_bytes(2, "little")
            packet = b"\x10\x00" + item + item + int(code, 16).to_bytes(2, "little") + bytes(8)
            packet += payload
        hdlc += frame(packet)
        text += line.strip().encode() + b"\n"
open(sys.argv[1] + "/one.qmdl", "wb").write(hdlc)
open(sys.argv[1] + "/one.txt", "wb").write(text)
PY
for form in qmdl txt; do
  one="$work/one.$form"
  reps=$(( size / $(stat -c %s "$one") + 1 ))
  for ((i = 0; i < reps; i++)); do cat "$one"; done >"$work/capture.$form"
  truncate -s "$size" "$work/capture.$form"
  # A cut at the end leaves a damaged last frame or line: counted, skipped.
  rm "$one"
done

peak() {  # peak RSS in kB of the command line after it
  /usr/bin/time -f %M "$@" 2>&1 >/dev/null | tail -n 1
}
printf '%-6s %-14s %10s %8s\n' form mode "peak RSS" seconds
for form in qmdl txt; do
  capture="$work/capture.$form"
  for mode in plain json json-stdin; do
    start=$(date +%s%N)
    case $mode in
      plain) kb=$(peak "$decode" "$capture") ;;
      json) kb=$(peak "$decode" --json "$capture") ;;
      json-stdin) kb=$(peak sh -c 'exec "$0" --json - <"$1"' "$decode" "$capture") ;;
    esac
    ms=$(( ($(date +%s%N) - start) / 1000000 ))
    printf '%-6s %-14s %7d kB %4d.%01d\n' "$form" "$mode" "$kb" $((ms / 1000)) $((ms % 1000 / 100))
  done
done
