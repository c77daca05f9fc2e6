/* Option 8: one AT command written to the modem's AT serial channel
 * through the shell (echo with a redirection), with a receiver thread that
 * reports that the tool does not open the channel itself.  The tool reads
 * no answer. */
#ifndef TOLVEK_TEST_AT_CMD_H
#define TOLVEK_TEST_AT_CMD_H

/* The modem's AT serial channel. */
#define TOLVEK_AT_CHANNEL_DEVICE "/dev/smd8"
/* Longest AT command text the group accepts. */
#define TOLVEK_AT_CMD_MAX_LEN 100
/* Command text buffer and shell command buffer, terminator included. */
#define TOLVEK_AT_CMD_BUF_LEN (TOLVEK_AT_CMD_MAX_LEN + 1)
#define TOLVEK_AT_SHELL_CMD_BUF_LEN 501

/* Builds `echo "<command>\r" > <device>`, reports and runs it with
 * system(); returns the shell's status. */
int tolvek_test_at_cmd_send(const char *command);

/* The receiver thread: reports that the channel is not open and sets the
 * done flag. */
void *tolvek_test_at_cmd_receive(void *arg);

#endif
