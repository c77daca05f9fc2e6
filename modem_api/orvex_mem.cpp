#include "orvex_mem.h"

#include <pthread.h>
#include <stdlib.h>
#include <string.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include "cutils/properties.h"
#include "orvex_log.h"

namespace {

constexpr char ORVEX_MEM_TRACE_ON[] = "true";
constexpr int TM_YEAR_BASE = 1900;
constexpr int TM_MONTH_BASE = 1;

/* Process-wide trace state, zero at start. */
uint8_t g_orvex_mem_inited = 0;
uint8_t g_orvex_mem_trace_on = 0;
pthread_mutex_t g_orvex_mem_mutex;
orvex_mem_trace_node *g_orvex_mem_head = nullptr;
orvex_mem_trace_node *g_orvex_mem_tail = nullptr;
uint32_t g_orvex_mem_count = 0;
orvex_property_get_fn g_orvex_property_get = property_get;

int32_t checked_add(int32_t a, int32_t b)
{
    int32_t sum = 0;
    if (__builtin_add_overflow(a, b, &sum)) abort();
    return sum;
}

/* Reads the trace property once: only exactly "true" turns tracing on. */
void orvex_mem_init(void)
{
    char value[PROPERTY_VALUE_MAX] = {0};
    int len = g_orvex_property_get(ORVEX_MEM_TRACE_PROP, value, nullptr);
    if (len <= 0) {
        ORVEX_LOGD("ORVEX_MEM_TRACE_PROP not exist");
        g_orvex_mem_trace_on = 0;
    } else if (strcmp(value, ORVEX_MEM_TRACE_ON) == 0) {
        pthread_mutex_init(&g_orvex_mem_mutex, nullptr);
        g_orvex_mem_trace_on = 1;
        g_orvex_mem_head = nullptr;
        g_orvex_mem_tail = nullptr;
        g_orvex_mem_count = 0;
    } else {
        g_orvex_mem_trace_on = 0;
    }
    g_orvex_mem_inited = 1;
}

/* Fills who, how much and when into a fresh node. */
void trace_node_fill(orvex_mem_trace_node *node, void *ptr, size_t size, const char *caller)
{
    memset(node, 0, sizeof(*node));
    node->ptr = ptr;
    node->size = size;
    struct timeval now;
    gettimeofday(&now, nullptr);
    node->pid = getpid();
    node->caller = caller;
    time_t secs = now.tv_sec;
    struct tm local;
    if (localtime_r(&secs, &local)) {
        node->year = checked_add(local.tm_year, TM_YEAR_BASE);
        node->month = checked_add(local.tm_mon, TM_MONTH_BASE);
        node->day = local.tm_mday;
        node->hour = local.tm_hour;
        node->minute = local.tm_min;
        node->second = local.tm_sec;
    }
}

void trace_append(void *ptr, size_t size, const char *caller)
{
    auto *node = static_cast<orvex_mem_trace_node *>(malloc(sizeof(orvex_mem_trace_node)));
    if (!node) return; /* an untraced block rather than a crash */
    trace_node_fill(node, ptr, size, caller);
    pthread_mutex_lock(&g_orvex_mem_mutex);
    if (!g_orvex_mem_tail) {
        g_orvex_mem_head = node;
    } else {
        g_orvex_mem_tail->next = node;
        node->prev = g_orvex_mem_tail;
    }
    g_orvex_mem_tail = node;
    g_orvex_mem_count = orvex_mem_count_inc(g_orvex_mem_count);
    pthread_mutex_unlock(&g_orvex_mem_mutex);
}

/* `key` is the address of a block already released. */
void trace_remove(uintptr_t key)
{
    pthread_mutex_lock(&g_orvex_mem_mutex);
    orvex_mem_trace_node *node = g_orvex_mem_head;
    while (node && reinterpret_cast<uintptr_t>(node->ptr) != key) node = node->next;
    if (node) {
        if (node->prev) {
            node->prev->next = node->next;
        } else {
            g_orvex_mem_head = node->next;
        }
        if (node->next) {
            node->next->prev = node->prev;
        } else {
            g_orvex_mem_tail = node->prev;
        }
        g_orvex_mem_count = orvex_mem_count_dec(g_orvex_mem_count);
        free(node);
    }
    pthread_mutex_unlock(&g_orvex_mem_mutex);
}

}  // namespace

uint32_t orvex_mem_count_inc(uint32_t count)
{
    uint32_t next = 0;
    if (__builtin_add_overflow(count, 1u, &next)) abort();
    return next;
}

uint32_t orvex_mem_count_dec(uint32_t count)
{
    uint32_t next = 0;
    if (__builtin_sub_overflow(count, 1u, &next)) abort();
    return next;
}

void *orvex_malloc_adv(size_t size, const char *caller)
{
    if (!g_orvex_mem_inited) orvex_mem_init();
    void *ptr = malloc(size);
    if (!ptr) {
        ORVEX_LOGE("Fail to allocate memory");
        return nullptr;
    }
    memset(ptr, 0, size);
    if (g_orvex_mem_trace_on) trace_append(ptr, size, caller);
    return ptr;
}

/* The block is released first; afterwards its address is only compared
 * with the nodes' keys, never dereferenced, which the compiler's
 * use-after-free analysis cannot tell apart from a use. */
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpragmas"
#pragma GCC diagnostic ignored "-Wunknown-warning-option"
#pragma GCC diagnostic ignored "-Wuse-after-free"
void orvex_free_adv(void *ptr)
{
    if (!ptr) return;
    uintptr_t key = reinterpret_cast<uintptr_t>(ptr);
    free(ptr);
    if (!g_orvex_mem_trace_on) return;
    trace_remove(key);
}
#pragma GCC diagnostic pop

bool orvex_mem_trace_enabled(void)
{
    return g_orvex_mem_trace_on != 0;
}

uint32_t orvex_mem_trace_count(void)
{
    return g_orvex_mem_count;
}

const orvex_mem_trace_node *orvex_mem_trace_head(void)
{
    return g_orvex_mem_head;
}

const orvex_mem_trace_node *orvex_mem_trace_tail(void)
{
    return g_orvex_mem_tail;
}

void orvex_mem_set_property_reader(orvex_property_get_fn reader)
{
    g_orvex_property_get = reader ? reader : property_get;
}
