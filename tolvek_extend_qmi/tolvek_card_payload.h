/* Typed common requests (command code 2 of request code 4) about the SIM
 * card slots, and the values their answers carry.  Every value is a list of
 * little-endian 32-bit integers.  Shared by the tool and the modem
 * simulator; docs/extension-service.md lists the same layouts. */
#ifndef TOLVEK_CARD_PAYLOAD_H
#define TOLVEK_CARD_PAYLOAD_H

#include <stdint.h>

/* Request types. */
#define TOLVEK_CARD_TYPE_STATUS_QUERY 39 /* no value */
#define TOLVEK_CARD_TYPE_STATUS_GET 55   /* u32 sub */
#define TOLVEK_CARD_TYPE_TYPE_QUERY 56   /* no value */
#define TOLVEK_CARD_TYPE_STATUS_SET 57   /* u32 sub, u32 mode, u32 level */
#define TOLVEK_CARD_TYPE_HOTSWAP 80      /* u32 0 (stop) | u32 opt, count, seconds_after_push, seconds_after_pull */

/* Card slots of the modem (sub 0 and 1). */
#define TOLVEK_CARD_SLOT_COUNT 2

/* Presence, card type and the status line of a slot. */
#define TOLVEK_CARD_ABSENT 0
#define TOLVEK_CARD_PRESENT 1
#define TOLVEK_CARD_KIND_ERR 0
#define TOLVEK_CARD_KIND_SINGLE_SIM 1
#define TOLVEK_CARD_KIND_MULTI_SIM 2
#define TOLVEK_CARD_LINE_MODE_GENERAL 0
#define TOLVEK_CARD_LINE_MODE_SIM 1
#define TOLVEK_CARD_LINE_LOW 0
#define TOLVEK_CARD_LINE_HIGH 1

/* Answer of type 39: the presence of every slot. */
typedef struct {
    uint32_t present[TOLVEK_CARD_SLOT_COUNT];
} tolvek_card_status_query_rsp;

/* Answer of type 55 (and of 57, after the change): one slot. */
typedef struct {
    uint32_t present;
    uint32_t power; /* 1 powered up */
    uint32_t line_mode;
    uint32_t line_level;
} tolvek_card_status_rsp;

/* Answer of type 56: the card type of every slot, 0 (err) for a slot
 * without a card or with its card powered down. */
typedef struct {
    uint32_t kind[TOLVEK_CARD_SLOT_COUNT];
} tolvek_card_type_query_rsp;

/* Request of type 80 that starts a run (the stop request is one u32 0). */
typedef struct {
    uint32_t opt;
    uint32_t count_push_and_pull;
    uint32_t seconds_after_push;
    uint32_t seconds_after_pull;
} tolvek_card_hotswap_start_req;

/* Answer of type 80: whether a run goes on after the request, the pull and
 * push cycles it has completed, and the cycles it was asked for. */
typedef struct {
    uint32_t running;
    uint32_t cycles_done;
    uint32_t cycles_asked;
} tolvek_card_hotswap_rsp;

/* The slot a hot-swap run pulls and pushes. */
#define TOLVEK_CARD_HOTSWAP_SLOT 0

static_assert(sizeof(tolvek_card_status_rsp) == 16 && sizeof(tolvek_card_hotswap_start_req) == 16 &&
                  sizeof(tolvek_card_hotswap_rsp) == 12,
              "card values are packed 32-bit words");

#endif
