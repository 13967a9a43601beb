# Diag version through the callback channel: the request goes out in callback
# logging mode to processor 0, the answer comes back whole.
# The handler runs on the library's thread, the wait thread may tick once.
thread: ^RIL\[(velmar_diag_cmd_response_\w+|velmar_print_data_with_hex):N\]
drop: ^RIL\[velmar_diag_cmd_send_with_result_wait_thread_proc:N\]
args: 5 0 0 0 3000 0x1C
check: python3 "$CASE_DIR/diag_journal.py" count 1
check: python3 "$CASE_DIR/diag_journal.py" req 1 channel=callback proc=0 mode=6 request=1c response=1c0800
