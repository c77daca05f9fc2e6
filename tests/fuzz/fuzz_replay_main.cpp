/* Replays fuzz inputs without libFuzzer: every file named on the command
 * line, or found directly in a directory named there, is fed once to
 * LLVMFuzzerTestOneInput.  Standard output (the parsers' lines) goes to
 * /dev/null. */
#include <stdint.h>
#include <stdio.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

int main(int argc, char **argv)
{
    namespace fs = std::filesystem;
    if (!freopen("/dev/null", "w", stdout)) return 2;
    size_t count = 0;
    for (int i = 1; i < argc; i++) {
        std::vector<fs::path> inputs = {argv[i]};
        if (fs::is_directory(argv[i])) inputs.assign(fs::directory_iterator(argv[i]), fs::directory_iterator());
        for (const fs::path &path : inputs) {
            if (fs::is_directory(path)) continue;
            std::ifstream in(path, std::ios::binary);
            if (!in) {
                fprintf(stderr, "cannot read %s\n", path.c_str());
                return 1;
            }
            std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
            LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
            count++;
        }
    }
    fprintf(stderr, "replayed %zu inputs\n", count);
    return 0;
}
