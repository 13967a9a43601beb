// The host's link to the simulated modem daemon (rpk-modem-sim) of the current
// state directory: is it running, and starting it on first need.
#pragma once

#include <sys/types.h>

#include <string>

namespace rpk_host {

// <state dir>/sim.lock: the daemon holds an open-file-description write lock
// on it for its whole life, so a killed daemon never looks alive.
std::string modem_sim_lock_path();

// <state dir>/sim.pid: the running daemon's pid (meaningful only while the
// lock is held).
std::string modem_sim_pid_path();

// True while a daemon holds the lock of this state directory.
bool modem_sim_running();

// Which daemon serves: its recorded pid while one holds the lock, else 0. Two
// looks that differ mean the daemon died (and maybe was replaced) in between.
long modem_sim_serving_pid();

// $RPK_SIM_BIN, else the rpk-modem-sim of this build tree.
std::string modem_sim_binary();

// False when RPK_SIM_AUTOSTART=0.
bool modem_sim_autostart_allowed();

// Starts the daemon when none runs, unless RPK_SIM_AUTOSTART=0: on the first
// need and again whenever the daemon has vanished since. Returns once a daemon
// serves. When none can be started (unusable state directory, binary missing
// or not starting a daemon) the process ends with platform_failure(): a host
// without its modem would otherwise wait for ever. Whatever is said goes to
// stderr, never stdout.
void ensure_modem_sim();

}  // namespace rpk_host
