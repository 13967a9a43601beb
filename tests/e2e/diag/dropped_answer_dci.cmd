# The same through DCI with a limit of 0: one tick.
setup: "$SIM" fault drop-after 0 --service diag
thread: ^RIL\[(velmar_diag_cmd_response_\w+|velmar_print_data_with_hex):N\]
thread: ^RIL\[velmar_diag_cmd_send_with_result_wait_thread_proc:N\]
drop: ^RIL\[velmar_diag_cmd_send_with_result_wait_thread_proc:N\]: function exit
args: 5 0 1 0 0 0x1C
check: python3 "$CASE_DIR/diag_journal.py" req 1 fault=drop
help: 5
