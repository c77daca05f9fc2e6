/* Conversions of command-line words into numbers and of bytes into
 * hexadecimal text, shared by every command group. */
#ifndef TOLVEK_CONVERT_H
#define TOLVEK_CONVERT_H

/* Longest hexadecimal text tolvek_hex_string_to_int accepts; one more
 * character aborts the process. */
#define TOLVEK_HEX_MAX_DIGITS 50

/* Largest buffer tolvek_print_data_with_hex dumps. */
#define TOLVEK_HEX_DUMP_MAX_LEN 4096

/* "0x"/"0X" followed by hexadecimal digits, otherwise decimal as atoi()
 * reads it.  A null text prints "\ninput is null" (unless the console is
 * quiet) and gives 0. */
int tolvek_string_to_int(char *text);

/* Hexadecimal digits without prefix.  A-F/a-f are 10 to 15, any other
 * character is atoi() of that single character (so a non-digit is a zero
 * digit).  More than TOLVEK_HEX_MAX_DIGITS characters, or a value beyond
 * INT32_MAX (other than exactly 0x80000000, which saturates), aborts. */
int tolvek_hex_string_to_int(char *text);

/* Two lower-case hexadecimal characters per byte into `dst`, without a
 * terminating zero; the caller passes a zeroed buffer of 2 * len + 1 bytes.
 * Does nothing for a null `src` or a `len` below 1. */
void tolvek_byte_to_hex(unsigned char *src, int len, char *dst);

/* Logs `data` as upper-case hexadecimal bytes separated by blanks, or why it
 * cannot (null data, length 0 or above TOLVEK_HEX_DUMP_MAX_LEN). */
void tolvek_print_data_with_hex(unsigned char *data, unsigned int len);

#endif
