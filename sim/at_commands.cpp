#include "at_commands.h"

#include <ctype.h>
#include <stdint.h>

#include <vector>

namespace modemd {
namespace {

constexpr const char *k_ok = "OK";
constexpr const char *k_error = "ERROR";
constexpr const char *k_crlf = "\r\n";

constexpr const char *k_manufacturer = "RLK";
constexpr const char *k_model = "rlk-modemd";

/* Signal quality the simulated cell gives: rssi 23 (-67 dBm), ber unknown. */
constexpr const char *k_csq = "+CSQ: 23,99";
constexpr const char *k_csq_ranges = "+CSQ: (0-31,99),(0-7,99)";
constexpr const char *k_cfun_ranges = "+CFUN: (0,1,4),(0-1)";

/* NV 550: length byte 8, then the type nibble 0xA and 15 BCD digits. */
constexpr size_t k_imei_nv_len = 8;
constexpr uint8_t k_imei_type_nibble = 0xA;
constexpr uint8_t k_bcd_pad = 0xF;

/* The answer: information lines, then the final result. */
std::string framed(const std::vector<std::string> &info, const char *final_result)
{
    std::string out;
    for (const std::string &line : info) out += k_crlf + line + k_crlf;
    return out + k_crlf + final_result + k_crlf;
}

std::string upper(const std::string &text)
{
    std::string out = text;
    for (char &ch : out) ch = char(toupper(static_cast<unsigned char>(ch)));
    return out;
}

std::string imei(const state_store &store)
{
    std::vector<uint8_t> nv;
    if (store.efs_read(k_at_imei_item, &nv) != k_efs_ok) return std::string();
    return at_imei_from_nv(nv);
}

/* AT+CFUN=<fun>[,<rst>]; false when the arguments are not valid. */
bool set_cfun(const std::string &args, at_modem_state *state)
{
    std::string fun = args.substr(0, args.find(','));
    std::string rst = fun.size() < args.size() ? args.substr(fun.size() + 1) : std::string("0");
    if ((fun != "0" && fun != "1" && fun != "4") || (rst != "0" && rst != "1")) return false;
    state->cfun = fun[0] - '0';
    return true;
}

std::string answer_extended(const std::string &cmd, at_modem_state *state, const state_store &store)
{
    if (cmd == "+CGMI" || cmd == "+GMI") return framed({k_manufacturer}, k_ok);
    if (cmd == "+CGMM" || cmd == "+GMM") return framed({k_model}, k_ok);
    if (cmd == "+CGMR" || cmd == "+GMR") return framed({k_at_revision}, k_ok);
    if (cmd == "+CGSN" || cmd == "+GSN") {
        std::string digits = imei(store);
        return digits.empty() ? framed({}, k_error) : framed({digits}, k_ok);
    }
    if (cmd == "+CSQ") return framed({k_csq}, k_ok);
    if (cmd == "+CSQ=?") return framed({k_csq_ranges}, k_ok);
    if (cmd == "+CFUN?") return framed({"+CFUN: " + std::to_string(state->cfun)}, k_ok);
    if (cmd == "+CFUN=?") return framed({k_cfun_ranges}, k_ok);
    if (cmd.compare(0, 6, "+CFUN=") == 0) return framed({}, set_cfun(cmd.substr(6), state) ? k_ok : k_error);
    return framed({}, k_error);
}

}  // namespace

std::string at_imei_from_nv(const std::vector<uint8_t> &nv)
{
    if (nv.size() < 1 + k_imei_nv_len || nv[0] != k_imei_nv_len || (nv[1] & 0x0F) != k_imei_type_nibble) {
        return std::string();
    }
    std::string digits;
    for (size_t i = 1; i <= k_imei_nv_len; i++) {
        uint8_t nibbles[2] = {uint8_t(nv[i] & 0x0F), uint8_t(nv[i] >> 4)};
        for (int n = i == 1 ? 1 : 0; n < 2; n++) {
            if (nibbles[n] == k_bcd_pad) return digits;
            if (nibbles[n] > 9) return std::string();
            digits += char('0' + nibbles[n]);
        }
    }
    return digits;
}

std::string at_answer(const std::string &line, at_modem_state *state, const state_store &store)
{
    std::string cmd = upper(line);
    while (!cmd.empty() && (cmd.back() == ' ' || cmd.back() == '\n')) cmd.pop_back();
    size_t start = cmd.find_first_not_of(" \n");
    if (start == std::string::npos) return std::string();
    cmd = cmd.substr(start);
    if (cmd.compare(0, 2, "AT") != 0) return framed({}, k_error);
    cmd = cmd.substr(2);
    if (cmd.empty()) return framed({}, k_ok);
    if (cmd == "Z") {
        state->echo = false;
        return framed({}, k_ok);
    }
    if (cmd == "E0" || cmd == "E1") {
        state->echo = cmd == "E1";
        return framed({}, k_ok);
    }
    if (cmd == "I") {
        std::string digits = imei(store);
        return framed({std::string("Manufacturer: ") + k_manufacturer, std::string("Model: ") + k_model,
                       std::string("Revision: ") + k_at_revision, "IMEI: " + digits},
                      k_ok);
    }
    if (cmd[0] == '+') return answer_extended(cmd, state, store);
    return framed({}, k_error);
}

}  // namespace modemd
