// Host side of the platform: shared helpers of the host implementations and
// the simulated modem. Not part of the phone build.
#pragma once

#include <string>
#include <string_view>

namespace rpk_host {

// The host state directory: $RPK_SIM_DIR, else $XDG_STATE_HOME/rpk-sim, else
// ~/.local/state/rpk-sim. Created (with parents) on first use.
std::string state_dir();

// Replaces `path` with `data` so that a crash at any moment leaves either the
// old or the new content (temporary file, fsync, rename). Returns false on
// failure, with the old content untouched.
bool write_file_atomic(const std::string &path, std::string_view data);

// Reads a whole file; false when it cannot be opened.
bool read_file(const std::string &path, std::string &out);

}  // namespace rpk_host
