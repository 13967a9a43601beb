#include "front/velmar_test_at_cmd.h"

#include <pthread.h>
#include <semaphore.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "front/velmar_cmd_ids.h"
#include "front/velmar_handlers.h"
#include "front/velmar_help.h"
#include "platform/rpk_platform.h"

namespace {

constexpr size_t kAtBufSize = 105;
constexpr size_t kShellCmdSize = 501;

// Set by the receive thread when it is done; polled by the command.
std::atomic<uint8_t> g_at_cmd_done{0};
constexpr int g_at_serial_fd = 0;

// Posted once the receive thread has reported, so that the receiver is up
// before the command goes out and the console order is always the same.
sem_t g_at_receiver_ready;

void append_bounded(char *dst, const char *src) {
  if (strlen(dst) + strlen(src) >= kShellCmdSize) {
    // Nothing is sent; the process ends as a failure, not as a crash.
    fflush(stdout);
    fprintf(stderr, "rpk: the AT shell command would pass %zu bytes (AT device %s); not sent\n",
            kShellCmdSize - 1, rpk_at_device_path());
    _Exit(EXIT_FAILURE);
  }
  strcat(dst, src);
}

int32_t reject() {
  g_at_cmd_done = 0;
  return show_help(VELMAR_CAT_AT);
}

}  // namespace

void *velmar_test_at_cmd_receive(void *) {
  puts("The thread to receive data from serial is started");
  printf("The at channel is not opened, g_at_serial_fd %d\n", g_at_serial_fd);
  g_at_cmd_done = 1;
  sem_post(&g_at_receiver_ready);
  return nullptr;
}

void velmar_test_at_cmd_send(const char *atcmd) {
  char cmd[kShellCmdSize] = {};
  append_bounded(cmd, "echo \"");
  append_bounded(cmd, atcmd);
  append_bounded(cmd, "\r\" > ");
  append_bounded(cmd, rpk_at_device_path());
  printf("at shell cmd: %s\n", cmd);
  fflush(stdout);  // the shell shares our stdout
  const int ret_sys = system(cmd);
  printf("echo, ret_sys: %d\n", ret_sys);
  puts(ret_sys != 0 ? "Fail to send at shell cmd" : "Success to send at shell cmd");
}

int32_t velmar_test_at_cmd_do(int argc, char **argv) {
  if (argc != 3) {
    puts("\nnote: The number of inputs should be 2, Pls refer to the following cmd:");
    return reject();
  }
  if (!velmar_category_matches(argv, VELMAR_CAT_AT)) return reject();
  if (strlen(argv[2]) > VELMAR_AT_CMD_MAX_LEN) {
    printf("\nnote: the second parameters length should <= %d, Pls refer to the following cmd:\n",
           VELMAR_AT_CMD_MAX_LEN);
    return reject();
  }
  // Only the first blank-delimited word is kept ("\r" in the format matches
  // blanks only); the length check above keeps it within the buffer.
  char at[kAtBufSize] = {};
  const int scanned = sscanf(argv[2], "%104s\r", at);
  at[VELMAR_AT_CMD_MAX_LEN] = '\0';
  printf("At cmd you input: sscanf(%d), len (%d), %s\n", scanned, static_cast<int>(strlen(at)), at);

  puts("Will create a thread to receive data from serial");
  sem_init(&g_at_receiver_ready, 0, 0);
  pthread_t receiver;
  const int created = pthread_create(&receiver, nullptr, velmar_test_at_cmd_receive, nullptr);
  if (created != 0) {
    printf("Fail to create a thread");
    sem_destroy(&g_at_receiver_ready);
    return reject();
  }
  sem_wait(&g_at_receiver_ready);
  velmar_test_at_cmd_send(at);
  while (g_at_cmd_done != 1) sleep(1);
  g_at_cmd_done = 0;
  pthread_join(receiver, nullptr);
  sem_destroy(&g_at_receiver_ready);
  return 0;
}
