# Two pieces of exactly 4096 bytes: no handler post; the wait thread ends at
# the limit and the length rule makes it a success with all 8192 bytes.
setup: "$SIM" diag set dci_piece 4096
setup: "$SIM" diag answer 4b04 4b040e00 --size 8192
thread: ^RIL\[(velmar_diag_cmd_response_\w+|velmar_print_data_with_hex):N\]
thread: ^RIL\[velmar_diag_cmd_send_with_result_wait_thread_proc:N\]
drop: ^RIL\[velmar_diag_cmd_send_with_result_wait_thread_proc:N\]: function exit
args: 5 0 1 0 50 0x4B 0x04 0x0E 0x00
check: python3 "$CASE_DIR/diag_journal.py" req 1 pieces=2 response_len=8192
