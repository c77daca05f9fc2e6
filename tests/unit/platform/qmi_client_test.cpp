/* The host QMI client library against a real private simulator: lookup and
 * notifier, connection, synchronous sends and their time-out, indications,
 * and the error callback when a service goes away. */
#include <thread>

#include <gtest/gtest.h>

#include "../modem_api/modem_api_test_util.h"
#include "data_file.h"
#include "ext_request.h"
#include "qmi_client.h"
#include "tolvek_extend_service_v01.h"

namespace {

constexpr int k_wait_ms = k_modem_api_wait_ms;
const std::thread::id g_test_thread = std::this_thread::get_id();

/* Each callback's event (or message id), payload, and whether it came on
 * the test's own thread. */
typedef recorder<std::tuple<int, std::vector<uint8_t>, bool>> event_box;

void add(void *box, int ev, const void *data = nullptr, size_t len = 0)
{
    const uint8_t *bytes = static_cast<const uint8_t *>(data);
    const bool on_test_thread = std::this_thread::get_id() == g_test_thread;
    static_cast<event_box *>(box)->add({ev, std::vector<uint8_t>(bytes, bytes + len), on_test_thread});
}

/* The events, which must have come on the library's threads. */
std::vector<int> events(event_box &box)
{
    std::vector<int> out;
    for (const auto &v : box.values()) {
        EXPECT_FALSE(std::get<2>(v)) << std::get<0>(v);
        out.push_back(std::get<0>(v));
    }
    return out;
}

void on_error(qmi_client_type, qmi_client_error_type error, void *data) { add(data, error); }

void on_notify(qmi_client_type, qmi_idl_service_object_type, qmi_client_notify_event_type ev, void *data)
{
    add(data, ev);
}

void on_indication(qmi_client_type, unsigned int msg_id, void *buf, unsigned int len, void *data)
{
    add(data, int(msg_id), buf, len);
}

class QmiClientTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }
    void TearDown() override
    {
        if (client) qmi_client_release(client);
        if (notifier) qmi_client_release(notifier);
    }

    void connect(event_box *inds = nullptr)
    {
        qmi_service_info info;
        unsigned int entries = 1, services = 0;
        ASSERT_EQ(qmi_client_get_service_list(svc, &info, &entries, &services), QMI_NO_ERR);
        ASSERT_EQ(entries, 1u);
        ASSERT_EQ(qmi_client_init(&info, svc, inds ? on_indication : nullptr, inds, &os, &client), QMI_NO_ERR);
    }
    void notify(event_box *box)
    {
        ASSERT_EQ(qmi_client_notifier_init(svc, &os, &notifier), QMI_NO_ERR);
        ASSERT_EQ(qmi_client_register_notify_cb(notifier, on_notify, box), QMI_NO_ERR);
    }
    int send_read(unsigned int timeout_ms)
    {
        tolvek_extend_msg req = make_efs_read_request();
        return qmi_client_send_msg_sync(client, 0x0002, &req, sizeof(req), &resp, sizeof(resp), timeout_ms);
    }
    sim_instance sim;
    qmi_idl_service_object_type svc = tolvek_extend_get_service_object_v01();
    qmi_client_os_params os = {};
    qmi_client_type client = nullptr;
    qmi_client_type notifier = nullptr;
    tolvek_extend_msg resp;
};

/* A service that is absent, appears, and goes through a subsystem restart. */
TEST_F(QmiClientTest, AbsentServiceIsListedWhenItAppearsAndAfterARestart)
{
    sim.ctl_ok("down ext");
    event_box box;
    notify(&box);
    unsigned int services = 99;
    const int absent = qmi_client_get_service_list(svc, nullptr, nullptr, &services);
    std::string t = facts(absent, services);
    sim.ctl_ok("up ext");
    qmi_cci_os_signal_wait(&os, k_wait_ms);
    t += facts(QMI_CCI_OS_SIGNAL_TIMED_OUT(&os));
    const int present = qmi_client_get_service_list(svc, nullptr, nullptr, &services);
    t += facts(present, services);
    EXPECT_EQ(t, facts(QMI_SERVICE_ERR, 0) + facts(0) + facts(QMI_NO_ERR, 1)) << "results and services";
    ASSERT_TRUE(box.wait_count(1));
    EXPECT_EQ(events(box), std::vector<int>{QMI_CLIENT_SERVICE_COUNT_INC});
    sim.ctl_ok("ssr ext 100");
    ASSERT_TRUE(box.wait_count(3));
    EXPECT_EQ(events(box), (std::vector<int>{QMI_CLIENT_SERVICE_COUNT_INC, QMI_CLIENT_SERVICE_COUNT_DEC,
                                             QMI_CLIENT_SERVICE_COUNT_INC}));
}

/* A notifier told at once of a service that is there, a request with its
 * wire bytes, one that times out, and an indication that arrives on a
 * library thread as raw TLVs. */
TEST_F(QmiClientTest, SendsTimeOutsAndIndications)
{
    event_box box, present;
    notify(&present);
    ASSERT_TRUE(present.wait_count(1));
    EXPECT_EQ(events(present), std::vector<int>{QMI_CLIENT_SERVICE_COUNT_INC});
    connect(&box);
    ASSERT_EQ(send_read(k_wait_ms), QMI_NO_ERR);
    /* The seeded antenna file holds 16 bytes. */
    EXPECT_EQ(facts(resp.msg_code, int(resp.data_valid), int(resp.data[4])), "0 1 16\n");
    /* The simulator saw a QMI request: type 0, transaction 1, message 2,
     * 529 bytes of TLVs. */
    std::string last = sim.ctl_ok("last 1 ext");
    EXPECT_EQ(last.substr(0, 30), "0xffe4 0x0002 1 00010002001102");
    EXPECT_EQ(last.size(), std::string("0xffe4 0x0002 1 ").size() + 2 * (7 + 529));

    sim.ctl_ok("delay ext 2 5000");
    long long start = monotonic_ms();
    EXPECT_EQ(send_read(300), QMI_TIMEOUT_ERR);
    long long spent = monotonic_ms() - start;
    EXPECT_EQ(facts(spent >= 300, spent < 400), "1 1\n") << spent << " ms";

    sim.ctl_ok("ind ext 3 01040009000000 02040000000000");
    ASSERT_TRUE(box.wait_count(1));
    EXPECT_EQ(events(box), std::vector<int>{3});
    std::vector<uint8_t> tlvs = std::get<1>(box.values()[0]);
    tolvek_extend_msg ind;
    ASSERT_EQ(qmi_client_message_decode(client, QMI_IDL_INDICATION, 3, tlvs.data(), unsigned(tlvs.size()), &ind,
                                        sizeof(ind)),
              QMI_NO_ERR);
    EXPECT_EQ(ind.msg_code, 9u);
    EXPECT_EQ(qmi_client_message_decode(client, QMI_IDL_INDICATION, 3, tlvs.data(), unsigned(tlvs.size()), &ind, 100),
              QMI_IDL_LIB_BUFFER_TOO_SMALL);
}

TEST_F(QmiClientTest, ServiceGoingAwayFailsThePendingSendAndCallsTheErrorCallbackOnce)
{
    event_box box, late;
    connect();
    ASSERT_EQ(qmi_client_register_error_cb(client, on_error, &box), QMI_NO_ERR);
    sim.ctl_ok("drop ext 2");
    std::atomic<int> rc{1};
    std::thread sender([&] { rc = send_read(0); });
    /* Once the request is in the simulator's journal, the service goes. */
    EXPECT_TRUE(poll_until([&] { return !sim.ctl_ok("last 1 ext").empty(); }, k_wait_ms));
    sim.ctl_ok("down ext");
    sender.join();
    ASSERT_TRUE(box.wait_count(1));
    /* A dead client reports the loss again to a late registration; the
     * first callback is not called again. */
    const int late_rc = qmi_client_register_error_cb(client, on_error, &late);
    std::string t = facts(rc.load(), events(box)[0], late_rc, late.values().size());
    const int dead_rc = send_read(100);
    t += facts(dead_rc, events(box).size());
    EXPECT_EQ(t, facts(QMI_SERVICE_ERR, QMI_SERVICE_ERR, QMI_SERVICE_ERR, 1) + facts(QMI_SERVICE_ERR, 1));
}

TEST_F(QmiClientTest, InitInstanceTimesOutOrFollowsALateService)
{
    sim.ctl_ok("down ext");
    long long start = monotonic_ms();
    EXPECT_EQ(qmi_client_init_instance(svc, QMI_CLIENT_INSTANCE_ANY, nullptr, nullptr, &os, 200, &client),
              QMI_TIMEOUT_ERR);
    long long spent = monotonic_ms() - start;
    EXPECT_EQ(facts(spent >= 200, spent < 300), "1 1\n") << spent << " ms";
    client = nullptr;
    sim.ctl_ok("up ext 50");
    EXPECT_EQ(qmi_client_init_instance(svc, 0, nullptr, nullptr, &os, k_wait_ms, &client), QMI_NO_ERR);
    EXPECT_EQ(send_read(k_wait_ms), QMI_NO_ERR);
}

}  // namespace
