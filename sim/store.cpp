#include "store.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "factory_image.h"
#include "modem_errors.h"
#include "platform/host/link/rpk_host.h"
#include "sim_text.h"

namespace fs = std::filesystem;

namespace rpk_sim {
namespace {

constexpr char kQcnMagic[8] = {'R', 'P', 'K', 'Q', 'C', 'N', 1, 0};
constexpr uint32_t kQcnPrivacy = 0x1;

bool make_dirs(const std::string &dir) {
  std::error_code ec;
  fs::create_directories(dir, ec);
  return !ec;
}

uint32_t get_le_at(const std::string &s, size_t at, int n) {
  return static_cast<uint32_t>(get_le(reinterpret_cast<const uint8_t *>(s.data()) + at, n));
}

// Leftovers of an interrupted atomic write carry this in their name.
bool is_temporary(const std::string &name) { return name.find(".tmp.") != std::string::npos; }

}  // namespace

Store::Store(std::string state_dir) : dir_(std::move(state_dir)) {}

bool Store::ensure_factory() {
  const std::string stamp = dir_ + "/nv/.factory";
  if (access(stamp.c_str(), F_OK) == 0) return true;
  bool whole = true;
  for (const auto &item : factory_nv_items()) {
    whole = nv_write(item.sub, item.item, item.value) == kNvDone && whole;
  }
  for (const auto &file : factory_efs_files()) {
    whole = efs_write(file.sub, file.path, file.content) == 0 && whole;
  }
  whole = whole && rpk_host::write_file_atomic(golden_qcn_path(), make_qcn(false));
  // Stamped last: a start killed half-way, or one that ran out of disk,
  // writes the image again next time.
  return whole && rpk_host::write_file_atomic(stamp, "");
}

bool Store::factory_reset() {
  std::error_code ec;
  fs::remove_all(dir_ + "/nv", ec);
  fs::remove_all(dir_ + "/efs", ec);
  fs::remove(qcn_path(), ec);
  fs::remove(golden_qcn_path(), ec);
  return ensure_factory();
}

std::string Store::nv_file(unsigned sub, uint32_t item) const {
  return dir_ + "/nv/sub" + std::to_string(sub) + "/" + std::to_string(item);
}

int32_t Store::nv_read(unsigned sub, uint32_t item, std::string *value) const {
  if (sub >= kSubscriptions || item >= kNvItemCount) return kNvBadParm;
  if (!rpk_host::read_file(nv_file(sub, item), *value, kNvItemMax)) return kNvNotActive;
  return kNvDone;
}

int32_t Store::nv_write(unsigned sub, uint32_t item, std::string_view value) {
  if (sub >= kSubscriptions || item >= kNvItemCount || value.empty() || value.size() > kNvItemMax) {
    return kNvBadParm;
  }
  if (!make_dirs(dir_ + "/nv/sub" + std::to_string(sub))) return kNvFail;
  return rpk_host::write_file_atomic(nv_file(sub, item), value) ? kNvDone : kNvFail;
}

int32_t Store::nv_delete(unsigned sub, uint32_t item) {
  if (sub >= kSubscriptions || item >= kNvItemCount) return kNvBadParm;
  if (unlink(nv_file(sub, item).c_str()) != 0) return errno == ENOENT ? kNvNotActive : kNvFail;
  return kNvDone;
}

std::vector<uint16_t> Store::nv_items(unsigned sub) const {
  std::vector<uint16_t> items;
  std::error_code ec;
  for (const auto &e : fs::directory_iterator(dir_ + "/nv/sub" + std::to_string(sub), ec)) {
    const std::string name = e.path().filename().string();
    if (name.empty() || !std::all_of(name.begin(), name.end(), ::isdigit) || name.size() > 5) {
      continue;
    }
    unsigned long n = std::stoul(name);
    if (n < kNvItemCount) items.push_back(static_cast<uint16_t>(n));
  }
  std::sort(items.begin(), items.end());
  return items;
}

std::string Store::efs_file(unsigned sub, std::string_view path, int32_t *err) const {
  *err = kEfsInval;
  if (sub >= kSubscriptions || path.empty() || path.front() != '/') return {};
  if (path.size() > kEfsPathMax) {
    *err = kEfsNameTooLong;
    return {};
  }
  // Components must be plain names: the tree may not be left, nor may a
  // temporary file of an interrupted write be named.
  size_t start = 1;
  while (start <= path.size()) {
    size_t end = path.find('/', start);
    if (end == std::string_view::npos) end = path.size();
    std::string_view part = path.substr(start, end - start);
    if (part.empty() || part == "." || part == ".." || part.find('\0') != std::string_view::npos ||
        is_temporary(std::string(part))) {
      return {};
    }
    start = end + 1;
  }
  *err = 0;
  return dir_ + "/efs/sub" + std::to_string(sub) + std::string(path);
}

std::string Store::efs_existing_file(unsigned sub, std::string_view path, int32_t *err) const {
  std::string file = efs_file(sub, path, err);
  struct stat st {};
  if (file.empty()) return {};
  if (stat(file.c_str(), &st) != 0) {
    *err = kEfsNoEnt;
  } else if (S_ISDIR(st.st_mode)) {
    *err = kEfsIsDir;
  } else {
    return file;
  }
  return {};
}

int32_t Store::efs_read(unsigned sub, std::string_view path, std::string *content) const {
  int32_t err = 0;
  const std::string file = efs_existing_file(sub, path, &err);
  if (file.empty()) return err;
  return rpk_host::read_file(file, *content) ? 0 : kEfsIo;
}

int32_t Store::efs_write(unsigned sub, std::string_view path, std::string_view content) {
  int32_t err = 0;
  const std::string file = efs_file(sub, path, &err);
  if (file.empty()) return err;
  if (content.size() > kEfsFileMax) return kEfsFBig;
  struct stat st {};
  if (stat(file.c_str(), &st) == 0 && S_ISDIR(st.st_mode)) return kEfsIsDir;
  if (!make_dirs(fs::path(file).parent_path().string())) return kEfsIo;
  return rpk_host::write_file_atomic(file, content) ? 0 : kEfsIo;
}

int32_t Store::efs_delete(unsigned sub, std::string_view path) {
  int32_t err = 0;
  const std::string file = efs_existing_file(sub, path, &err);
  if (file.empty()) return err;
  return unlink(file.c_str()) == 0 ? 0 : kEfsIo;
}

std::vector<std::string> Store::efs_files(unsigned sub) const {
  std::vector<std::string> files;
  const std::string root = dir_ + "/efs/sub" + std::to_string(sub);
  std::error_code ec;
  for (auto it = fs::recursive_directory_iterator(root, ec); !ec && it != fs::end(it);
       it.increment(ec)) {
    if (!it->is_regular_file() || is_temporary(it->path().filename().string())) continue;
    files.push_back(it->path().string().substr(root.size()));
  }
  std::sort(files.begin(), files.end());
  return files;
}

// QCN file: magic (8), u32 flags, u32 entry count, then per entry u8 sub,
// u16 item, u16 length, the value.
std::string Store::make_qcn(bool privacy) const {
  std::string body;
  uint32_t count = 0;
  for (unsigned sub = 0; sub < kSubscriptions; ++sub) {
    for (uint16_t item : nv_items(sub)) {
      if (privacy && std::find(std::begin(kPrivateItems), std::end(kPrivateItems), item) !=
                         std::end(kPrivateItems)) {
        continue;
      }
      std::string value;
      if (nv_read(sub, item, &value) != kNvDone) continue;
      body += le_bytes(sub, 1) + le_bytes(item, 2) + le_bytes(value.size(), 2) + value;
      ++count;
    }
  }
  return std::string(kQcnMagic, sizeof kQcnMagic) + le_bytes(privacy ? kQcnPrivacy : 0, 4) +
         le_bytes(count, 4) + body;
}

int32_t Store::qcn_backup(bool privacy) {
  return rpk_host::write_file_atomic(qcn_path(), make_qcn(privacy)) ? kNvDone : kNvFail;
}

int32_t Store::qcn_restore(bool golden) {
  std::string qcn;
  if (!rpk_host::read_file(golden ? golden_qcn_path() : qcn_path(), qcn)) return kNvFail;
  if (qcn.size() < 16 || memcmp(qcn.data(), kQcnMagic, sizeof kQcnMagic) != 0) return kNvFail;
  // Check the whole file before writing anything, so a damaged backup changes
  // nothing.
  const uint32_t count = get_le_at(qcn, 12, 4);
  size_t at = 16;
  for (uint32_t i = 0; i < count; ++i) {
    if (qcn.size() - at < 5) return kNvFail;
    const uint32_t len = get_le_at(qcn, at + 3, 2);
    if (qcn.size() - at - 5 < len) return kNvFail;
    at += 5 + len;
  }
  at = 16;
  int32_t result = kNvDone;
  for (uint32_t i = 0; i < count; ++i) {
    const unsigned sub = static_cast<uint8_t>(qcn[at]);
    const uint32_t item = get_le_at(qcn, at + 1, 2);
    const uint32_t len = get_le_at(qcn, at + 3, 2);
    if (nv_write(sub, item, std::string_view(qcn).substr(at + 5, len)) != kNvDone) {
      result = kNvFail;
    }
    at += 5 + len;
  }
  return result;
}

}  // namespace rpk_sim
