/* Allocation pair of the RIL utility layer: zero-filled blocks, a failed
 * allocation logged through the RIL logger, no tracking. */
#ifndef QCRIL_MEMORY_MANAGEMENT_H
#define QCRIL_MEMORY_MANAGEMENT_H

#include <stddef.h>

/* A zero-filled block of `size` bytes, or null after logging the failure.
 * `file` and `line` name the caller. */
void *qcril_malloc_adv(size_t size, const char *file, int line);
/* Frees `ptr`; null is ignored. */
void qcril_free_adv(void *ptr, const char *file, int line);

#define qcril_malloc(size) qcril_malloc_adv((size), __func__, __LINE__)
#define qcril_free(ptr) qcril_free_adv((ptr), __func__, __LINE__)

#endif
