# A subsystem dispatch through DCI: registration, signal, support list,
# listeners, the request, then the session is closed before the client is
# released (so the release never reaches the closed session).
thread: ^RIL\[(velmar_diag_cmd_response_\w+|velmar_print_data_with_hex):N\]
drop: ^RIL\[velmar_diag_cmd_send_with_result_wait_thread_proc:N\]
args: 5 0 1 0 3000 0x4B 0x04 0x0E 0x00
check: python3 "$CASE_DIR/diag_journal.py" req 1 channel=dci request=4b040e00 response=4b040e00 pieces=1
check: python3 "$CASE_DIR/diag_journal.py" calls dci_register dci_signal dci_support dci_stream
