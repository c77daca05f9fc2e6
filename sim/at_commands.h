/* The answers of the simulated modem's AT port: one command line in (what
 * arrived before its carriage return), the answer out, in the verbose
 * result format of a modem (each line framed by CR LF, then OK or ERROR).
 *
 *   AT, ATZ                      OK (ATZ also turns echo off)
 *   ATE0 / ATE1                  echo off / on
 *   ATI                          manufacturer, model, revision, IMEI
 *   AT+CGMI, AT+CGMM, AT+CGMR    manufacturer, model, revision
 *   AT+CGSN, AT+GSN              the IMEI, from NV item 550 of subscription 0
 *   AT+CSQ, AT+CSQ=?             signal quality, its ranges
 *   AT+CFUN?, AT+CFUN=<n>[,<r>]  functionality level 0, 1 or 4
 *   AT+CFUN=?                    the levels
 *   anything else                ERROR */
#ifndef MODEMD_AT_COMMANDS_H
#define MODEMD_AT_COMMANDS_H

#include <string>

#include "state_store.h"

namespace modemd {

/* What the modem remembers between commands. */
struct at_modem_state {
    bool echo = false;
    int cfun = 1;
};

/* The firmware revision the modem reports (AT+CGMR, ATI, DMS). */
constexpr const char *k_at_revision = "RLK.MPSS.1.0";

/* The NV item that holds the IMEI (length byte, then BCD digits). */
constexpr const char *k_at_imei_item = "/nvm/num/550";

/* Answers one command line (without its terminator).  An empty line gets
 * no answer. */
std::string at_answer(const std::string &line, at_modem_state *state, const state_store &store);

/* The IMEI digits of an NV 550 value; empty when the value is not one. */
std::string at_imei_from_nv(const std::vector<uint8_t> &nv);

}  // namespace modemd

#endif
