// Runs a fuzz target over the files of its committed corpus, without libFuzzer, so that the
// ordinary build replays every interesting input on each test run.

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

// The files under path (itself when it is one), sorted so that runs are repeatable.
bool collect(const std::string &path, std::vector<std::string> *files) {
    struct stat info;
    if (stat(path.c_str(), &info) != 0) {
        perror(path.c_str());
        return false;
    }
    if (!S_ISDIR(info.st_mode)) {
        files->push_back(path);
        return true;
    }
    DIR *dir = opendir(path.c_str());
    if (!dir) {
        perror(path.c_str());
        return false;
    }
    std::vector<std::string> found;
    while (struct dirent *entry = readdir(dir))
        if (entry->d_name[0] != '.')
            found.push_back(path + "/" + entry->d_name);
    closedir(dir);
    std::sort(found.begin(), found.end());
    for (const std::string &file : found)
        if (!collect(file, files))
            return false;
    return true;
}

}  // namespace

int main(int argc, char **argv) {
    std::vector<std::string> files;
    for (int k = 1; k < argc; ++k)
        if (!collect(argv[k], &files))
            return 2;
    if (files.empty()) {
        fprintf(stderr, "no corpus input given\n");
        return 2;
    }
    for (const std::string &file : files) {
        std::ifstream in(file, std::ios::binary);
        std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                                   std::istreambuf_iterator<char>());
        if (!in.eof() && in.fail()) {
            fprintf(stderr, "%s: cannot read\n", file.c_str());
            return 2;
        }
        fprintf(stderr, "%s (%zu bytes)\n", file.c_str(), bytes.size());
        // Exactly the input's bytes on the heap, so that a read past their end is caught.
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    printf("replayed %zu inputs\n", files.size());
    return 0;
}
