// End-to-end runner: each tests/e2e/**/NAME.cmd is one test. It names the
// command line and optional shell steps; NAME.out holds the exact stdout.
//
//   # comment
//   bin: rpk                 (default rpk; any binary of the build tree)
//   env: NAME=VALUE          (added to the environment of every step)
//   setup: <shell command>   (run before, must exit 0)
//   args: 4 1 0 550          (blank-separated; "double quotes" group, \" \\ \r \n escape)
//   check: <shell command>   (run after, must exit 0)
//   thread: <regex>          (the stdout lines it matches come from another
//                             thread: compared in their own order, free to cut
//                             in anywhere between the other lines)
//   drop: <regex>            (stdout lines it matches are left out of the
//                             comparison: lines a detached thread may or may
//                             not write before the process ends)
//   out: OTHER.out           (the expected stdout is that file, beside this
//                             one; cases with the same output share it)
//   help: N                  (the stdout ends with the help of category N:
//                             NAME.out holds only what comes before it)
//
// `help: N` takes the help text from the built rpk itself (its whole help,
// printed when run without arguments, cut to the banner, section N and the
// closing line), so a golden file never copies a help section. The help text
// itself is pinned byte for byte by tests/e2e/front/help_none.out: keep the
// cases of tests/e2e/front/ whole.
//
// Every step sees RPK_SIM_DIR (a fresh state directory of this case), RPK,
// SIM, DECODE (the binaries) and CASE_DIR. Before comparing, log line numbers
// on the console are masked as "RIL[function:N]: ", errno values as "errno: E", and the state
// directory's path is shown as ${RPK_SIM_DIR}.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "support/capture_stdout.h"

namespace fs = std::filesystem;

namespace {

struct Case {
  fs::path cmd_file;
  fs::path out_file;  // NAME.out unless `out:` names another
  std::string help;   // the category whose help ends the output, or empty
  std::string bin = "rpk";
  std::vector<std::string> env, setup, checks, args, threads, drops;
};

std::string read_all(const fs::path &p) {
  std::ifstream in(p, std::ios::binary);
  std::ostringstream ss;
  ss << in.rdbuf();
  return ss.str();
}

std::vector<std::string> split_args(const std::string &line) {
  std::vector<std::string> out;
  std::string cur;
  bool in_word = false, quoted = false;
  for (size_t i = 0; i < line.size(); ++i) {
    char c = line[i];
    if (c == '\\' && i + 1 < line.size()) {
      char n = line[++i];
      cur += n == 'r' ? '\r' : n == 'n' ? '\n' : n;
      in_word = true;
    } else if (c == '"') {
      quoted = !quoted;
      in_word = true;
    } else if (c == ' ' && !quoted) {
      if (in_word) out.push_back(cur);
      cur.clear();
      in_word = false;
    } else {
      cur += c;
      in_word = true;
    }
  }
  if (in_word) out.push_back(cur);
  return out;
}

Case parse_case(const fs::path &file) {
  Case c;
  c.cmd_file = file;
  c.out_file = fs::path(file).replace_extension(".out");
  std::istringstream in(read_all(file));
  std::string line;
  while (std::getline(in, line)) {
    auto take = [&](const char *key, std::string &dst) {
      size_t n = strlen(key);
      if (line.compare(0, n, key) != 0) return false;
      dst = line.substr(n);
      return true;
    };
    std::string v;
    if (line.empty() || line[0] == '#') continue;
    if (take("bin: ", v))
      c.bin = v;
    else if (take("env: ", v))
      c.env.push_back(v);
    else if (take("setup: ", v))
      c.setup.push_back(v);
    else if (take("check: ", v))
      c.checks.push_back(v);
    else if (take("args:", v))
      c.args = split_args(v);
    else if (take("thread: ", v))
      c.threads.push_back(v);
    else if (take("drop: ", v))
      c.drops.push_back(v);
    else if (take("out: ", v))
      c.out_file = file.parent_path() / v;
    else if (take("help: ", v))
      c.help = v;
    else
      ADD_FAILURE() << file << ": unknown line: " << line;
  }
  return c;
}

// The output as the case compares it: the dropped lines left out, and the
// lines of each thread pattern moved, in their order, behind the others under
// a marker line.
std::string comparable(const std::string &text, const Case &c) {
  if (c.threads.empty() && c.drops.empty()) return text;
  std::vector<std::regex> drops, threads;
  for (const auto &d : c.drops) drops.emplace_back(d);
  for (const auto &t : c.threads) threads.emplace_back(t);
  std::vector<std::string> groups(threads.size() + 1);
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) {
    auto hit = [&line](const std::regex &r) { return std::regex_search(line, r); };
    if (std::any_of(drops.begin(), drops.end(), hit)) continue;
    size_t g = 0;
    while (g < threads.size() && !hit(threads[g])) ++g;
    groups[g == threads.size() ? 0 : g + 1] += line + "\n";
  }
  std::string out = groups[0];
  for (size_t g = 0; g < threads.size(); ++g) {
    out += "---- thread: " + c.threads[g] + "\n" + groups[g + 1];
  }
  return out;
}

struct Result {
  int status = -1;
  std::string out, err;
};

// Runs argv with extra environment, collecting stdout and stderr; killed after
// `limit` seconds.
Result run(const std::vector<std::string> &argv, const std::vector<std::string> &env,
           int limit = 120) {
  int out_pipe[2], err_pipe[2];
  if (pipe(out_pipe) != 0 || pipe(err_pipe) != 0) return {};
  pid_t pid = fork();
  if (pid == 0) {
    dup2(out_pipe[1], STDOUT_FILENO);
    dup2(err_pipe[1], STDERR_FILENO);
    // Only fds 1 and 2 may hold the pipes: a daemon started by a step that
    // redirects its output must not keep them open.
    close(out_pipe[0]);
    close(err_pipe[0]);
    close(out_pipe[1]);
    close(err_pipe[1]);
    int devnull = open("/dev/null", O_RDONLY);
    dup2(devnull, STDIN_FILENO);
    for (const auto &e : env) putenv(strdup(e.c_str()));
    std::vector<char *> cargv;
    for (const auto &a : argv) cargv.push_back(const_cast<char *>(a.c_str()));
    cargv.push_back(nullptr);
    execv(cargv[0], cargv.data());
    _exit(127);
  }
  close(out_pipe[1]);
  close(err_pipe[1]);
  Result r;
  pollfd fds[2] = {{out_pipe[0], POLLIN, 0}, {err_pipe[0], POLLIN, 0}};
  int open_fds = 2;
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(limit);
  while (open_fds > 0) {
    int left = static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                    deadline - std::chrono::steady_clock::now())
                                    .count());
    if (left <= 0) {
      kill(pid, SIGKILL);
      r.err += "\n[e2e: killed after time limit]";
      break;
    }
    if (poll(fds, 2, left) <= 0) continue;
    for (int i = 0; i < 2; ++i) {
      if (fds[i].fd < 0 || !(fds[i].revents & (POLLIN | POLLHUP))) continue;
      char buf[8192];
      ssize_t n = read(fds[i].fd, buf, sizeof buf);
      if (n > 0) {
        (i == 0 ? r.out : r.err).append(buf, static_cast<size_t>(n));
      } else {
        close(fds[i].fd);
        fds[i].fd = -1;
        --open_fds;
      }
    }
  }
  for (auto &f : fds) {
    if (f.fd >= 0) close(f.fd);
  }
  int status = 0;
  waitpid(pid, &status, 0);
  r.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return r;
}

// The help of one category as rpk prints it after a refusal: the banner, the
// category's section of the whole help, the closing line. Empty (with a test
// failure) when the whole help has no such section.
std::string category_help(const std::string &category) {
  static const std::string whole = [] {
    char tmpl[] = "/tmp/rpk-e2e-help-XXXXXX";
    if (mkdtemp(tmpl) == nullptr) return std::string();
    Result r = run({std::string(RPK_E2E_BIN_DIR) + "/rpk"},
                   {std::string("RPK_SIM_DIR=") + tmpl, "RPK_SIM_AUTOSTART=0"});
    std::error_code ec;
    fs::remove_all(tmpl, ec);
    return r.out;
  }();
  // Lines with their newlines; sections start with "<category>: " at column 0.
  std::vector<std::string> lines;
  for (size_t at = 0; at < whole.size();) {
    size_t end = whole.find('\n', at);
    end = end == std::string::npos ? whole.size() : end + 1;
    lines.push_back(whole.substr(at, end - at));
    at = end;
  }
  auto starts = [](const std::string &line, const char *prefix) {
    return line.compare(0, strlen(prefix), prefix) == 0;
  };
  size_t banner = 0, closing = lines.size();
  while (banner < lines.size() && !starts(lines[banner], "=========== blew")) ++banner;
  while (closing > banner && !starts(lines[closing - 1], "=========== above")) --closing;
  if (banner == lines.size() || closing <= banner) {
    ADD_FAILURE() << "rpk without arguments printed no help:\n" << whole;
    return {};
  }
  --closing;
  std::string head, section, tail;
  for (size_t i = 0; i <= banner; ++i) head += lines[i];
  for (size_t i = closing; i < lines.size(); ++i) tail += lines[i];
  const std::string title = category + ": ";
  bool in_section = false;
  for (size_t i = banner + 1; i < closing; ++i) {
    const std::string &l = lines[i];
    const size_t digits = l.find_first_not_of("0123456789");
    if (digits > 0 && digits != std::string::npos && l.compare(digits, 2, ": ") == 0) {
      in_section = starts(l, title.c_str());
    }
    if (in_section) section += l;
  }
  if (section.empty()) {
    ADD_FAILURE() << "the whole help has no section " << category;
    return {};
  }
  return head + section + tail;
}

class E2eCase : public testing::Test {
 public:
  explicit E2eCase(Case c) : c_(std::move(c)) {}

  void TestBody() override {
    char tmpl[] = "/tmp/rpk-e2e-XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    const std::string state = tmpl;
    const std::string bin_dir = RPK_E2E_BIN_DIR;
    std::vector<std::string> env = {
        "RPK_SIM_DIR=" + state, "RPK=" + bin_dir + "/rpk", "SIM=" + bin_dir + "/rpk-modem-sim",
        "DECODE=" + bin_dir + "/rpk-decode", "CASE_DIR=" + c_.cmd_file.parent_path().string()};
    env.insert(env.end(), c_.env.begin(), c_.env.end());
    auto shell = [&](const std::string &cmd) { return run({"/bin/sh", "-c", cmd}, env); };

    bool ok = true;
    for (const auto &s : c_.setup) {
      Result r = shell(s);
      if (r.status != 0) {
        ADD_FAILURE() << "setup failed: " << s << "\n" << r.out << r.err;
        ok = false;
        break;
      }
    }
    if (ok) {
      std::vector<std::string> argv = {bin_dir + "/" + c_.bin};
      argv.insert(argv.end(), c_.args.begin(), c_.args.end());
      Result r = run(argv, env);
      EXPECT_EQ(r.status, 0) << r.err;
      EXPECT_TRUE(fs::exists(c_.out_file)) << c_.out_file;
      std::string want = read_all(c_.out_file);
      if (!c_.help.empty()) want += category_help(c_.help);
      // errno after a platform call is whatever the platform left there: it
      // says nothing about the tool and differs between machines.
      static const std::regex errno_value("errno: -?[0-9]+");
      std::string got = std::regex_replace(mask_log_lines(r.out), errno_value, "errno: E");
      for (size_t at; (at = got.find(state)) != std::string::npos;) {
        got.replace(at, state.size(), "${RPK_SIM_DIR}");
      }
      EXPECT_EQ(comparable(got, c_), comparable(want, c_)) << "stderr:\n" << r.err;
      // Checks read the journal: wait until it holds every answered request.
      if (!c_.checks.empty() && fs::exists(bin_dir + "/rpk-modem-sim")) {
        shell("\"$SIM\" journal sync >/dev/null 2>&1 || true");
      }
      for (const auto &s : c_.checks) {
        Result cr = shell(s);
        EXPECT_EQ(cr.status, 0) << "check failed: " << s << "\n" << cr.out << cr.err;
      }
    }
    if (fs::exists(bin_dir + "/rpk-modem-sim")) shell("\"$SIM\" stop >/dev/null 2>&1 || true");
    std::error_code ec;
    fs::remove_all(state, ec);
  }

 private:
  Case c_;
};

}  // namespace

int main(int argc, char **argv) {
  testing::InitGoogleTest(&argc, argv);
  std::vector<fs::path> files;
  for (const auto &e : fs::recursive_directory_iterator(RPK_E2E_CASES)) {
    if (e.path().extension() == ".cmd") files.push_back(e.path());
  }
  std::sort(files.begin(), files.end());
  for (const auto &f : files) {
    const std::string suite = f.parent_path().filename().string();
    const std::string name = f.stem().string();
    Case c = parse_case(f);
    testing::RegisterTest(("e2e_" + suite).c_str(), name.c_str(), nullptr, nullptr, __FILE__,
                          __LINE__, [c]() -> testing::Test * { return new E2eCase(c); });
  }
  return RUN_ALL_TESTS();
}
