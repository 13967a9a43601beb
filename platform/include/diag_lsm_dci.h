// Qualcomm diag library (DCI channel).
#pragma once

#include <stdint.h>

#include "diag_lsm.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef uint16_t diag_dci_peripherals;

#define DIAG_CON_APSS 0x0001
#define DIAG_CON_MPSS 0x0002
#define DIAG_CON_LPASS 0x0004
#define DIAG_CON_WCNSS 0x0008
#define DIAG_CON_SENSORS 0x0010
#define DIAG_CON_WDSP 0x0020

enum {
  DIAG_DCI_NO_ERROR = 1001,
  DIAG_DCI_NO_REG = 1002,
  DIAG_DCI_NO_MEM = 1003,
  DIAG_DCI_NOT_SUPPORTED = 1004,
  DIAG_DCI_HUGE_PACKET = 1005,
  DIAG_DCI_SEND_DATA_FAIL = 1006,
  DIAG_DCI_ERR_DEREG = 1007,
  DIAG_DCI_PARAM_FAIL = 1008,
  DIAG_DCI_DUP_CLIENT = 1009,
};

int diag_register_dci_client(int *client_id, diag_dci_peripherals *list, int proc, void *os_params);
int diag_register_dci_signal_data(int client_id, int signal_type);
int diag_get_dci_support_list_proc(int proc, diag_dci_peripherals *list);
int diag_register_dci_stream_proc(int client_id, void (*func_ptr_logs)(unsigned char *ptr, int len),
                                  void (*func_ptr_events)(unsigned char *ptr, int len));
int diag_send_dci_async_req(int client_id, unsigned char *buf, int bytes, unsigned char *rsp_ptr,
                            int rsp_len,
                            void (*func_ptr)(unsigned char *ptr, int len, void *data_ptr),
                            void *data_ptr);
int diag_release_dci_client(int *client_id);

#ifdef __cplusplus
}
#endif
