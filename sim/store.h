// The modem's persistent memory in the host state directory: NV items per
// subscription (nv/sub<N>/<item>), EFS files per subscription as a directory
// tree (efs/sub<N>/<path>) and the QCN backups. Every write replaces a whole
// file atomically, so a daemon killed at any moment leaves each item and each
// file either old or new. Nothing is cached: the CLI and the daemon may both
// work on the same directory.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace rpk_sim {

inline constexpr unsigned kSubscriptions = 2;
inline constexpr uint32_t kNvItemCount = 7233;    // items 0..7232
inline constexpr uint32_t kNvItemMax = 424;       // bytes of one item value
inline constexpr uint32_t kEfsPathMax = 71;       // what the request record carries
inline constexpr uint32_t kEfsFileMax = 1 << 20;  // bytes of one EFS file

// Identity items left out of a backup made with the privacy flag.
inline constexpr uint16_t kPrivateItems[] = {550, 2824, 4678, 477};

class Store {
 public:
  explicit Store(std::string state_dir);

  // Writes the factory image when the state directory has none yet. The image
  // is stamped complete only once every part of it was written: false (and no
  // stamp, so the next start tries again) when any write failed.
  bool ensure_factory();
  // Wipes NV, EFS and backups and writes the factory image again.
  bool factory_reset();

  // NV: results are the modem's NV status codes (modem_errors.h).
  int32_t nv_read(unsigned sub, uint32_t item, std::string *value) const;
  int32_t nv_write(unsigned sub, uint32_t item, std::string_view value);
  int32_t nv_delete(unsigned sub, uint32_t item);
  std::vector<uint16_t> nv_items(unsigned sub) const;

  // EFS: paths are absolute ("/nv/item_files/..."); results are EFS errno
  // values (modem_errors.h), 0 on success.
  int32_t efs_read(unsigned sub, std::string_view path, std::string *content) const;
  int32_t efs_write(unsigned sub, std::string_view path, std::string_view content);
  int32_t efs_delete(unsigned sub, std::string_view path);
  std::vector<std::string> efs_files(unsigned sub) const;

  // QCN: a backup of both subscriptions' NV items to qcn.bin; a restore from
  // qcn.bin, or from the factory's golden copy (qcn_golden.bin).
  int32_t qcn_backup(bool privacy);
  int32_t qcn_restore(bool golden);

  std::string qcn_path() const { return dir_ + "/qcn.bin"; }
  std::string golden_qcn_path() const { return dir_ + "/qcn_golden.bin"; }

 private:
  std::string nv_file(unsigned sub, uint32_t item) const;
  // Host file of an EFS path; empty with *err set when the path is not valid.
  std::string efs_file(unsigned sub, std::string_view path, int32_t *err) const;
  // The same for a regular file that exists (else kEfsNoEnt or kEfsIsDir).
  std::string efs_existing_file(unsigned sub, std::string_view path, int32_t *err) const;
  std::string make_qcn(bool privacy) const;

  std::string dir_;
};

}  // namespace rpk_sim
