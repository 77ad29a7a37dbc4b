// Runs a fuzz target over the files of the folders it is given: the seed corpus as a plain test.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argumentCount, char** arguments) {
    int files = 0;
    for (int index = 1; index < argumentCount; ++index) {
        for (const auto& entry : std::filesystem::directory_iterator(arguments[index])) {
            std::ifstream stream(entry.path(), std::ios::binary);
            const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(stream), {}};
            LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
            ++files;
        }
    }
    std::printf("%d inputs\n", files);
    return files == 0 ? 1 : 0;
}
