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

// Sub-operations 5 and 6: subsystem restart and full dump.
void velmar_cmn_test_modem_ssr();
void velmar_cmn_test_full_dump();
