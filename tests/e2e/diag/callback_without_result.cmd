# Fire and forget on the callback channel: the worker gives the modem 200 ms,
# logs the answer's length only, and the process waits for it before exiting.
thread: ^RIL\[(velmar_diag_cmd_send_without_result_by_\w+_thread_proc|velmar_diag_register_callback):N\]
thread: _no_handle:N\]
args: 5 0 0 1 3000 0x00
check: python3 "$CASE_DIR/diag_journal.py" req 1 channel=callback request=00 response_len=55
