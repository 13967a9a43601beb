# 4096 + 100 bytes: the short second piece ends the wait.
setup: "$SIM" diag set dci_piece 4096
setup: "$SIM" diag answer 4b04 4b040e00 --size 4196
thread: ^RIL\[(velmar_diag_cmd_response_\w+|velmar_print_data_with_hex):N\]
drop: ^RIL\[velmar_diag_cmd_send_with_result_wait_thread_proc:N\]
args: 5 0 1 0 3000 0x4B 0x04 0x0E 0x00
check: python3 "$CASE_DIR/diag_journal.py" req 1 pieces=2 response_len=4196
