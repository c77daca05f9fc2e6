#include "tolvek_group_entry.h"

#include <stdio.h>
#include <stdlib.h>

#include "tolvek_help.h"
#include "tolvek_log.h"

/* Words up to and including the option number; a group needs at least one
 * more. */
static const int k_words_through_option = 2;

static const char k_note_first_param[] =
    "\nnote: the first parameters should be %d, Pls refer to the following cmd:\n";
static const char k_note_too_few[] = "\nnote: Too few parameters, Pls refer to the following cmd:";
static const char k_note_second_param[] =
    "\nnote: the second parameters is invalid, Pls refer to the following cmd:";
static const char k_note_error[] = "\nnote: Error happen! error_code(%d)\n";

/* Checks 1 and 2 of every group; prints the note and help on failure. */
static bool group_arguments_ok(int option, int argc, char **argv)
{
    if (argc < k_words_through_option || atoi(argv[1]) != option) {
        printf(k_note_first_param, option);
        show_help(option);
        return false;
    }
    if (argc <= k_words_through_option) {
        puts(k_note_too_few);
        show_help(option);
        return false;
    }
    return true;
}

static tolvek_subcmd_handler find_subcmd(const tolvek_subcmd_entry *table, size_t table_len,
                                         int subcmd)
{
    for (size_t i = 0; i < table_len; ++i) {
        if (table[i].subcmd == subcmd) {
            return table[i].handler;
        }
    }
    return NULL;
}

static int run_handler(int option, int argc, char **argv, tolvek_subcmd_handler handler)
{
    int result = handler(argc, argv);
    if (result != 0) {
        /* The note is a console line, so a quiet console (the eSIM test
         * with debug_on 0) leaves it out; the help is printed either way. */
        if (!g_tolvek_console_quiet) {
            printf(k_note_error, result);
        }
        show_help(option);
    }
    return result;
}

int tolvek_group_entry_run(int option, int argc, char **argv, const tolvek_subcmd_entry *table,
                           size_t table_len)
{
    if (!group_arguments_ok(option, argc, argv)) {
        return TOLVEK_GROUP_ENTRY_REJECTED;
    }
    tolvek_subcmd_handler handler = find_subcmd(table, table_len, atoi(argv[2]));
    if (handler == NULL) {
        puts(k_note_second_param);
        show_help(option);
        return TOLVEK_GROUP_ENTRY_REJECTED;
    }
    return run_handler(option, argc, argv, handler);
}

int tolvek_group_entry_run_direct(int option, int argc, char **argv, tolvek_subcmd_handler handler)
{
    if (!group_arguments_ok(option, argc, argv)) {
        return TOLVEK_GROUP_ENTRY_REJECTED;
    }
    if (handler == NULL) {
        return 0;
    }
    return run_handler(option, argc, argv, handler);
}
