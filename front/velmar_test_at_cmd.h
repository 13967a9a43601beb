// Category 8: AT command passthrough to the modem's AT device.
#pragma once

#include <cstdint>

// Builds "echo \"<atcmd>\r\" > <device>" and runs it through the shell.
void velmar_test_at_cmd_send(const char *atcmd);

// Receive thread body: reports the channel as not opened and signals done.
void *velmar_test_at_cmd_receive(void *arg);
