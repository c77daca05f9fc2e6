/* The RIL logger: factory registry, standard-output logger and the logger
 * instance made at program start. */
#include "Logger.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <mutex>
#include <new>

namespace qti {
namespace ril {
namespace logger {
namespace {

const char *const k_level_names[k_log_level_count] = {
    "ESSENTIAL ", "VERBOSE   ", "DEBUG     ", "INFO      ", "WARN      ", "HIGH      ", "FATAL     ", "MAX       ",
};

/* Size of the buffer a message is formatted into, terminator included. */
constexpr size_t k_log_message_max = 1024;

}  // namespace

const char *log_level_name(LogLevel level)
{
    if (level >= k_log_level_count) abort();
    return k_level_names[level];
}

LoggerImpl::LoggerImpl(const std::string &name) : name_(name)
{
    registerParam("level", "Set the maximum level to log at.");
}

LoggerImpl::~LoggerImpl() = default;

void LoggerImpl::registerParam(const std::string &name, const std::string &description)
{
    params_.push_back({name, description});
}

StdoutLogger::StdoutLogger() : LoggerImpl("stdout") {}

void StdoutLogger::vlog(LogLevel level, const char *tag, const char *message)
{
    printf("[%s:%s]: %s\n", log_level_name(level), tag, message);
}

LoggerFactory::LoggerFactory(const std::string &name) : name_(name)
{
    loggerFactories().emplace(name, this); /* keeps an existing entry */
}

LoggerFactory::~LoggerFactory()
{
    auto &reg = loggerFactories();
    auto it = reg.find(name_);
    if (it != reg.end() && it->second == this) reg.erase(it);
}

std::map<std::string, LoggerFactory *> &LoggerFactory::loggerFactories()
{
    static std::map<std::string, LoggerFactory *> registry;
    return registry;
}

StdoutLoggerFactory::StdoutLoggerFactory() : LoggerFactory("stdout") {}

std::shared_ptr<LoggerImpl> StdoutLoggerFactory::getLoggerImpl()
{
    static std::once_flag once;
    static std::shared_ptr<LoggerImpl> impl;
    std::call_once(once, [] { impl = std::make_shared<StdoutLogger>(); });
    return impl;
}

Logger::Logger() { init(); }

void Logger::init()
{
    factory_.reset(new (std::nothrow) StdoutLoggerFactory());
    if (!factory_) {
        fprintf(stderr, "QCRIL Logger Initialization failure");
        return;
    }
    impl_ = factory_->getLoggerImpl();
}

void Logger::log(LogLevel level, const char *tag, const char *fmt, ...)
{
    char message[k_log_message_max];
    va_list ap;
    va_start(ap, fmt);
    vsnprintf(message, sizeof(message), fmt, ap);
    va_end(ap);
    if (impl_) impl_->vlog(level, tag, message);
}

Logger &Logger::instance()
{
    static Logger logger;
    return logger;
}

namespace {
/* Makes the logger before main runs. */
const Logger &g_logger_at_start = Logger::instance();
}  // namespace

}  // namespace logger
}  // namespace ril
}  // namespace qti

pid_t my_gettid()
{
    return pid_t(syscall(SYS_gettid));
}

const char *qcril_get_thread_name()
{
    static thread_local char name[16];
    prctl(PR_GET_NAME, name, 0, 0, 0);
    return name;
}
