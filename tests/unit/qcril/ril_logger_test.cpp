/* The RIL logger and the qcril allocation pair. */
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/prctl.h>
#include <unistd.h>

#include "Logger.h"
#include "golden.h"
#include "qcril_memory_management.h"

using namespace qti::ril::logger;

#if defined(__SANITIZE_ADDRESS__)
/* A refused allocation must come back as null, as it does without the
 * sanitizer, so that the failure path can be tested. */
extern "C" const char *__asan_default_options() { return "allocator_may_return_null=1"; }
#endif
#if defined(__SANITIZE_THREAD__)
extern "C" const char *__tsan_default_options() { return "allocator_may_return_null=1"; }
#endif

namespace {

class NamedFactory : public LoggerFactory {
public:
    explicit NamedFactory(const char *name) : LoggerFactory(name) {}
    std::shared_ptr<LoggerImpl> getLoggerImpl() override { return nullptr; }
};

TEST(RilLogger, AllocationIsZeroFilledAndAFailedOnePrintsOneHighLine)
{
    prctl(PR_SET_NAME, "alloc-test", 0, 0, 0);
    volatile size_t huge = SIZE_MAX - 4096;
    testing::internal::CaptureStdout();
    unsigned char *p = static_cast<unsigned char *>(qcril_malloc_adv(4096, "caller.cpp", 1));
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(std::vector<unsigned char>(p, p + 4096), std::vector<unsigned char>(4096, 0));
    qcril_free_adv(p, "caller.cpp", 2);
    qcril_free_adv(nullptr, "caller.cpp", 3);
    EXPECT_EQ(qcril_malloc_adv(huge, "caller.cpp", 7), nullptr);
    fflush(stdout);
    char expected[256];
    snprintf(expected, sizeof(expected),
             "[HIGH      :util]: [qcril_memory_management.cpp: 184] [alloc-test(%ld,%ld)] qcril_malloc_adv: "
             "Fail to allocate memory\n",
             long(getpid()), long(my_gettid()));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), expected);
}

TEST(RilLogger, FirstFactoryOfANameStaysRegistered)
{
    auto &reg = LoggerFactory::loggerFactories();
    ASSERT_EQ(reg.count("stdout"), 1u);
    LoggerFactory *first = reg["stdout"];
    {
        NamedFactory second("stdout");
        EXPECT_EQ(reg["stdout"], first);
    }
    EXPECT_EQ(reg["stdout"], first) << "the later factory's end must not unregister the first";
    NamedFactory other("file");
    EXPECT_EQ(reg["file"], &other);
}

TEST(RilLogger, StdoutLoggerLinesAndLevelNames)
{
    StdoutLoggerFactory factory;
    std::shared_ptr<LoggerImpl> impl = factory.getLoggerImpl();
    ASSERT_TRUE(impl);
    EXPECT_EQ(impl, factory.getLoggerImpl()) << "one shared implementation";
    ASSERT_EQ(impl->params().size(), 1u);
    EXPECT_EQ(impl->name() + "; " + impl->params()[0].name + ": " + impl->params()[0].description,
              "stdout; level: Set the maximum level to log at.");
    /* Every level's name; long messages are cut at 1023 characters. */
    testing::internal::CaptureStdout();
    for (unsigned lv = 0; lv < k_log_level_count; lv++) impl->vlog(LogLevel(lv), "t", "m");
    Logger::instance().log(INFO, "tag", "%s %d", "x", 5);
    Logger::instance().log(DEBUG, "t", "%s", std::string(3000, 'a').c_str());
    expect_golden(testing::internal::GetCapturedStdout(), __FILE__, "stdout_logger.golden");
}

TEST(RilLoggerDeathTest, LevelEightAborts)
{
    StdoutLoggerFactory factory;
    std::shared_ptr<LoggerImpl> impl = factory.getLoggerImpl();
    EXPECT_DEATH(impl->vlog(LogLevel(8), "t", "m"), "");
}

}  // namespace
