// Category 9: per-carrier signal metrics through the modem API library,
//   rpk 9 <opt> <sub>
// Every run opens a modem API client, starts the statistics feature, asks
// for one record and closes the client again, whatever happened. Failures
// are reported by the printed lines only: the handler velmar_test_qmi_modem_stats_do
// (front/velmar_handlers.h) always returns 0.
#pragma once

#include <cstdint>

// Record ids of the signal metrics.
inline constexpr uint32_t VELMAR_TESSERA_ID_4G_PCC = 82;
inline constexpr uint32_t VELMAR_TESSERA_ID_4G_SCC1 = 103;  // SCC1..SCC6: 103..108
inline constexpr uint32_t VELMAR_TESSERA_ID_5G_RSSI = 94;
inline constexpr uint32_t VELMAR_TESSERA_ID_5G_SNR = 112;
inline constexpr uint32_t VELMAR_TESSERA_ID_5G_ANT = 113;
inline constexpr uint32_t VELMAR_TESSERA_ID_WCDMA = 110;
inline constexpr uint32_t VELMAR_TESSERA_ID_GSM = 111;
// The most data one record holds.
inline constexpr int32_t VELMAR_TESSERA_DATA_MAX = 700;

// The session. Init frees a client left over, re-initialises the library and
// opens a client; a failure leaves the client id at -1 and shows up later as
// "tessera qmi is not yet inited". Deinit frees the client (if any) and
// releases the library.
void velmar_qmi_modem_stats_api_init();
void velmar_test_qmi_modem_stats_start();
void velmar_qmi_modem_stats_api_deinit();

// Prints the opt line and runs the reader of `opt` (or the unknown-opt line).
void velmar_test_qmi_modem_stats_hdl(int opt, int sub);

// Asks for record `id` of `sub`. 0: the answer is in the read cursor; 1: a
// check failed and its line was printed (the cursor is then empty).
int velmar_test_qmi_modem_stats_get(uint32_t sub, uint32_t id);

// The readers: query, read the fields in layout order, print the metric line.
// 0 when the line was printed, 1 when the query or a field read failed.
int velmar_test_qmi_modem_stats_4g_rssi(uint32_t sub, uint32_t id);
int velmar_test_qmi_modem_stats_5g_rssi(uint32_t sub);
int velmar_test_qmi_modem_stats_5g_snr(uint32_t sub);
int velmar_test_qmi_modem_stats_5g_ant_diversity(uint32_t sub);
int velmar_test_qmi_modem_stats_wcdma_rssi(uint32_t sub);
int velmar_test_qmi_modem_stats_gsm_rssi(uint32_t sub);

// The client's callbacks: the tool wants no events, so they do nothing.
void velmar_test_qmi_modem_stats_callback_event_cb(int event, void *data, int len);
void velmar_test_qmi_modem_stats_operational_status_cb(int status);
