// Runs a fuzz target over the files of its committed corpus, without libFuzzer, so that the
// ordinary build replays every interesting input on each test run.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

int main(int argc, char **argv) {
    namespace fs = std::filesystem;
    std::vector<std::string> files;
    std::error_code error;
    for (int k = 1; k < argc; ++k) {
        if (!fs::is_directory(argv[k], error) && fs::exists(argv[k], error))
            files.push_back(argv[k]);
        else
            for (fs::recursive_directory_iterator it(argv[k], error), end; !error && it != end;
                 it.increment(error))
                if (it->is_regular_file() && it->path().filename().string()[0] != '.')
                    files.push_back(it->path());
        if (error) {
            fprintf(stderr, "%s: %s\n", argv[k], error.message().c_str());
            return 2;
        }
    }
    if (files.empty()) {
        fprintf(stderr, "no corpus input given\n");
        return 2;
    }
    // Sorted, so that runs are repeatable.
    std::sort(files.begin(), files.end());
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
