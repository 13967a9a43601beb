// The maker's modem API library (libmodemapi), the calls the tool uses.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define MODEM_API_STATS_DATA_MAX 700

typedef void (*modem_api_event_cb)(int event, void *data, int len);
typedef void (*modem_api_status_cb)(int status);

struct modem_api_stats_result {
  uint32_t id_num;    // number of ids returned
  uint32_t sub;       // subscription
  uint32_t id;        // record id
  uint32_t data_len;  // bytes in data
  uint8_t data[MODEM_API_STATS_DATA_MAX];
};

int modem_api_init(void);
int modem_api_release(void);
int modem_api_init_client(int flags, modem_api_event_cb event_cb, modem_api_status_cb status_cb,
                          int *client_id);
int modem_api_free_client(int client_id);
int modem_api_set_tessera_feature_status(int client_id, int a, int b, int c, int d);
int modem_api_get_stats_parameter(int client_id, unsigned int sub, unsigned int number,
                                  unsigned int id_count, const unsigned int *id_list,
                                  struct modem_api_stats_result *result);

#ifdef __cplusplus
}
#endif
