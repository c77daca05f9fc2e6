#include "tolvek_test_at_cmd.h"

#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <atomic>

#include "platform_at_channel.h"
#include "tolvek_group_entry.h"
#include "tolvek_help.h"
#include "tolvek_test_groups.h"

/* Option 8: rlk 8 <atcmd_cxt>.  Only the first whitespace-free word of the
 * argument is sent, followed by a carriage return (and the newline echo
 * adds). */

/* Words of the command line: rlk 8 <atcmd_cxt>. */
static const int k_at_cmd_words = 3;
/* Seconds between two looks at the done flag. */
static const unsigned int k_at_done_poll_s = 1;
/* The carriage return that ends an AT command. */
static const char k_at_cmd_end = '\r';

static const char k_note_inputs[] = "\nnote: The number of inputs should be 2, Pls refer to the following cmd:";
static const char k_note_first_param[] =
    "\nnote: the first parameters should be %d, Pls refer to the following cmd:\n";
static const char k_note_length[] =
    "\nnote: the second parameters length should <= %d, Pls refer to the following cmd:\n";

/* The serial channel the receiver would read; the tool never opens it. */
static const int g_at_serial_fd = 0;

/* Set by the receiver thread, cleared by the group entry before it
 * returns.  Atomic because two threads use it. */
static std::atomic<unsigned char> g_at_cmd_done{0};

/* Appends `piece` to the string in `buf` (capacity `cap`), cutting it at
 * the capacity; the result stays terminated. */
static void at_append_bounded(char *buf, size_t cap, const char *piece)
{
    size_t used = strnlen(buf, cap - 1);
    size_t room = cap - 1 - used;
    size_t n = strnlen(piece, room);
    memcpy(buf + used, piece, n);
    buf[used + n] = '\0';
}

int tolvek_test_at_cmd_send(const char *command)
{
    static const char k_head[] = "echo \"";
    static const char k_tail[] = {k_at_cmd_end, '"', ' ', '>', ' ', '\0'};
    char shell_cmd[TOLVEK_AT_SHELL_CMD_BUF_LEN];
    memset(shell_cmd, 0, sizeof(shell_cmd));
    at_append_bounded(shell_cmd, sizeof(shell_cmd), k_head);
    at_append_bounded(shell_cmd, sizeof(shell_cmd), command);
    at_append_bounded(shell_cmd, sizeof(shell_cmd), k_tail);
    at_append_bounded(shell_cmd, sizeof(shell_cmd), platform_at_channel_device(TOLVEK_AT_CHANNEL_DEVICE));
    shell_cmd[sizeof(shell_cmd) - 1] = '\0';

    printf("at shell cmd: %s\n", shell_cmd);
    fflush(stdout); /* the shell's own messages follow ours */
    int ret_sys = system(shell_cmd);
    printf("echo, ret_sys: %d\n", ret_sys);
    puts(ret_sys == 0 ? "Success to send at shell cmd" : "Fail to send at shell cmd");
    return ret_sys;
}

void *tolvek_test_at_cmd_receive(void *arg)
{
    (void)arg;
    puts("The thread to receive data from serial is started");
    printf("The at channel is not opened, g_at_serial_fd %d\n", g_at_serial_fd);
    g_at_cmd_done.store(1);
    return NULL;
}

/* Steps 1 to 3: the argument checks; prints the note on failure. */
static bool at_cmd_arguments_ok(int argc, char **argv)
{
    if (argc != k_at_cmd_words) {
        puts(k_note_inputs);
        return false;
    }
    if (atoi(argv[1]) != TOLVEK_OPTION_AT_CMD) {
        printf(k_note_first_param, TOLVEK_OPTION_AT_CMD);
        return false;
    }
    if (strlen(argv[2]) > TOLVEK_AT_CMD_MAX_LEN) {
        printf(k_note_length, TOLVEK_AT_CMD_MAX_LEN);
        return false;
    }
    return true;
}

int tolvek_test_at_cmd_do(int argc, char **argv)
{
    if (at_cmd_arguments_ok(argc, argv)) {
        char command[TOLVEK_AT_CMD_BUF_LEN];
        memset(command, 0, sizeof(command));
        int len = static_cast<int>(strlen(argv[2]));
        /* The length check above keeps the word inside the buffer; the
         * width says so to the compiler as well. */
        static_assert(TOLVEK_AT_CMD_MAX_LEN == 100, "the scan width below is the length limit");
        int scanned = sscanf(argv[2], "%100s\r", command);
        command[sizeof(command) - 1] = '\0';
        printf("At cmd you input: sscanf(%d), len (%d), %s\n", scanned, len, command);

        puts("Will create a thread to receive data from serial");
        pthread_t receiver;
        if (pthread_create(&receiver, NULL, tolvek_test_at_cmd_receive, NULL) == 0) {
            /* The receiver stays joinable and is never joined: it ends on
             * its own right after setting the flag. */
            tolvek_test_at_cmd_send(command);
            while (!g_at_cmd_done.load()) {
                sleep(k_at_done_poll_s);
            }
            g_at_cmd_done.store(0);
            return 0;
        }
        printf("Fail to create a thread");
    }
    g_at_cmd_done.store(0);
    show_help(TOLVEK_OPTION_AT_CMD);
    return TOLVEK_GROUP_ENTRY_REJECTED;
}

#if defined(__SANITIZE_THREAD__)
/* The receiver is never joined by design; ThreadSanitizer would report it
 * as a leaked thread at exit.  A thread leak is matched by the stack that
 * created the thread: only the receiver is created here. */
extern "C" const char *__tsan_default_suppressions(void)
{
    return "thread:tolvek_test_at_cmd_do\n";
}
#endif
