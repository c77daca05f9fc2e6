/* The radio scene of the vendor statistics service and the items packed
 * from it. */
#include "vs_stats_scene.h"

#include <math.h>
#include <string.h>

#include "daemon.h"

namespace modemd {
namespace {

/* Item version written first in every item. */
constexpr uint32_t k_item_version = 1;

/* Data ids. */
enum : uint16_t {
    k_id_nr_scc1_rsrp = 6,
    k_id_nr_scc2_rsrp = 7,
    k_id_lte_pcc = 82,
    k_id_nr_rssi = 94,
    k_id_ant_info = 100,
    k_id_lte_scc1 = 103,
    k_id_lte_scc6 = 108,
    k_id_wcdma = 110,
    k_id_gsm = 111,
    k_id_nr_snr = 112,
    k_id_nr_asdiv = 113,
    k_id_nr_pcc_rsrp = 135,
};

/* Drift of a level around its set value: amplitude in dB, period from a
 * few seconds up, a phase per field so that the values do not move
 * together. */
constexpr double k_drift_amplitude_db = 2.5;
constexpr double k_drift_base_period_ms = 6000.0;
constexpr double k_drift_period_step_ms = 700.0;
constexpr double k_two_pi = 6.283185307179586;

struct packer {
    std::vector<uint8_t> *out;
    const vs_scene &scene;
    uint64_t now_ms;
    int field = 0; /* drift phase of the next float */

    void put(uint32_t v, int width)
    {
        for (int i = 0; i < width; i++) out->push_back(uint8_t(v >> (8 * i)));
    }
    void put_float(float v)
    {
        if (scene.drift) {
            double period = k_drift_base_period_ms + k_drift_period_step_ms * field;
            v = float(v + k_drift_amplitude_db * sin(k_two_pi * double(now_ms) / period + field));
        }
        field++;
        uint32_t bits;
        memcpy(&bits, &v, sizeof(bits));
        put(bits, 4);
    }
    void put_floats(const float *v, int n)
    {
        for (int i = 0; i < n; i++) put_float(v[i]);
    }
};

void pack_lte(packer &p, const vs_lte_carrier &c)
{
    p.put(k_item_version, 4);
    p.put(c.earfcn, 4);
    p.put(c.pci, 2);
    p.put(c.rx_valid, 1);
    for (int rx = 0; rx < k_vs_rx_count; rx++) {
        p.put_float(c.rsrp[rx]);
        p.put_float(c.rsrq[rx]);
        p.put_float(c.rssi[rx]);
        p.put_float(c.snr[rx]);
    }
}

void pack_nr_rsrp(packer &p, const vs_nr_carrier &c)
{
    p.put(k_item_version, 4);
    p.put_floats(c.rsrp, k_vs_rx_count);
    p.put_float(c.rsrq);
}

void pack_ant(packer &p, const vs_scene &s)
{
    p.put(k_item_version, 4);
    p.put(s.ant_number, 1);
    p.put(s.ant_switch_path, 2);
    p.put(s.sig_path, 2);
    p.put(s.old_config, 1);
    p.put(s.new_config, 1);
}

vs_lte_carrier lte_carrier(uint32_t earfcn, uint16_t pci, float rsrp, float snr)
{
    vs_lte_carrier c;
    c.present = true;
    c.earfcn = earfcn;
    c.pci = pci;
    c.rx_valid = 0x0F;
    for (int rx = 0; rx < k_vs_rx_count; rx++) {
        c.rsrp[rx] = rsrp - 1.5f * float(rx);
        c.rsrq[rx] = -10.5f - 0.5f * float(rx);
        c.rssi[rx] = rsrp + 25.0f - 1.5f * float(rx);
        c.snr[rx] = snr - float(rx);
    }
    return c;
}

/* One settable value of a scene. */
struct field_ref {
    std::string name;
    enum kind_t { F32, U32, U16, U8, FLAG } kind;
    void *ptr;
};

void add_floats(std::vector<field_ref> &f, const std::string &prefix, float *v, int n)
{
    for (int i = 0; i < n; i++) f.push_back({prefix + std::to_string(i), field_ref::F32, &v[i]});
}

std::vector<field_ref> fields_of(vs_scene *s)
{
    std::vector<field_ref> f = {{"served", field_ref::FLAG, &s->served}, {"drift", field_ref::FLAG, &s->drift}};
    for (int c = 0; c < k_vs_lte_carriers; c++) {
        vs_lte_carrier &l = s->lte[c];
        std::string p = "lte." + std::to_string(c) + ".";
        f.push_back({p + "present", field_ref::FLAG, &l.present});
        f.push_back({p + "earfcn", field_ref::U32, &l.earfcn});
        f.push_back({p + "pci", field_ref::U16, &l.pci});
        f.push_back({p + "rx_valid", field_ref::U8, &l.rx_valid});
        add_floats(f, p + "rsrp", l.rsrp, k_vs_rx_count);
        add_floats(f, p + "rsrq", l.rsrq, k_vs_rx_count);
        add_floats(f, p + "rssi", l.rssi, k_vs_rx_count);
        add_floats(f, p + "snr", l.snr, k_vs_rx_count);
    }
    f.push_back({"nr.present", field_ref::FLAG, &s->nr_present});
    add_floats(f, "nr.rssi", s->nr_rssi, k_vs_rx_count);
    add_floats(f, "nr.snr", s->nr_snr, k_vs_rx_count);
    for (int c = 0; c < k_vs_nr_carriers; c++) {
        std::string p = "nr." + std::to_string(c) + ".";
        f.push_back({p + "present", field_ref::FLAG, &s->nr[c].present});
        add_floats(f, p + "rsrp", s->nr[c].rsrp, k_vs_rx_count);
        f.push_back({p + "rsrq", field_ref::F32, &s->nr[c].rsrq});
    }
    for (int i = 0; i < k_vs_asdiv_fields; i++) f.push_back({"asdiv." + std::to_string(i), field_ref::U8, &s->asdiv[i]});
    f.push_back({"wcdma.present", field_ref::FLAG, &s->wcdma_present});
    add_floats(f, "wcdma.agc", s->wcdma_agc, 2);
    f.push_back({"gsm.present", field_ref::FLAG, &s->gsm_present});
    f.push_back({"gsm.prx", field_ref::F32, &s->gsm_prx});
    f.push_back({"gsm.drx", field_ref::F32, &s->gsm_drx});
    f.push_back({"ant.present", field_ref::FLAG, &s->ant_present});
    f.push_back({"ant.num", field_ref::U8, &s->ant_number});
    f.push_back({"ant.path", field_ref::U16, &s->ant_switch_path});
    f.push_back({"ant.sig", field_ref::U16, &s->sig_path});
    f.push_back({"ant.old", field_ref::U8, &s->old_config});
    f.push_back({"ant.new", field_ref::U8, &s->new_config});
    return f;
}

bool set_integer(const field_ref &f, const std::string &value)
{
    int64_t v = 0;
    if (!parse_number(value, &v) || v < 0) return false;
    int64_t max = f.kind == field_ref::U32 ? 0xFFFFFFFFLL : f.kind == field_ref::U16 ? 0xFFFF
                  : f.kind == field_ref::U8 ? 0xFF : 1;
    if (v > max) return false;
    switch (f.kind) {
    case field_ref::U32: *static_cast<uint32_t *>(f.ptr) = uint32_t(v); break;
    case field_ref::U16: *static_cast<uint16_t *>(f.ptr) = uint16_t(v); break;
    case field_ref::U8: *static_cast<uint8_t *>(f.ptr) = uint8_t(v); break;
    default: *static_cast<bool *>(f.ptr) = v != 0; break;
    }
    return true;
}

}  // namespace

const uint16_t k_vs_served_ids[] = {k_id_lte_pcc, k_id_lte_scc1, k_id_lte_scc1 + 1, k_id_lte_scc1 + 2,
                                    k_id_lte_scc1 + 3, k_id_lte_scc1 + 4, k_id_lte_scc6, k_id_nr_rssi,
                                    k_id_nr_snr, k_id_nr_asdiv, k_id_nr_pcc_rsrp, k_id_nr_scc1_rsrp,
                                    k_id_nr_scc2_rsrp, k_id_wcdma, k_id_gsm, k_id_ant_info};
const size_t k_vs_served_id_count = sizeof(k_vs_served_ids) / sizeof(k_vs_served_ids[0]);

vs_scene vs_scene_default(int sub)
{
    vs_scene s;
    if (sub == 0) {
        /* LTE band 3 anchor with six carriers aggregated, NR n78 attached,
         * 3G and 2G levels from the last neighbour measurements. */
        static const uint32_t earfcn[k_vs_lte_carriers] = {1850, 100, 3050, 6300, 38950, 39150, 40540};
        for (int c = 0; c < k_vs_lte_carriers; c++) {
            s.lte[c] = lte_carrier(earfcn[c], uint16_t(101 + c * 37), -88.0f - 3.0f * float(c), 18.0f - float(c));
        }
        s.nr_present = true;
        const float nr_rssi[k_vs_rx_count] = {-61.25f, -63.5f, -66.75f, -70.0f};
        const float nr_snr[k_vs_rx_count] = {21.5f, 19.25f, 15.0f, 12.75f};
        memcpy(s.nr_rssi, nr_rssi, sizeof(nr_rssi));
        memcpy(s.nr_snr, nr_snr, sizeof(nr_snr));
        for (int c = 0; c < k_vs_nr_carriers; c++) {
            s.nr[c].present = true;
            for (int rx = 0; rx < k_vs_rx_count; rx++) s.nr[c].rsrp[rx] = -84.5f - 4.0f * float(c) - 2.0f * float(rx);
            s.nr[c].rsrq = -11.0f - float(c);
        }
        static const uint8_t asdiv[k_vs_asdiv_fields] = {0, 1, 1, 0, 2, 2, 3, 3, 0, 1, 1, 0};
        memcpy(s.asdiv, asdiv, sizeof(asdiv));
        s.wcdma_present = true;
        s.wcdma_agc[0] = -72.5f;
        s.wcdma_agc[1] = -75.25f;
        s.gsm_present = true;
        s.gsm_prx = -68.0f;
        s.gsm_drx = -71.5f;
        s.ant_present = true;
        s.ant_number = 4;
        s.ant_switch_path = 2;
        s.sig_path = 1;
        s.old_config = 0;
        s.new_config = 1;
    } else {
        /* The second subscription camps on LTE only. */
        s.lte[0] = lte_carrier(2452, 317, -97.0f, 9.5f);
    }
    return s;
}

bool vs_scene_item(const vs_scene &scene, uint32_t data_id, uint64_t now_ms, std::vector<uint8_t> *out)
{
    out->clear();
    packer p = {out, scene, now_ms};
    if (data_id == k_id_lte_pcc || (data_id >= k_id_lte_scc1 && data_id <= k_id_lte_scc6)) {
        int c = data_id == k_id_lte_pcc ? 0 : int(data_id) - k_id_lte_scc1 + 1;
        if (!scene.lte[c].present) return false;
        pack_lte(p, scene.lte[c]);
        return true;
    }
    switch (data_id) {
    case k_id_nr_rssi:
    case k_id_nr_snr:
        if (!scene.nr_present) return false;
        p.put(k_item_version, 4);
        p.put_floats(data_id == k_id_nr_rssi ? scene.nr_rssi : scene.nr_snr, k_vs_rx_count);
        return true;
    case k_id_nr_asdiv:
        if (!scene.nr_present) return false;
        p.put(k_item_version, 4);
        for (uint8_t v : scene.asdiv) p.put(v, 1);
        return true;
    case k_id_nr_pcc_rsrp:
    case k_id_nr_scc1_rsrp:
    case k_id_nr_scc2_rsrp: {
        int c = data_id == k_id_nr_pcc_rsrp ? 0 : data_id == k_id_nr_scc1_rsrp ? 1 : 2;
        if (!scene.nr_present || !scene.nr[c].present) return false;
        pack_nr_rsrp(p, scene.nr[c]);
        return true;
    }
    case k_id_wcdma:
    case k_id_gsm:
        if (data_id == k_id_wcdma ? !scene.wcdma_present : !scene.gsm_present) return false;
        p.put(k_item_version, 4);
        if (data_id == k_id_wcdma) {
            p.put_floats(scene.wcdma_agc, 2);
        } else {
            p.put_float(scene.gsm_prx);
            p.put_float(scene.gsm_drx);
        }
        return true;
    case k_id_ant_info:
        if (!scene.ant_present) return false;
        pack_ant(p, scene);
        return true;
    default:
        return false;
    }
}

bool vs_scene_set(vs_scene *scene, const std::string &name, const std::string &value)
{
    for (const field_ref &f : fields_of(scene)) {
        if (f.name != name) continue;
        if (f.kind != field_ref::F32) return set_integer(f, value);
        char *end = nullptr;
        float v = strtof(value.c_str(), &end);
        if (value.empty() || !end || *end || !isfinite(v)) return false;
        *static_cast<float *>(f.ptr) = v;
        return true;
    }
    return false;
}

std::string vs_scene_field_names(void)
{
    return "served drift lte.<0-6>.{present,earfcn,pci,rx_valid,rsrp<0-3>,rsrq<0-3>,rssi<0-3>,snr<0-3>} "
           "nr.present nr.rssi<0-3> nr.snr<0-3> nr.<0-2>.{present,rsrp<0-3>,rsrq} asdiv.<0-11> "
           "wcdma.present wcdma.agc<0-1> gsm.{present,prx,drx} ant.{present,num,path,sig,old,new}";
}

}  // namespace modemd
