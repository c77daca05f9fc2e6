/* The argument checks every command group makes before it runs a
 * sub-command, and the error note after a failed one, so that all groups
 * fail in the same words. */
#ifndef TOLVEK_GROUP_ENTRY_H
#define TOLVEK_GROUP_ENTRY_H

#include <stddef.h>

/* A sub-command handler gets the whole argument vector, as main got it, and
 * checks its own further arguments.  0 is success, anything else an error
 * code. */
typedef int (*tolvek_subcmd_handler)(int argc, char **argv);

/* One row of a group's sub-command table. */
struct tolvek_subcmd_entry {
    int subcmd;
    tolvek_subcmd_handler handler;
};

/* Result of a group entry that refused its arguments (note and help
 * printed, nothing run). */
#define TOLVEK_GROUP_ENTRY_REJECTED (-1)

/* Group entry of a group with sub-command numbers:
 *   1. argv[1] must be `option`, else "the first parameters should be" note;
 *   2. more than two words are needed, else "Too few parameters" note;
 *   3. argv[2] must name a row of `table`, else "the second parameters is
 *      invalid" note;
 *   4. runs that row's handler; a non-zero result prints the "Error happen"
 *      note with it (unless the console is quiet) and the help.
 * Every note is followed by the group's help block.  Returns the handler's
 * result, or TOLVEK_GROUP_ENTRY_REJECTED. */
int tolvek_group_entry_run(int option, int argc, char **argv, const tolvek_subcmd_entry *table,
                           size_t table_len);

/* Group entry of a group without sub-command numbers: steps 1, 2 and 4
 * above with `handler` for the whole group.  A null handler runs nothing
 * and returns 0 once the checks pass. */
int tolvek_group_entry_run_direct(int option, int argc, char **argv, tolvek_subcmd_handler handler);

#endif
