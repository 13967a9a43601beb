// Category 5, the modem maintenance commands: the raw diag command, card status
// and type, subsystem restart, full dump, NV sync and the SAR DSI query.
#pragma once

#include <cstdint>

// Sub-operation 0: sends the typed bytes as a diag request and prints the
// answer. 0 on success (and for the too-few-inputs note), 1 when the send failed.
int32_t velmar_cmn_diag_cmd_send(int argc, char **argv);

// Sub-operations 1 to 4: each prints its name and sends its common request.
int32_t velmar_cmn_card_status_query(int argc, char **argv);
int32_t velmar_cmn_card_status_get(int argc, char **argv);
int32_t velmar_cmn_card_status_set(int argc, char **argv);
int32_t velmar_cmn_card_type_query(int argc, char **argv);

// Sends common command t with the n arguments after the sub-operation, each as
// a u32 that is 1 when the argument reads as non-zero. argc must be n + 3, else
// the need-inputs note is printed and VELMAR_ERR_ARGC returned with nothing
// sent. Otherwise returns what velmar_cmn_cmd_send returns (it prints the answer).
int32_t velmar_cmn_card_status_cmd(int32_t t, int32_t n, int argc, char **argv);

// Sub-operations 5 and 6: subsystem restart and full dump. Both drive the
// restart-level property first; neither looks at the modem's answer.
void velmar_cmn_test_modem_ssr();
void velmar_cmn_test_full_dump();

// Reads "persist.radio.ssr_wait_s" (default 3), sleeps that many seconds and
// returns the value. A negative value is handed to sleep as unsigned, so it
// pauses until a signal interrupts it, before the caller sees the sign.
int velmar_cmn_test_ssr_wait_s();

// The count of full dumps that switched restarts off, kept in the modem's EFS.
// Reading gives 0 when the file cannot be read; saving writes read + 1 and
// only logs the outcome.
uint32_t velmar_cmn_test_read_ssr_update_flag();
void velmar_cmn_test_save_ssr_update_flag();
