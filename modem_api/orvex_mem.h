/* Zero-filling allocator of the modem-statistics code with an optional
 * process-wide trace list of live blocks.
 *
 * The first orvex_malloc_adv of the process reads "persist.orvex.mem_trace":
 * tracing is on only when it reads exactly "true", and the decision stays
 * for the life of the process.  The first allocation must happen before a
 * second thread allocates.  When tracing is on, every live block has a node
 * (who asked, how much, when) in a list protected by one mutex; nothing in
 * the program reads the list back. */
#ifndef ORVEX_MEM_H
#define ORVEX_MEM_H

#include <stddef.h>
#include <stdint.h>

#define ORVEX_MEM_TRACE_PROP "persist.orvex.mem_trace"

/* One live traced block. */
typedef struct orvex_mem_trace_node {
    struct orvex_mem_trace_node *prev; /* null at the head */
    struct orvex_mem_trace_node *next; /* null at the tail */
    void *ptr;                         /* the caller's block: the key on release */
    uint64_t size;                     /* requested bytes */
    int32_t pid;                       /* getpid() at allocation */
    const char *caller;                /* caller's label, not copied */
    int32_t year;                      /* local time of allocation */
    int32_t month;                     /* 1..12 */
    int32_t day;
    int32_t hour;
    int32_t minute;
    int32_t second;
} orvex_mem_trace_node;

static_assert(sizeof(void *) != 8 || sizeof(orvex_mem_trace_node) == 72, "trace node is 72 bytes on 64-bit");

/* A zero-filled block of `size` bytes, or null (logged). */
void *orvex_malloc_adv(size_t size, const char *caller);
/* Releases a block of orvex_malloc_adv; null is ignored, an unknown pointer
 * leaves the list unchanged. */
void orvex_free_adv(void *ptr);

/* Inspection of the trace list (for tests and debugging). */
bool orvex_mem_trace_enabled(void);
uint32_t orvex_mem_trace_count(void);
const orvex_mem_trace_node *orvex_mem_trace_head(void);
const orvex_mem_trace_node *orvex_mem_trace_tail(void);

/* The property reader used by the first allocation; property_get unless
 * replaced before it. */
typedef int (*orvex_property_get_fn)(const char *key, char *value, const char *default_value);
void orvex_mem_set_property_reader(orvex_property_get_fn reader);

/* Count steps of the trace list: an overflow past the 32-bit range, either
 * way, ends the process. */
uint32_t orvex_mem_count_inc(uint32_t count);
uint32_t orvex_mem_count_dec(uint32_t count);

#endif
