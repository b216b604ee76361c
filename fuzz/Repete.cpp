// Stands in for libFuzzer where nothing is looked for: runs a fuzzer once over each file of a directory. Fails when
// there is none, for a run of nothing would prove nothing.

#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *pBytes, std::size_t qtd);

namespace {

std::vector<std::uint8_t> Le(const std::filesystem::path &arquivo) {
  std::ifstream entrada(arquivo, std::ios::binary);
  if (!entrada) {
    throw std::runtime_error("cannot read " + arquivo.string());
  }
  std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(entrada), std::istreambuf_iterator<char>()};
  bytes.shrink_to_fit();  // so that a read behind the end is seen
  return bytes;
}

}  // namespace

int main(int argc, char **argv) {
  try {
    if (argc != 2) {
      throw std::runtime_error("usage: fuzz_<target> <directory of inputs>");
    }
    // In the order of their names, so that two runs are alike.
    const std::set<std::filesystem::path> arquivos{std::filesystem::directory_iterator(argv[1]),
                                                   std::filesystem::directory_iterator()};
    if (arquivos.empty()) {
      throw std::runtime_error(std::string("no input in ") + argv[1]);
    }
    for (const std::filesystem::path &arquivo : arquivos) {
      std::printf("%s\n", arquivo.c_str());
      std::fflush(stdout);  // the last one named is the one that shows a finding
      const std::vector<std::uint8_t> bytes = Le(arquivo);
      LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    return 0;
  } catch (const std::exception &erro) {
    std::fprintf(stderr, "%s\n", erro.what());
    return 1;
  }
}
