#include "platform/host/link/modem_sim_link.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "platform/host/link/rpk_host.h"

#ifndef RPK_SIM_BINARY
#define RPK_SIM_BINARY "rpk-modem-sim"
#endif

extern char **environ;

namespace rpk_host {

std::string modem_sim_lock_path() { return state_dir() + "/sim.lock"; }

std::string modem_sim_pid_path() { return state_dir() + "/sim.pid"; }

bool modem_sim_running() {
  int fd = open(modem_sim_lock_path().c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  struct flock fl {};
  fl.l_type = F_WRLCK;
  fl.l_whence = SEEK_SET;
  bool held = fcntl(fd, F_OFD_GETLK, &fl) == 0 && fl.l_type != F_UNLCK;
  close(fd);
  return held;
}

long modem_sim_serving_pid() {
  if (!modem_sim_running()) return 0;
  std::string text;
  read_file(modem_sim_pid_path(), text);
  const long pid = atol(text.c_str());
  // A daemon that has just taken the lock may not have written its pid yet.
  return pid > 0 ? pid : -1;
}

std::string modem_sim_binary() {
  if (const char *bin = getenv("RPK_SIM_BIN"); bin != nullptr && *bin != '\0') return bin;
  return RPK_SIM_BINARY;
}

bool modem_sim_autostart_allowed() {
  const char *a = getenv("RPK_SIM_AUTOSTART");
  return a == nullptr || strcmp(a, "0") != 0;
}

void ensure_modem_sim() {
  if (!modem_sim_autostart_allowed()) return;
  // One start at a time in this process; other processes racing are sorted
  // out by the daemon's lock (`start` also succeeds when another one won).
  static std::mutex mu;
  std::lock_guard<std::mutex> lock(mu);
  if (modem_sim_running()) return;
  if (std::string problem = state_dir_problem(); !problem.empty()) platform_failure(problem);

  const std::string bin = modem_sim_binary();
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  // The daemon's own words must never reach the tool's stdout.
  posix_spawn_file_actions_adddup2(&actions, STDERR_FILENO, STDOUT_FILENO);
  std::string arg0 = bin;
  char start[] = "start";
  char *argv[] = {arg0.data(), start, nullptr};
  pid_t pid = 0;
  int rc = posix_spawn(&pid, bin.c_str(), &actions, nullptr, argv, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (rc != 0) {
    platform_failure("cannot run the simulated modem " + bin + ": " + strerror(rc));
  }
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    platform_failure("the simulated modem " + bin + " did not start (exit status " +
                     std::to_string(WIFEXITED(status) ? WEXITSTATUS(status) : -1) + ")");
  }
  // `start` returns once the daemon serves; a binary that says so without
  // one (or a daemon that died at once) leaves nothing to wait for.
  if (!modem_sim_running()) {
    platform_failure("the simulated modem " + bin + " started no daemon in " + state_dir());
  }
}

}  // namespace rpk_host
