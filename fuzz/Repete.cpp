// Stands in for libFuzzer where nothing is looked for: runs a fuzzer once over each file of a directory. Fails when
// there is none, for a run of nothing would prove nothing.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <vector>

#include "fuzz/Entrada.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *pBytes, std::size_t qtd);

int main(int argc, char **argv) {
  fuzz::Exige(argc == 2, "one argument, the directory of inputs");
  // In the order of their names, so that two runs are alike.
  const std::set<std::filesystem::path> arquivos{std::filesystem::directory_iterator(argv[1]),
                                                 std::filesystem::directory_iterator()};
  fuzz::Exige(!arquivos.empty(), "inputs to run over");
  for (const std::filesystem::path &arquivo : arquivos) {
    std::printf("%s\n", arquivo.c_str());
    std::fflush(stdout);  // the last one named is the one that shows a finding
    std::ifstream entrada(arquivo, std::ios::binary);
    fuzz::Exige(entrada.is_open(), "an input that can be read");
    std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(entrada), std::istreambuf_iterator<char>()};
    bytes.shrink_to_fit();  // so that a read behind the end is seen
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  }
  return 0;
}
