#include "tolvek_convert.h"

#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

#include "tolvek_log.h"

/* Each hexadecimal digit is worth 2^4 per position. */
static const int k_bits_per_hex_digit = 4;

/* Dump text: the first byte as "XX", every further byte as " XX".  4096
 * bytes make 12287 characters, within the bound with room for the zero. */
static const size_t k_hex_dump_text_bound = 12288;
static const size_t k_hex_dump_buffer_size = k_hex_dump_text_bound + 1;
static_assert(3 * TOLVEK_HEX_DUMP_MAX_LEN - 1 <= k_hex_dump_text_bound,
              "the longest dump must fit its buffer");

static const char k_lower_hex_digits[] = "0123456789abcdef";

static void note_null_input(void)
{
    if (!g_tolvek_console_quiet) {
        puts("\ninput is null");
    }
}

/* Value of one hexadecimal character; anything but a letter A-F/a-f is read
 * as a one-character decimal number, which is 0 for every non-digit. */
static int hex_digit_value(char c)
{
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    const char single[2] = {c, '\0'};
    return atoi(single);
}

/* digit * 16^power computed in double precision and narrowed to a signed
 * 32-bit value, saturating at INT32_MAX. */
static int32_t hex_term(int32_t digit, int power)
{
    double term = digit * ldexp(1.0, k_bits_per_hex_digit * power);
    if (term >= static_cast<double>(INT32_MAX)) {
        return INT32_MAX;
    }
    return static_cast<int32_t>(term);
}

int tolvek_string_to_int(char *text)
{
    if (text == NULL) {
        note_null_input();
        return 0;
    }
    if (text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        return tolvek_hex_string_to_int(text + 2);
    }
    return atoi(text);
}

int tolvek_hex_string_to_int(char *text)
{
    if (text == NULL) {
        note_null_input();
        return 0;
    }

    int32_t digits[TOLVEK_HEX_MAX_DIGITS] = {0};
    int count = 0;
    for (const char *p = text; *p != '\0'; ++p) {
        /* The 51st character is a hard stop, never a truncation. */
        if (count >= TOLVEK_HEX_MAX_DIGITS) {
            abort();
        }
        digits[count] = hex_digit_value(*p);
        ++count;
    }

    int32_t sum = 0;
    for (int i = 0; i < count; ++i) {
        /* A value beyond the signed 32-bit range ends the process; the
         * check is explicit so that no optimisation can drop it. */
        if (__builtin_add_overflow(sum, hex_term(digits[i], count - 1 - i), &sum)) {
            abort();
        }
    }
    return sum;
}

void tolvek_byte_to_hex(unsigned char *src, int len, char *dst)
{
    if (src == NULL || len < 1) {
        return;
    }
    for (int i = 0; i < len; ++i) {
        dst[2 * i] = k_lower_hex_digits[src[i] >> k_bits_per_hex_digit];
        dst[2 * i + 1] = k_lower_hex_digits[src[i] & 0x0F];
    }
}

void tolvek_print_data_with_hex(unsigned char *data, unsigned int len)
{
    if (data == NULL) {
        TOLVEK_LOGD("print_data_with_hex, data is null");
        return;
    }
    if (len == 0 || len > TOLVEK_HEX_DUMP_MAX_LEN) {
        TOLVEK_LOGD("print_data_with_hex, invalid data len(%d)", static_cast<int>(len));
        return;
    }

    char text[k_hex_dump_buffer_size] = {0};
    size_t used = static_cast<size_t>(snprintf(text, k_hex_dump_text_bound, "%02X", data[0]));
    for (unsigned int i = 1; i < len && used < k_hex_dump_text_bound; ++i) {
        int n = snprintf(text + used, k_hex_dump_text_bound - used, " %02X", data[i]);
        used += static_cast<size_t>(n);
    }
    TOLVEK_LOGD("data hex show, len(%d), data: %s", static_cast<int>(len), text);
}
