#include "factory_image.h"

namespace rpk_sim {
namespace {

// NV_UE_IMEI_I layout: a length byte (8), then the 15 digits as BCD, the
// first digit in the high nibble of byte 1 behind the identity type 0xA.
std::string imei_item(const char (&digits)[16]) {
  std::string v(9, '\0');
  v[0] = 0x08;
  v[1] = static_cast<char>(((digits[0] - '0') << 4) | 0x0A);
  for (int i = 1; i < 15; i += 2) {
    v[1 + (i + 1) / 2] = static_cast<char>(((digits[i + 1] - '0') << 4) | (digits[i] - '0'));
  }
  return v;
}

std::string bytes(std::initializer_list<int> list) {
  std::string v;
  for (int b : list) v.push_back(static_cast<char>(b));
  return v;
}

// A text value in a fixed-size item, zero padded as the modem stores it.
std::string padded(const std::string &text, size_t size) {
  std::string v = text;
  v.resize(size, '\0');
  return v;
}

}  // namespace

std::vector<FactoryNvItem> factory_nv_items() {
  std::vector<FactoryNvItem> items = {
      {0, 0, bytes({0x5A, 0x3C, 0x91, 0x80})},                // NV_ESN_I
      {0, 10, bytes({0x04})},                                 // NV_PREF_MODE_I: automatic
      {0, 441, bytes({0xFF, 0xFF})},                          // NV_BAND_PREF_I
      {0, 453, bytes({0x00})},                                // NV_FTM_MODE_I: online
      {0, 477, bytes({0x22, 0x22, 0x9B, 0x4C, 0x31, 0x7E})},  // NV_BD_ADDR_I
      {0, 550, imei_item("356938035643809")},                 // NV_UE_IMEI_I
      {1, 550, imei_item("356938035643817")},                 // second slot
      {0, 855, bytes({0x01})},                                // NV_RTRE_CONFIG_I
      {0, 946, bytes({0x00, 0x00})},                          // NV_BAND_PREF_16_31_I
      {0, 1877, bytes({0x87, 0x03, 0x0E, 0x00, 0x00, 0x00, 0x00, 0x00})},  // NV_RF_BC_CONFIG_I
      {0, 2824, padded("VLM2B7K4Q9XZ", 16)},                               // NV_DEVICE_SERIAL_NO_I
      {0, 4678, bytes({0x00, 0x0A, 0xF5, 0x6E, 0x21, 0x9C})},              // NV_WLAN_MAC_ADDRESS_I
      {0, 6828, bytes({0xDF, 0x38, 0x0B, 0x1E, 0x00, 0x00, 0x00, 0x00})},  // NV_LTE_BC_CONFIG_I
      {1, 10, bytes({0x04})},
      {1, 6828, bytes({0xDF, 0x38, 0x0B, 0x1E, 0x00, 0x00, 0x00, 0x00})},
  };
  // NV_OEM_ITEM_1_I .. NV_OEM_ITEM_8_I: the maker's production records.
  const char *oem[] = {
      "line=SZ3;station=RF-CAL-07;result=PASS",
      "line=SZ3;station=ANT-12;result=PASS",
      "line=SZ3;station=MMI-02;result=PASS;operator=4417",
      "hw=EVT2;pcb=VLM-MB-0421;bom=B",
      "sku=GLOBAL;region=EU;carrier=OPEN",
      "factory_reset=0;repair_count=0",
      "audio_cal=2023-11-08;acoustic_box=AB-3",
      "final_qc=PASS;pack=2023-11-09T14:22:05Z;lot=L2311-0937",
  };
  for (uint16_t i = 0; i < 8; ++i) {
    items.push_back({0, static_cast<uint16_t>(6853 + i), padded(oem[i], 128)});
  }
  return items;
}

std::vector<FactoryEfsFile> factory_efs_files() {
  // A calibration blob long enough to need several read chunks.
  std::string cal(1000, '\0');
  for (size_t i = 0; i < cal.size(); ++i) cal[i] = static_cast<char>((i * 37 + 11) & 0xFF);
  return {
      {0, "/nv/item_files/modem/mmode/lte_bandpref", bytes({0xDF, 0x38, 0x0B, 0x1E, 0, 0, 0, 0})},
      {0, "/nv/item_files/ims/IMS_enable", bytes({0x01})},
      {0, "/nv/item_files/modem/nas/nas_lte_ue_capability", bytes({0x03, 0x00, 0x10, 0x00})},
      {0, "/nv/item_files/modem/velmar/rf_cal_data", cal},
      {1, "/nv/item_files/ims/IMS_enable", bytes({0x00})},
  };
}

}  // namespace rpk_sim
