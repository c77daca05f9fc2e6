/* The RIL utility layer's pluggable logger: a registry of named factories,
 * each making one logger implementation.  This program registers the
 * standard-output logger, so RIL log lines ("[<level>:<tag>]: <message>")
 * reach the console. */
#ifndef QCRIL_LOGGER_H
#define QCRIL_LOGGER_H

#include <sys/types.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace qti {
namespace ril {
namespace logger {

/* Levels, lowest first; each has a display name padded to 10 characters. */
enum LogLevel : unsigned {
    ESSENTIAL = 0,
    VERBOSE = 1,
    DEBUG = 2,
    INFO = 3,
    WARN = 4,
    HIGH = 5,
    FATAL = 6,
    MAX = 7,
};
constexpr unsigned k_log_level_count = 8;

/* The display name of `level` ("HIGH      "); a level of 8 or more aborts. */
const char *log_level_name(LogLevel level);

/* A parameter a logger implementation accepts, with its description. */
struct LoggerParam {
    std::string name;
    std::string description;
};

class LoggerImpl : public std::enable_shared_from_this<LoggerImpl> {
public:
    explicit LoggerImpl(const std::string &name);
    virtual ~LoggerImpl();
    virtual void vlog(LogLevel level, const char *tag, const char *message) = 0;

    const std::string &name() const { return name_; }
    const std::vector<LoggerParam> &params() const { return params_; }

protected:
    void registerParam(const std::string &name, const std::string &description);

private:
    std::string name_;
    std::vector<LoggerParam> params_;
};

/* Writes "[<level name>:<tag>]: <message>\n" to standard output in one
 * printf, so that lines of different threads do not mix. */
class StdoutLogger : public LoggerImpl {
public:
    StdoutLogger();
    void vlog(LogLevel level, const char *tag, const char *message) override;
};

class LoggerFactory {
public:
    /* Registers this factory under `name` unless a factory of that name is
     * registered already (the first registration wins). */
    explicit LoggerFactory(const std::string &name);
    virtual ~LoggerFactory();
    virtual std::shared_ptr<LoggerImpl> getLoggerImpl() = 0;

    const std::string &name() const { return name_; }

    /* The process-wide registry, created on first use. */
    static std::map<std::string, LoggerFactory *> &loggerFactories();

private:
    std::string name_;
};

class StdoutLoggerFactory : public LoggerFactory {
public:
    StdoutLoggerFactory();
    /* One shared StdoutLogger, made on the first call and kept until exit. */
    std::shared_ptr<LoggerImpl> getLoggerImpl() override;
};

class Logger {
public:
    /* Runs init(). */
    Logger();
    /* Makes the standard-output logger the active implementation; without
     * a factory it says "QCRIL Logger Initialization failure" on standard
     * error and stays without one. */
    void init();
    /* Formats the message (at most 1023 characters) and hands it to the
     * active implementation; without one nothing is written. */
    void log(LogLevel level, const char *tag, const char *fmt, ...) __attribute__((format(printf, 4, 5)));

    /* The instance made at program start. */
    static Logger &instance();

private:
    std::shared_ptr<LoggerFactory> factory_;
    std::shared_ptr<LoggerImpl> impl_;
};

}  // namespace logger
}  // namespace ril
}  // namespace qti

/* The calling thread's kernel thread id. */
pid_t my_gettid();
/* The calling thread's name, in a per-thread 16-byte buffer. */
const char *qcril_get_thread_name();

#endif
