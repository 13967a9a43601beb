// What a new simulated modem holds: NV items and EFS files as they leave the
// factory.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace rpk_sim {

struct FactoryNvItem {
  unsigned sub;
  uint16_t item;
  std::string value;
};

struct FactoryEfsFile {
  unsigned sub;
  std::string path;
  std::string content;
};

std::vector<FactoryNvItem> factory_nv_items();
std::vector<FactoryEfsFile> factory_efs_files();

}  // namespace rpk_sim
