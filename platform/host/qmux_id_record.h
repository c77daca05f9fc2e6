/* The client ids this user's processes hold on one QMUX device, with the
 * process that holds each, kept in a file of the user's private runtime
 * directory.  A process that ends without releasing its ids (SIGKILL, a
 * crash, a second signal during the release) leaves them there, and the
 * next process that opens the device releases the ids whose owner is gone.
 *
 * The file is named after the device node (its device number and the time
 * the node was made, so a re-plugged modem or a new pseudo-terminal starts
 * afresh) and holds one line per id: "pid start-time service cid".  Each
 * change rewrites it under a lock file and renames it into place; an empty
 * record is removed.  An id the modem hands out supersedes any entry of
 * another process for the same id. */
#ifndef RLK_HOST_QMUX_ID_RECORD_H
#define RLK_HOST_QMUX_ID_RECORD_H

#include <stdint.h>

#include <vector>

namespace rlk_host {

struct qmux_owned_id {
    uint8_t service;
    uint8_t cid;
};

/* Chooses the record of the device open at `fd`; false when there is no
 * private directory to keep it in (nothing is recorded then). */
bool qmux_record_open(int fd);

/* Takes the ids whose owners have ended out of the record. */
std::vector<qmux_owned_id> qmux_record_take_orphans();

/* This process holds `id` now, or no longer. */
void qmux_record_add(qmux_owned_id id);
void qmux_record_remove(qmux_owned_id id);

/* Every id of this process leaves the record (at its exit, after their
 * releases were written). */
void qmux_record_remove_mine();

}  // namespace rlk_host

#endif
