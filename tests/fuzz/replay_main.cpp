// Runs a fuzz target over kept inputs: every file that is named, and every file of a directory that
// is named. An input is copied to a block of exactly its size, so that AddressSanitizer sees a read
// behind its end.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz.h"

namespace {

void list_inputs(const std::filesystem::path& path, std::vector<std::filesystem::path>& inputs) {
    if (!std::filesystem::is_directory(path)) {
        inputs.push_back(path);
        return;
    }
    for (const auto& entry : std::filesystem::directory_iterator(path))
        if (entry.is_regular_file()) inputs.push_back(entry.path());
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::filesystem::path> inputs;
    for (int i = 1; i < argc; ++i) list_inputs(argv[i], inputs);
    std::sort(inputs.begin(), inputs.end());
    for (const auto& path : inputs) {
        std::printf("%s\n", path.c_str());
        std::fflush(stdout); // the last name is that of the input that broke something
        std::ifstream in(path, std::ios::binary);
        if (!in) return 1;
        std::vector<uint8_t> bytes(std::istreambuf_iterator<char>(in), {});
        bytes.shrink_to_fit();
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::printf("%zu inputs\n", inputs.size());
    return inputs.empty() ? 1 : 0;
}
