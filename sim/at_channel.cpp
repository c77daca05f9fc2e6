#include "at_channel.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include "daemon.h"

namespace modemd {
namespace {

constexpr size_t k_read_chunk = 512;
constexpr size_t k_pty_name_max = 128;

bool make_raw(int fd)
{
    struct termios tio;
    if (tcgetattr(fd, &tio) != 0) return false;
    cfmakeraw(&tio);
    return tcsetattr(fd, TCSANOW, &tio) == 0;
}

/* Points `link` at `target`, replacing what was there in one step. */
bool replace_link(const std::string &target, const std::string &link)
{
    std::string tmp = link + ".tmp." + std::to_string(getpid());
    unlink(tmp.c_str());
    if (symlink(target.c_str(), tmp.c_str()) != 0) return false;
    if (rename(tmp.c_str(), link.c_str()) != 0) {
        unlink(tmp.c_str());
        return false;
    }
    return true;
}

}  // namespace

std::string at_escape(const std::string &bytes)
{
    std::string out;
    for (unsigned char ch : bytes) {
        if (ch == '\r') {
            out += "\\r";
        } else if (ch == '\n') {
            out += "\\n";
        } else if (ch == '\\') {
            out += "\\\\";
        } else if (ch >= 0x20 && ch < 0x7F) {
            out += char(ch);
        } else {
            char hex[8];
            snprintf(hex, sizeof(hex), "\\x%02x", ch);
            out += hex;
        }
    }
    return out;
}

at_channel::~at_channel()
{
    if (master_ >= 0) {
        if (!link_.empty()) d_.loop().remove_fd(master_);
        close(master_);
    }
    if (slave_ >= 0) close(slave_);
    if (!link_.empty()) unlink(link_.c_str());
}

bool at_channel::open(std::string *error)
{
    master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    char name[k_pty_name_max] = {0};
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0 ||
        ptsname_r(master_, name, sizeof(name)) != 0) {
        *error = std::string("no pseudo-terminal: ") + strerror(errno);
        return false;
    }
    /* Held open so that the device stays usable between writers. */
    slave_ = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (slave_ < 0 || !make_raw(slave_) || fcntl(master_, F_SETFL, O_NONBLOCK) != 0) {
        *error = std::string("cannot set up ") + name + ": " + strerror(errno);
        return false;
    }
    std::string link = d_.store().dir() + "/" + k_at_channel_link;
    if (!replace_link(name, link)) {
        *error = "cannot link " + link + ": " + strerror(errno);
        return false;
    }
    link_ = link;
    d_.loop().add_fd(master_, [this](uint32_t) { on_readable(); });
    d_.log("AT channel %s at %s", link_.c_str(), name);
    return true;
}

void at_channel::on_readable()
{
    char buf[k_read_chunk];
    for (;;) {
        ssize_t n = read(master_, buf, sizeof(buf));
        if (n <= 0) return; /* EAGAIN: drained */
        on_bytes(buf, size_t(n));
    }
}

void at_channel::on_bytes(const char *data, size_t len)
{
    for (size_t i = 0; i < len; i++) {
        char ch = data[i];
        if (ch == '\n' && last_was_cr_) {
            /* The newline after a carriage return belongs to that line. */
            if (!received_.empty()) received_.back() += ch;
            last_was_cr_ = false;
        } else if (ch == '\r' || ch == '\n') {
            end_line(ch);
        } else {
            if (pending_.size() < k_at_line_max) {
                pending_ += ch;
            } else {
                pending_cut_ = true;
            }
            last_was_cr_ = false;
        }
    }
}

void at_channel::end_line(char terminator)
{
    received_.push_back(pending_ + terminator);
    while (received_.size() > k_at_record_max) received_.pop_front();
    if (modem_.echo) reply(pending_ + "\r");
    if (pending_cut_) {
        d_.log("AT channel: a command line of more than %zu bytes refused", k_at_line_max);
        reply("\r\nERROR\r\n");
    } else {
        reply(at_answer(pending_, &modem_, d_.store()));
    }
    pending_.clear();
    pending_cut_ = false;
    last_was_cr_ = terminator == '\r';
}

void at_channel::reply(const std::string &text)
{
    if (text.empty()) return;
    int unread = 0;
    if (ioctl(slave_, FIONREAD, &unread) == 0 && size_t(unread) + text.size() > size_t(k_at_unread_max)) {
        tcflush(slave_, TCIFLUSH); /* nobody reads the answers */
    }
    if (write(master_, text.data(), text.size()) != ssize_t(text.size())) {
        d_.log("AT channel: answer of %zu bytes not queued", text.size());
    }
}

std::string at_channel::control(const std::vector<std::string> &a)
{
    if (master_ < 0 || link_.empty()) return "error the AT channel is not available (see the log)";
    on_readable(); /* what writers sent before this request counts */
    if (a.size() == 2 && a[1] == "path") return "ok " + link_;
    if (a.size() == 2 && a[1] == "clear") {
        received_.clear();
        pending_.clear();
        pending_cut_ = false;
        last_was_cr_ = false;
        tcflush(slave_, TCIFLUSH);
        return "ok";
    }
    int64_t n = int64_t(received_.size());
    if (a.size() >= 2 && a[1] == "received" && (a.size() == 2 || (a.size() == 3 && parse_number(a[2], &n) && n >= 0))) {
        std::string out = "ok";
        size_t first = size_t(n) < received_.size() ? received_.size() - size_t(n) : 0;
        for (size_t i = first; i < received_.size(); i++) out += "\n" + at_escape(received_[i]);
        return out;
    }
    return "error usage: at path | at received [n] | at clear";
}

std::unique_ptr<at_channel> make_at_channel(daemon &d)
{
    auto channel = std::make_unique<at_channel>(d);
    std::string error;
    if (!channel->open(&error)) d.log("AT channel not available: %s", error.c_str());
    return channel;
}

}  // namespace modemd
