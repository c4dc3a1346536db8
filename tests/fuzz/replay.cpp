// Stands in for the fuzzer: gives a target what is kept for it, seeds and past finds.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int, char** arguments) {
  std::vector<std::filesystem::path> inputs;
  for (const auto& entry : std::filesystem::directory_iterator(arguments[1]))
    inputs.push_back(entry.path());
  std::ranges::sort(inputs);
  for (const auto& input : inputs) {
    // The last name printed is that of the input that fails.
    std::cout << input.filename().string() << std::endl;
    std::ifstream file(input, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  }
  return inputs.empty() ? 1 : 0;
}
