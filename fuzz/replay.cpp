// Runs a fuzz target's entry point on the files named on the command line and
// on every file in the directories named there, as libFuzzer runs a corpus,
// but without libFuzzer: any compiler builds it, and CTest replays the
// committed corpora and regression inputs with it in every build.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv)
{
    namespace fs = std::filesystem;
    std::vector<fs::path> inputs;
    for (int i = 1; i < argc; ++i) {
        const fs::path path(argv[i]);
        if (fs::is_directory(path)) {
            for (const auto& entry : fs::directory_iterator(path)) {
                if (entry.is_regular_file())
                    inputs.push_back(entry.path());
            }
        } else if (fs::is_regular_file(path)) {
            inputs.push_back(path);
        } else {
            std::fprintf(stderr, "no such input: %s\n", argv[i]);
            return 1;
        }
    }
    std::sort(inputs.begin(), inputs.end());
    for (const fs::path& input : inputs) {
        // Named first, so the last name printed is the one that crashed.
        std::printf("%s\n", input.c_str());
        std::fflush(stdout);
        std::ifstream file(input, std::ios::binary);
        const std::vector<char> bytes((std::istreambuf_iterator<char>(file)),
                                      std::istreambuf_iterator<char>());
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("replayed %zu inputs\n", inputs.size());
    // A corpus that went missing must not pass as an empty success.
    return inputs.empty() ? 1 : 0;
}
