// Replays inputs through a fuzz target without libFuzzer: every file named
// on the command line, and every regular file of every folder named, is fed
// once to LLVMFuzzerTestOneInput (after LLVMFuzzerInitialize, if the target
// has one). Arguments starting with '-' are the target's options (-verbose=1
// keeps standard error). Exits non-zero when a path cannot be read or has no
// inputs at all; a finding ends the process as it would under the fuzzer.
#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace {

bool IsFolder(const std::string& path) {
  struct stat info;
  return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// The files of `path`, in name order so that runs repeat exactly.
std::vector<std::string> Inputs(const std::string& path) {
  if (!IsFolder(path)) return {path};
  std::vector<std::string> files;
  DIR* folder = opendir(path.c_str());
  if (folder == nullptr) return files;
  while (dirent* entry = readdir(folder)) {
    std::string name = entry->d_name;
    if (name[0] == '.') continue;
    std::string file = path + "/" + name;
    if (!IsFolder(file)) files.push_back(file);
  }
  closedir(folder);
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

int main(int argc, char** argv) {
  if (LLVMFuzzerInitialize != nullptr) LLVMFuzzerInitialize(&argc, &argv);
  size_t replayed = 0;
  for (int i = 1; i < argc; ++i) {
    if (argv[i][0] == '-') continue;
    std::vector<std::string> files = Inputs(argv[i]);
    for (const std::string& file : files) {
      std::ifstream in(file, std::ios::binary);
      if (!in) {
        fprintf(stdout, "replay: cannot read %s\n", file.c_str());
        return 1;
      }
      std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                                 std::istreambuf_iterator<char>());
      // A copy of exactly the input's size, as the fuzzer hands it over.
      std::unique_ptr<uint8_t[]> input(new uint8_t[bytes.size()]);
      std::copy(bytes.begin(), bytes.end(), input.get());
      LLVMFuzzerTestOneInput(input.get(), bytes.size());
      ++replayed;
    }
  }
  fprintf(stdout, "replay: %zu inputs\n", replayed);
  return replayed > 0 ? 0 : 1;
}
