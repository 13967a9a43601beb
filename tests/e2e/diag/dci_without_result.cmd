# Any mode other than 0 is DCI; the time limit is ignored without result.
thread: ^RIL\[(velmar_diag_cmd_send_without_result_by_\w+_thread_proc|velmar_diag_register_callback):N\]
thread: _no_handle:N\]
args: 5 0 7 1 0 0x1D
check: python3 "$CASE_DIR/diag_journal.py" req 1 channel=dci request=1d response_len=9
