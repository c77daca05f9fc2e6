#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "tolvek_extend_nvefs.h"
#include "tolvek_group_entry.h"
#include "tolvek_read_dump.h"
#include "tolvek_test_groups.h"

/* Option 4: NV item and EFS file read, write and delete.
 *   rlk 4 <1|3> sub nv_id             rlk 4 <4|6> sub efs_path
 *   rlk 4 2 sub nv_id bytes...        rlk 4 5 sub efs_path bytes...
 * Data bytes are decimal values; each keeps its low 8 bits. */

/* Words of a read or delete: program, option, sub-command, sub, id/path. */
static const int k_nvefs_exact_words = 5;
/* argv index of the subscription, of the id or path, of the first byte. */
static const int k_arg_sub = 3;
static const int k_arg_target = 4;
static const int k_arg_first_byte = 5;

/* Any non-zero subscription argument means subscription 1. */
static uint32_t nvefs_sub(const char *text)
{
    return atoi(text) == 0 ? 0 : 1;
}

static int note_need_inputs(void)
{
    printf("\nnote: need %d inputs, Pls refer to the following cmd:\n", k_nvefs_exact_words);
    return TOLVEK_ERR_ARG_COUNT;
}

static int note_too_few_inputs(void)
{
    puts("\nnote: Too few inputs, Pls refer to the following cmd:");
    return TOLVEK_ERR_ARG_COUNT;
}

/* Converts the first `count` data arguments into bytes of `data`. */
static void convert_data_bytes(char **argv, uint32_t count, uint8_t *data)
{
    for (uint32_t i = 0; i < count; ++i) {
        data[i] = uint8_t(atoi(argv[k_arg_first_byte + i]));
    }
}

/* Number of data arguments that are converted: at most 365. */
static uint32_t converted_count(int argc)
{
    uint32_t count = uint32_t(argc - k_arg_first_byte);
    return count < TOLVEK_READ_SHOW_MAX ? count : TOLVEK_READ_SHOW_MAX;
}

static int tolvek_nvefs_test_nv_read(int argc, char **argv)
{
    if (argc != k_nvefs_exact_words) {
        return note_need_inputs();
    }
    uint8_t data[TOLVEK_READ_SHOW_MAX] = {0};
    uint32_t len = sizeof(data);
    int result = tolvek_nv_read(nvefs_sub(argv[k_arg_sub]), uint32_t(atoi(argv[k_arg_target])), data, &len);
    if (result != 0) {
        return tolvek_report_efs_failure(result);
    }
    tolvek_print_read_data(data, len);
    return 0;
}

static int tolvek_nvefs_test_nv_write(int argc, char **argv)
{
    if (argc <= k_nvefs_exact_words) {
        return note_too_few_inputs();
    }
    /* Up to 424 bytes travel; those behind the 365th converted argument
     * stay zero. */
    uint8_t data[TOLVEK_NV_DATA_MAX] = {0};
    convert_data_bytes(argv, converted_count(argc), data);
    uint32_t count = uint32_t(argc - k_arg_first_byte);
    int result = tolvek_nv_write_ex(nvefs_sub(argv[k_arg_sub]), uint32_t(atoi(argv[k_arg_target])), data, count);
    if (result != 0) {
        return tolvek_report_efs_failure(result);
    }
    return 0;
}

static int tolvek_nvefs_test_nv_delete(int argc, char **argv)
{
    if (argc != k_nvefs_exact_words) {
        return note_need_inputs();
    }
    int result = tolvek_nv_delete(nvefs_sub(argv[k_arg_sub]), uint32_t(atoi(argv[k_arg_target])));
    if (result != 0) {
        return tolvek_report_efs_failure(result);
    }
    return 0;
}

static int tolvek_nvefs_test_efs_read(int argc, char **argv)
{
    if (argc != k_nvefs_exact_words) {
        return note_need_inputs();
    }
    const char *path = argv[k_arg_target];
    uint8_t data[TOLVEK_READ_SHOW_MAX] = {0};
    uint32_t len = sizeof(data);
    int result = tolvek_efs_read(nvefs_sub(argv[k_arg_sub]), path, uint32_t(strlen(path)), data, &len);
    if (result != 0) {
        return tolvek_report_efs_failure(result);
    }
    tolvek_print_read_data(data, len);
    return 0;
}

static int tolvek_nvefs_test_efs_write(int argc, char **argv)
{
    if (argc <= k_nvefs_exact_words) {
        return note_too_few_inputs();
    }
    const char *path = argv[k_arg_target];
    uint8_t data[TOLVEK_READ_SHOW_MAX] = {0};
    uint32_t count = converted_count(argc);
    convert_data_bytes(argv, count, data);
    int result = tolvek_efs_write(nvefs_sub(argv[k_arg_sub]), path, uint32_t(strlen(path)), data, count);
    if (result != 0) {
        return tolvek_report_efs_failure(result);
    }
    return 0;
}

static int tolvek_nvefs_test_efs_delete(int argc, char **argv)
{
    if (argc != k_nvefs_exact_words) {
        return note_need_inputs();
    }
    const char *path = argv[k_arg_target];
    int result = tolvek_efs_delete(nvefs_sub(argv[k_arg_sub]), path, uint32_t(strlen(path)));
    if (result != 0) {
        return tolvek_report_efs_failure(result);
    }
    return 0;
}

/* Sub-command handlers, by sub-command number. */
static const tolvek_subcmd_entry k_nvefs_subcmds[] = {
    {1, tolvek_nvefs_test_nv_read},  {2, tolvek_nvefs_test_nv_write},  {3, tolvek_nvefs_test_nv_delete},
    {4, tolvek_nvefs_test_efs_read}, {5, tolvek_nvefs_test_efs_write}, {6, tolvek_nvefs_test_efs_delete},
};

int tolvek_test_nvefs_do(int argc, char **argv)
{
    return tolvek_group_entry_run(TOLVEK_OPTION_NVEFS, argc, argv, k_nvefs_subcmds,
                                  sizeof(k_nvefs_subcmds) / sizeof(k_nvefs_subcmds[0]));
}
