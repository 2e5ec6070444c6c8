// Makes a fuzz target an ordinary program: runs it over files, or over all files of folders.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  std::size_t count = 0;
  const auto replay = [&](const std::filesystem::path& path) {
    std::ifstream from(path, std::ios::binary);
    const std::vector<char> bytes((std::istreambuf_iterator<char>(from)), std::istreambuf_iterator<char>());
    (void)LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ++count;
  };
  for (int i = 1; i < argc; ++i) {
    if (std::filesystem::is_directory(argv[i])) {
      for (const auto& entry : std::filesystem::directory_iterator(argv[i])) replay(entry.path());
    } else {
      replay(argv[i]);
    }
  }
  std::cout << count << " inputs replayed\n";
  return count > 0 ? 0 : 1;
}
