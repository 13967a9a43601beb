// Qualcomm diag library (callback channel).
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef uint8_t boolean;

#define MSM 0
#define MDM 1
#define MDM_2 2

#define USB_MODE 1
#define CALLBACK_MODE 6

boolean Diag_LSM_Init(uint8_t *pIEnv);
boolean Diag_LSM_DeInit(void);

void diag_register_callback(int (*client_cb_func_ptr)(unsigned char *ptr, int len,
                                                      void *context_data),
                            void *context_data);
void diag_register_remote_callback(int (*client_rmt_cb_func_ptr)(unsigned char *ptr, int len,
                                                                 void *context_data),
                                   int proc, void *context_data);
int diag_has_remote_device(uint16_t *remote_mask);
void diag_switch_logging(int requested_mode, char *dir_location);
int diag_callback_send_data(int proc, unsigned char *buf, int len);

#ifdef __cplusplus
}
#endif
