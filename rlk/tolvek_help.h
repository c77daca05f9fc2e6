/* Usage text of the tool. */
#ifndef TOLVEK_HELP_H
#define TOLVEK_HELP_H

/* Option value that selects every help block. */
#define TOLVEK_HELP_ALL 0

/* Prints the head line, the help block of `option` (every block, in
 * ascending order, for TOLVEK_HELP_ALL; none for an option without a
 * block) and the foot line. */
void show_help(int option);

#endif
