// Runs a fuzz target once on each given file and each file in the given folders, with any compiler
// and sanitizer. Paths that do not exist are skipped.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/Require.h"

int main(int count, char** arguments) {
  namespace fs = std::filesystem;
  std::vector<fs::path> inputs;
  for (int i = 1; i < count; ++i) {
    if (fs::is_regular_file(arguments[i])) inputs.emplace_back(arguments[i]);
    if (!fs::is_directory(arguments[i])) continue;
    for (const auto& entry : fs::recursive_directory_iterator(arguments[i])) {
      if (entry.is_regular_file()) inputs.push_back(entry.path());
    }
  }
  for (const fs::path& input : inputs) {
    // Print the path first, because a finding ends the program.
    std::fprintf(stderr, "%s\n", input.c_str());
    std::ifstream file(input, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  }
  std::printf("%zu inputs\n", inputs.size());
  return inputs.empty() ? 1 : 0;
}
