/* Replays fuzz inputs without libFuzzer: every file named on the command
 * line, or found directly in a directory named there, is fed once to
 * LLVMFuzzerTestOneInput.  Standard output (the parsers' lines) goes to
 * /dev/null. */
#include <dirent.h>
#include <stdint.h>
#include <stdio.h>
#include <sys/stat.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

bool replay_file(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        fprintf(stderr, "cannot read %s\n", path.c_str());
        return false;
    }
    std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    return true;
}

}  // namespace

int main(int argc, char **argv)
{
    if (!freopen("/dev/null", "w", stdout)) return 2;
    int replayed = 0;
    for (int i = 1; i < argc; i++) {
        struct stat st;
        if (stat(argv[i], &st) != 0) {
            fprintf(stderr, "no such input %s\n", argv[i]);
            return 1;
        }
        if (!S_ISDIR(st.st_mode)) {
            if (!replay_file(argv[i])) return 1;
            replayed++;
            continue;
        }
        DIR *dir = opendir(argv[i]);
        if (!dir) return 1;
        while (struct dirent *e = readdir(dir)) {
            std::string path = std::string(argv[i]) + "/" + e->d_name;
            if (stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) continue;
            if (!replay_file(path)) return 1;
            replayed++;
        }
        closedir(dir);
    }
    fprintf(stderr, "replayed %d inputs\n", replayed);
    return 0;
}
