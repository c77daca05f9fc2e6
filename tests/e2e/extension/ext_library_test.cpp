/* The extension client and the chunked EFS calls through the library
 * driver (one process per call, like rlk) and the real rlk against a
 * private simulator: send limits and response capacities, chunk
 * boundaries and instance ids on the wire, the largest file, failed chunks
 * and an interrupted transfer, a reply later than the 3000 ms time-out, a
 * service that appears late, framework errors, and several processes
 * writing and reading at once. */
#include <thread>

#include <gtest/gtest.h>

#include "ext_test_util.h"

namespace {

class ExtLibraryTest : public ext_sim_test {
protected:
    probe_run probe(const std::vector<std::string> &args) { return run_probe(sim, args); }

    /* Requests of `fn`, counted by the simulator. */
    template <typename F>
    long long requests_of(F fn)
    {
        long long before = ext_request_count(sim);
        fn();
        return ext_request_count(sim) - before;
    }
};

/* An EFS write chunk's instance, file size, chunk length and offset. */
std::vector<uint32_t> chunk(const ext_wire_request &r)
{
    return {r.data[2], r.u32(76), r.u32(80), r.u32(84)};
}

TEST_F(ExtLibraryTest, RequestAndCapacityLimits)
{
    struct {
        const char *req_len, *capacity;
        int result;
        size_t len;
        const char *line;
    } cases[] = {
        {"512", "512", 0, 512, "tolvek_extend_qmi_send_sync resp_len:512\n"},
        {"513", "0", -1, 0, "put data_len 513 > max 512\n"},
        {"10", "513", -1, 0, "put data_len 10 > max 512\n"},
        {"300", "100", 0, 100, "tolvek_extend_qmi_send_sync resp_len:100\n"}, /* cut to the capacity */
        {"300", "512", 0, 300, "tolvek_extend_qmi_send_sync resp_len:300\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.req_len) + "/" + c.capacity);
        probe_run p;
        long long sent = requests_of([&] { p = probe({"send", "0", c.req_len, c.capacity}); });
        EXPECT_EQ(p.result, c.result);
        EXPECT_EQ(p.len, c.len);
        EXPECT_TRUE(has_text(p.run.out, c.line)) << p.run.out;
        /* A refused call returns before connecting. */
        EXPECT_EQ(sent, c.result == 0 ? 1 : 0);
        EXPECT_EQ(has_text(p.run.out, "TOLVEK_QMI_NV"), c.result == 0);
        /* The echo came back unchanged, up to the capacity. */
        EXPECT_EQ(p.head, c.len ? "000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f" : "");
    }
}

TEST_F(ExtLibraryTest, AnswersWithoutPayloadOrWithAFrameworkError)
{
    sim.ctl_ok("respond ext 2 0104000000000002040000000000 1");
    probe_run bare = probe({"send", "2", "16", "444"});
    EXPECT_EQ(bare.result, 0);
    EXPECT_EQ(bare.len, 0u);

    probe_run unknown = probe({"send", "9", "4", "16"});
    EXPECT_EQ(unknown.result, -3);
    EXPECT_TRUE(has_text(unknown.run.out, "94 QMI service framework error. Check client\n"
                                          "tolvek_extend_qmi_handle_req_cb result:-3\n"));

    /* An unknown typed common request is answered with its own result. */
    probe_run typed = probe({"common", "99", "4"});
    EXPECT_TRUE(has_text(typed.run.out, "PROBE word=2 result=-95 type=99 len=0")) << typed.run.out;
    EXPECT_EQ(ext_last_requests(sim, 1).at(0).u32(12), 4u);
    /* A value beyond the 496-byte area is a fault of the caller. */
    EXPECT_TRUE(ended_abnormally(probe({"common", "99", "497"}).run.status));
}

/* An abandoned transfer (its writer killed between chunks) leaves the old
 * file as it was and does not get in the way of later transfers, whose
 * later chunks quote the instance id the modem gave. */
TEST_F(ExtLibraryTest, ChunksQuoteTheirInstanceAndAKilledWriterChangesNothing)
{
    sim.ctl_ok("efs put /lib/victim aabbcc");
    sim.ctl_ok("delay ext 2 5000");
    probe_run killed = run_probe(sim, {"efs_write", "0", "/lib/victim", "1000", "7"}, 300);
    EXPECT_TRUE(ended_abnormally(killed.run.status));
    sim.ctl_ok("clear-faults");
    EXPECT_EQ(sim.ctl_ok("efs get /lib/victim"), "aabbcc");
    EXPECT_EQ(sim.ctl_ok("ext transfers"), "0") << "the killed writer's transfer went with its connection";

    EXPECT_EQ(requests_of([&] { EXPECT_EQ(probe({"efs_write", "0", "/lib/a", "414", "1"}).result, 0); }), 1);
    EXPECT_EQ(chunk(ext_last_requests(sim, 1).at(0)), (std::vector<uint32_t>{255, 414, 414, 0}));

    EXPECT_EQ(requests_of([&] { EXPECT_EQ(probe({"efs_write", "0", "/lib/b", "415", "1"}).result, 0); }), 2);
    std::vector<ext_wire_request> two = ext_last_requests(sim, 2);
    EXPECT_EQ(chunk(two[0]), (std::vector<uint32_t>{255, 415, 414, 0}));
    EXPECT_EQ(chunk(two[1]), (std::vector<uint32_t>{0, 415, 1, 414})) << "instance 0, the id the first chunk was given";
    EXPECT_EQ(two[1].data[88], uint8_t(1 + 7 * 414));
    EXPECT_EQ(two[1].data[89], 0) << "nothing of the previous chunk is left behind";
    EXPECT_EQ(sim.ctl_ok("efs get /lib/b").size(), 2u * 415);
    EXPECT_EQ(sim.ctl_ok("ext transfers"), "0");
}

TEST_F(ExtLibraryTest, PathAndFileLimits)
{
    const std::string path70 = "/" + std::string(69, 'd');
    EXPECT_EQ(probe({"efs_write", "0", path70, "3", "1"}).result, 0);
    probe_run too_long;
    EXPECT_EQ(requests_of([&] { too_long = probe({"efs_write", "0", path70 + "x", "3", "1"}); }), 0);
    EXPECT_EQ(too_long.result, -106);
    /* A read takes 71 bytes; the 71st travels as a zero, so the file of the
     * first 70 is read. */
    probe_run read71 = probe({"efs_read", "0", path70 + "x", "16"});
    EXPECT_EQ(read71.result, 0);
    EXPECT_EQ(read71.head, "01080f");
    ext_wire_request req = ext_last_requests(sim, 1).at(0);
    EXPECT_EQ(req.data[4], 71);
    EXPECT_EQ(req.data[5 + 70], 0);

    probe_run wrote, back, over;
    EXPECT_EQ(requests_of([&] { wrote = probe({"efs_write", "0", "/lib/max", "102410", "5"}); }), 248);
    EXPECT_EQ(wrote.result, 0);
    EXPECT_EQ(requests_of([&] { back = probe({"efs_read", "0", "/lib/max", "102410"}); }), 242);
    EXPECT_EQ(back.result, 0);
    EXPECT_EQ(back.len, 102410u);
    EXPECT_EQ(back.fnv, wrote.fnv);
    EXPECT_EQ(requests_of([&] { over = probe({"efs_write", "0", "/lib/max", "102411", "5"}); }), 0);
    EXPECT_EQ(over.result, -108);
    EXPECT_TRUE(has_text(over.run.out, "RIL[tolvek_efs_write:") && has_text(over.run.out, "]: buf_len is invalid\n"));
}

/* A chunk the modem answers with a negative result ends a write or a read
 * with that result; a chunk whose exchange fails ends a read at once, while
 * a write carries on and the modem then refuses the gap.  A directory is
 * neither read, deleted nor replaced (the final chunk's commit fails). */
TEST_F(ExtLibraryTest, FailedChunks)
{
    sim.ctl_ok("efs put /lib/file " + std::string(2 * 1000, '6'));
    const std::string dir = "/nv/item_files/modem";
    struct {
        const char *control;
        std::vector<std::string> call;
        int result;
        long long requests;
    } cases[] = {
        {"ext fail-efs 1 result -28", {"efs_write", "0", "/lib/file", "1000", "2"}, -28, 2},
        {"ext fail-efs 1 msg_code 9", {"efs_write", "0", "/lib/file", "1000", "2"}, -22, 3},
        {"ext fail-efs 1 result -5", {"efs_read", "0", "/lib/file", "1000"}, -5, 2},
        {"ext fail-efs 1 msg_code 9", {"efs_read", "0", "/lib/file", "1000"}, -103, 2},
        {"ext fail-efs 0 result -2", {"efs_delete", "0", "/lib/file"}, -2, 1},
        {"clear-faults", {"efs_write", "0", dir, "415", "2"}, -21, 2},
        {"clear-faults", {"efs_read", "0", dir, "16"}, -21, 1},
        {"clear-faults", {"efs_delete", "0", dir}, -21, 1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.control) + " " + c.call[0]);
        sim.ctl_ok(c.control);
        probe_run p;
        EXPECT_EQ(requests_of([&] { p = probe(c.call); }), c.requests);
        EXPECT_EQ(p.result, c.result) << p.run.out;
        EXPECT_EQ(sim.ctl_ok("efs get /lib/file"), std::string(2 * 1000, '6')) << "the file is untouched";
    }
    EXPECT_EQ(probe({"efs_write", "0", "/lib/file", "10", "2"}).result, 0) << "later transfers are not affected";
}

TEST_F(ExtLibraryTest, ReplyLaterThanTheTimeoutFailsTheRequest)
{
    /* The reply comes long after the 3 s time-out: the request ends at the
     * time-out, well before the reply (the margin absorbs a slow start). */
    sim.ctl_ok("delay ext 2 9000 1");
    long long start = monotonic_ms();
    rlk_run r = rlk("4 1 0 550");
    long long spent = monotonic_ms() - start;
    EXPECT_GE(spent, 3000);
    EXPECT_LT(spent, 8000);
    EXPECT_TRUE(has_text(r.out, "send msg sync failed:-3\ntolvek_extend_qmi_handle_req_cb result:-3\n")) << r.out;
    EXPECT_TRUE(has_syslog(r, "] tolvek_qmi_result_map: tolvek_qmi_result_map, old_result -3, new_result -103"));
    EXPECT_TRUE(has_syslog(r, "] tolvek_nv_read: tolvek_extend_qmi_send_sync fail"));
    EXPECT_TRUE(has_text(r.out, "tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS\n" + error_note(-103)));
}

TEST_F(ExtLibraryTest, ServiceAppearingLateEndsTheWait)
{
    sim.ctl_ok("down ext");
    sim.ctl_ok("up ext 300");
    long long start = monotonic_ms();
    rlk_run r = rlk("4 1 0 550");
    EXPECT_GE(monotonic_ms() - start, 300);
    EXPECT_TRUE(has_text(r.out, "TOLVEK_QMI_NV: qmi_client_get_service_list() returned -2 num_services = 0\n"
                                "TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1\n"
                                "TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 "
                                "num_services = 1\nQMI client inited\n"))
        << r.out;
    EXPECT_TRUE(has_text(r.out, "\ndata len(9)\n"));
}

TEST_F(ExtLibraryTest, FrameworkErrorIsMappedOnlyForNvAndEfs)
{
    sim.ctl_ok("error ext 2 9 1");
    rlk_run nv = rlk("4 1 0 550");
    EXPECT_TRUE(has_text(nv.out, "9 QMI service framework error. Check client\n")) << nv.out;
    EXPECT_TRUE(has_text(nv.out, error_note(-103)));

    sim.ctl_ok("error ext 2 9 1");
    rlk_run set = rlk("3 0 1");
    EXPECT_TRUE(has_text(set.out, "tolvek_extend_qmi_send_sync fail, REQUEST_ID_COMMON\n" + error_note(-3))) << set.out;
}

/* rlk processes write and read small files while driver processes move
 * multi-chunk files, all at once; every file holds what its writer wrote. */
TEST_F(ExtLibraryTest, ConcurrentWritersAndReaders)
{
    std::vector<std::string> rlk_out(4);
    std::vector<probe_run> wrote(3), back(3);
    std::vector<std::thread> threads;
    for (size_t i = 0; i < rlk_out.size(); i++) {
        threads.emplace_back([&, i] {
            std::string path = "/conc/small" + std::to_string(i);
            std::vector<std::string> w = {RLK_BINARY, "4", "5", "0", path};
            for (size_t b = 0; b < 365; b++) w.push_back(std::to_string((b + i) % 256));
            run_process(w, sim.env());
            rlk_out[i] = run_process({RLK_BINARY, "4", "4", "0", path}, sim.env()).out;
        });
    }
    for (size_t i = 0; i < wrote.size(); i++) {
        threads.emplace_back([&, i] {
            std::string path = "/conc/large" + std::to_string(i);
            wrote[i] = run_probe(sim, {"efs_write", "0", path, "5000", std::to_string(i + 1)});
            back[i] = run_probe(sim, {"efs_read", "0", path, "5000"});
        });
    }
    for (std::thread &t : threads) t.join();

    for (size_t i = 0; i < rlk_out.size(); i++) {
        std::string dump;
        for (size_t b = 0; b < 365; b++) {
            char hex[4];
            snprintf(hex, sizeof(hex), " %02X", unsigned((b + i) % 256));
            dump += hex;
        }
        EXPECT_TRUE(has_text(rlk_out[i], "\ndata len(365)\ndata: " + dump + "\n")) << "client " << i;
    }
    for (size_t i = 0; i < wrote.size(); i++) {
        SCOPED_TRACE(i);
        EXPECT_EQ(wrote[i].result, 0);
        EXPECT_EQ(back[i].result, 0);
        EXPECT_EQ(back[i].len, 5000u);
        EXPECT_EQ(back[i].fnv, wrote[i].fnv);
    }
    EXPECT_EQ(sim.ctl_ok("ext transfers"), "0");
}

}  // namespace
