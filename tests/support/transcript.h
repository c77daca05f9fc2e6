/* Transcript tests: a text file of program runs against a private
 * rlk-modemd and the exact output each run must print.
 *
 *   # a comment (any line whose first character is '#')
 *   simulator: off            no simulator (runs see a socket nobody serves)
 *   simulator: --opt value    extra simulator options
 *   requires: captures        skipped when the sample captures are absent
 *
 *   ignore~ *_unsol_ind_cb*   output lines left out of every comparison
 *                             (lines of other threads that land anywhere)
 *
 *   > sar state 7             control request that must answer "ok"; "|" and
 *   | ...                     "~" lines after it give the answer's data lines
 *                             (what follows "ok " or "ok" and a newline; an
 *                             error answer is compared whole: "| error -2")
 *   ! restart                 restart the simulator on the same state
 *   ! wait-up 2               wait until the modem is back from its 2nd
 *                             restart with every service up (5 s)
 *   ! file dumps/a.txt        the lines after it give this state file's lines
 *   $ [NAME=value ...] rlk 5 5   run rlk (or rlk-mbn, rlk-replay, ext_probe,
 *                             platform_probe, mbn_retry_probe); words in '...'
 *                             keep their spaces; $DIR, $CAPTURES and $HERE
 *                             stand for the simulator's folder, the sample
 *                             captures and the transcript's own folder
 *   | exact line              the run's standard output, line by line ("|"
 *   ~ line with * in it       alone is an empty line; in "~" lines '*' stands
 *   ...                       for any characters; "..." for any lines)
 *   (no newline at end)       the output's last line has no newline
 *   2| 2~ 2...                standard error the same way (none given: empty)
 *   ? 3                       exit status (default 0; "? signal 9" for a signal)
 *   log| log~ logcat| logcat~ messages the run's system log (Android log)
 *                             holds in this order, other messages between
 *
 * RLK_GOLDEN_UPDATE=1 rewrites the output of every run whose output, error
 * or status differs with what it printed (review the diff). */
#ifndef RLK_TEST_TRANSCRIPT_H
#define RLK_TEST_TRANSCRIPT_H

#include <string>
#include <vector>

/* Every *.t file under `dir`, sorted, as paths. */
std::vector<std::string> find_transcripts(const std::string &dir);

/* Runs the transcript at `path`, reporting each difference as a test
 * failure that names the transcript's line. */
void run_transcript(const std::string &path);

#endif
