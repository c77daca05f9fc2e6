/* Allocation pair of the RIL utility layer. */
#include "qcril_memory_management.h"

#include <libgen.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "Logger.h"

namespace {

/* Where the failure message says it was raised: this file, at the line of
 * the allocation layer's failure report. */
constexpr int k_alloc_failure_line = 184;

void log_alloc_failure()
{
    char file[] = __FILE__;
    qti::ril::logger::Logger::instance().log(qti::ril::logger::HIGH, "util",
                                             "[%s: %d] [%s(%ld,%ld)] %s: Fail to allocate memory", basename(file),
                                             k_alloc_failure_line, qcril_get_thread_name(), long(getpid()),
                                             long(my_gettid()), "qcril_malloc_adv");
}

}  // namespace

void *qcril_malloc_adv(size_t size, const char *, int)
{
    void *p = malloc(size);
    if (!p) {
        log_alloc_failure();
        return nullptr;
    }
    memset(p, 0, size);
    return p;
}

void qcril_free_adv(void *ptr, const char *, int)
{
    if (ptr) free(ptr);
}
