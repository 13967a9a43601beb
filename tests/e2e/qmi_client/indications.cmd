# Indications that arrive while a request waits are reported and not acted
# on; the callback ends no line. The answer is held back 2.5 s; the modem
# indicates as soon as the request is in the journal. (The helper is started
# without this step's output pipes, so the step does not wait for it.)
setup: "$SIM" fault delay 2500 --count 1
setup: python3 -c 'import subprocess, sys; subprocess.Popen(["sh", "-c", sys.argv[1]], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)' 'i=0; while [ $i -lt 200 ] && ! grep -q request_id "$RPK_SIM_DIR/journal.jsonl" 2>/dev/null; do sleep 0.01; i=$((i+1)); done; "$SIM" indicate 6 01 02; "$SIM" indicate 7'
args: 4 1 0 550
