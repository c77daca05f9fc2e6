/* The simulator's diag channel.  This first version only accepts DIAG
 * connections; commands are answered once the command table lands. */
#include "daemon.h"

namespace modemd {
namespace {

class diag_endpoint_impl : public diag_endpoint {
public:
    explicit diag_endpoint_impl(daemon &d) : d_(d) {}
    void on_open(connection &) override {}
    void on_packet(connection &, const uint8_t *, size_t) override {}
    void on_close(connection &) override {}
    bool control(const std::vector<std::string> &, std::string *) override { return false; }

private:
    daemon &d_;
};

}  // namespace

std::unique_ptr<diag_endpoint> make_diag_endpoint(daemon &d) { return std::make_unique<diag_endpoint_impl>(d); }

}  // namespace modemd
