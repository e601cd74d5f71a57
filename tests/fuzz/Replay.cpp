// SPDX-License-Identifier: Apache-2.0
// Runs a fuzz target over the files of its corpus, for builds without a fuzzer.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// An exception ends the program, and with it the test. NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char** argv)
{
    if (argc < 2) {
        std::cerr << "Usage: " << argv[0] << " <folder>...\n";
        return 2;
    }
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
            if (!file) {
                std::cerr << "Cannot read " << entry.path() << '\n';
                return 1;
            }
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            ++count;
        }
    }
    std::cout << count << " inputs\n";
    return count == 0 ? 1 : 0;
}
