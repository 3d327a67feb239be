// Replays inputs through a fuzz target without libFuzzer: every file named
// on the command line, and every regular file of every folder named, is fed
// once to LLVMFuzzerTestOneInput (after LLVMFuzzerInitialize, if the target
// has one). Arguments starting with '-' are the target's options (-verbose=1
// keeps standard error). Exits non-zero when a path cannot be read or has no
// inputs at all; a finding ends the process as it would under the fuzzer.
// Standard error is silenced (the library reports every bad input there)
// unless -verbose=N with N > 0 is given; sanitizer reports still get out.
//
// The inputs run on one thread with the small stack of the library's
// connection threads (256 KiB), so that deep recursion on a crafted input
// shows here already, with inputs far smaller than the main thread's stack
// would need.
#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" __attribute__((weak)) void __sanitizer_set_report_fd(void* fd);

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

constexpr size_t kStackSize = 256 * 1024;

// Points standard error at /dev/null, keeping a copy of it for the
// sanitizers' reports.
void QuietUnlessVerbose(int argc, char** argv) {
  for (int i = 1; i < argc; ++i)
    if (strncmp(argv[i], "-verbose=", 9) == 0 && strcmp(argv[i] + 9, "0") != 0) return;
  int null = open("/dev/null", O_WRONLY);
  if (null < 0) return;
  int reports = dup(STDERR_FILENO);
  if (reports >= 0 && __sanitizer_set_report_fd != nullptr)
    __sanitizer_set_report_fd(reinterpret_cast<void*>(static_cast<intptr_t>(reports)));
  dup2(null, STDERR_FILENO);
  close(null);
}

struct Replay {
  int argc;
  char** argv;
  size_t replayed = 0;
  int status = 0;
};

void* ReplayAll(void* arg) {
  Replay& run = *static_cast<Replay*>(arg);
  int argc = run.argc;
  char** argv = run.argv;
  size_t& replayed = run.replayed;
  for (int i = 1; i < argc; ++i) {
    if (argv[i][0] == '-') continue;
    std::vector<std::string> files = Inputs(argv[i]);
    for (const std::string& file : files) {
      std::ifstream in(file, std::ios::binary);
      if (!in) {
        fprintf(stdout, "replay: cannot read %s\n", file.c_str());
        run.status = 1;
        return nullptr;
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
  return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  QuietUnlessVerbose(argc, argv);
  if (LLVMFuzzerInitialize != nullptr) LLVMFuzzerInitialize(&argc, &argv);
  Replay run{argc, argv};
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, kStackSize);
  pthread_t thread;
  if (pthread_create(&thread, &attributes, ReplayAll, &run) != 0) {
    fprintf(stdout, "replay: cannot start the replay thread\n");
    return 1;
  }
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  fprintf(stdout, "replay: %zu inputs\n", run.replayed);
  return run.status == 0 && run.replayed > 0 ? 0 : 1;
}
