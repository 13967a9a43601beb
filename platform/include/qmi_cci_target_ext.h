// QCCI operating-system parameters (Linux target).
#pragma once

#include <pthread.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct {
  uint32_t sig_set;
  uint32_t timed_out;
  uint32_t clock;
  pthread_cond_t cond;
  pthread_condattr_t attr;
  pthread_mutex_t mutex;
} qmi_cci_os_signal_type;

typedef qmi_cci_os_signal_type qmi_client_os_params;

// Waits until the signal is set (timeout_ms 0: no limit). Never clears it.
int qmi_cci_os_signal_wait(qmi_client_os_params *os_params, unsigned int timeout_ms);

#ifdef __cplusplus
}
#endif
