/* The eSIM switch of the common group: `rlk 5 10 esim_on debug_on`. */
#ifndef TOLVEK_CMN_ESIM_H
#define TOLVEK_CMN_ESIM_H

/* esim_on 1 switches slot 2 to the eSIM, 2 back to the physical SIM;
 * debug_on 0 silences the console.  Gets the whole argument vector; 0 is
 * success, anything else an error code. */
int tolvek_cmn_esim_test(int argc, char **argv);

#endif
