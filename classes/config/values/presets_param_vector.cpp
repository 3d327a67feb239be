#include "config/values/presets_param_vector.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <new>

#include "config/config.h"
#include "config/values/deserializer.h"
#include "config/values/file.h"
#include "config/values/serializer.h"
#include "support/ctimeval.h"

namespace zyn {
namespace config {
namespace values {

PresetsParamVector::PresetsParamVector()
    : data(nullptr), size(0), waitTimeoutMs(kDefaultWaitTimeoutMs) {}

PresetsParamVector::~PresetsParamVector() { ClearData(); }

void PresetsParamVector::Serialize(Serializer* serializer) {
  Presets::Serialize(serializer);
  serializer->Write("PresetsFile", data, size);
}

void PresetsParamVector::Deserialize(DeSerializer* deserializer) {
  Presets::Deserialize(deserializer);
  ClearData();
  deserializer->Read("PresetsFile", data, size);
}

char* PresetsParamVector::GetData(unsigned int& s) {
  s = size;
  return data;
}

void PresetsParamVector::SetData(const char* bytes, unsigned int s) {
  ClearData();
  if (bytes == nullptr || s == 0) return;
  data = new char[s];
  memcpy(data, bytes, s);
  size = s;
}

void PresetsParamVector::ClearData() {
  delete[] data;
  data = nullptr;
  size = 0;
}

bool PresetsParamVector::Slurp(const std::string& path) {
  // The hand-over folder is shared: a symlink is not followed, and a FIFO
  // or device there is refused like a file that cannot be opened.
  int fd = File::open_regular(path, O_RDONLY, 0);
  if (fd < 0) {
    perror("open failed");
    fprintf(stderr, "PresetsParamVector::Slurp - open %s failed\n", path.c_str());
    return false;
  }
  struct stat info;
  if (fstat(fd, &info) != 0) {
    close(fd);
    fprintf(stderr, "PresetsParamVector::Slurp - fstat failed\n");
    return false;
  }
  if (static_cast<unsigned long long>(info.st_size) > 0xFFFFFFFFull) {
    close(fd);
    fprintf(stderr, "PresetsParamVector::Slurp - %s too large\n", path.c_str());
    return false;
  }
  ClearData();
  size = static_cast<unsigned int>(info.st_size);
  data = new (std::nothrow) char[size];
  if (data == nullptr) {
    // Kept on purpose: a failed allocation reports success with no image
    // (no data, size 0).
    size = 0;
    close(fd);
    fprintf(stderr, "PresetsParamVector::Slurp - new failed\n");
    return true;
  }
  unsigned int done = 0;
  while (done < size) {
    ssize_t n = read(fd, data + done, size - done);
    if (n <= 0) break;
    done += static_cast<unsigned int>(n);
  }
  close(fd);
  if (done < size) {
    ClearData();
    fprintf(stderr, "PresetsParamVector::Slurp - read failed to read enough data\n");
    return false;
  }
  return true;
}

namespace {

bool Holds(const std::vector<unsigned int>& states, unsigned int state) {
  return std::find(states.begin(), states.end(), state) != states.end();
}

}  // namespace

std::string PresetsParamVector::PresetFileName(unsigned int preset) {
  return "/tmp/zyn/preset_" + std::to_string(preset) + ".bin";
}

bool PresetsParamVector::WaitForStates(Config* config, unsigned int paramID,
                                       std::vector<unsigned int>& goodStates,
                                       std::vector<unsigned int>& errorStates, long timeoutMs) {
  fprintf(stderr, "PresetsParamVector::WaitForStates - called\n");
  CTimeVal stopwatch;
  stopwatch.start();
  while (stopwatch.get_elapsed_ms() < timeoutMs) {
    unsigned int state = config->Get(paramID);
    if (Holds(goodStates, state)) {
      fprintf(stderr, "PresetsParamVector::WaitForStates - normal return state = %d\n",
              static_cast<int>(state));
      return true;
    }
    // The number printed is the store's ID, not the preset's.
    if (Holds(errorStates, state)) {
      fprintf(stderr,
              "PresetsParamVector::WaitForStates - detected an error state while waiting for "
              "preset %d\n",
              static_cast<int>(config->GetConfigID()));
      return false;
    }
    timespec pause = {0, kPollIntervalMs * 1000000};
    nanosleep(&pause, nullptr);
  }
  fprintf(stderr,
          "PresetsParamVector::WaitForStates - detected an error while waiting for preset %d\n",
          static_cast<int>(config->GetConfigID()));
  return false;
}

bool PresetsParamVector::Load(eConfigID_t preset, Config* config) {
  if (config == nullptr) {
    fprintf(stderr, "PresetsParamVector::Load - failed to get current config\n");
    return false;
  }
  config->Set(kRegisterLoadResultParamID, kRegisterInProgress);
  config->Set(kRegisterLoadParamID, static_cast<unsigned int>(preset));
  std::vector<unsigned int> good = {kRegisterDone};
  std::vector<unsigned int> errors = {kRegisterFailed, kRegisterEmpty};
  if (!WaitForStates(config, kRegisterLoadResultParamID, good, errors, waitTimeoutMs)) {
    fprintf(stderr, "PresetsParamVector::Load - error/empty/timeout waiting for load\n");
    return false;
  }
  unsigned int state = config->Get(kRegisterLoadResultParamID);
  if (state == kRegisterDone) {
    std::string path = PresetFileName(static_cast<unsigned int>(preset));
    fprintf(stderr, "PresetsParamVector::Load - slurping %s preset file\n", path.c_str());
    if (!Slurp(path)) {
      perror("PresetsParamVector::Load");
      return false;
    }
    unlink(path.c_str());
    return true;
  }
  if (state == kRegisterEmpty) {
    ClearData();
    return false;
  }
  fprintf(stderr, "PresetsParamVector::Load - unknown result %d\n", static_cast<int>(state));
  return false;
}

bool PresetsParamVector::Store(eConfigID_t preset, Config* config) {
  if (data == nullptr || size == 0) return false;
  if (config == nullptr) {
    fprintf(stderr, "PresetsParamVector::Store - failed to get current config\n");
    return false;
  }
  // Preset 0 holds the factory values; the register parameter would clamp
  // it to preset 1 and overwrite that one instead.
  if (preset == 0) {
    fprintf(stderr, "PresetsParamVector::Store - preset 0 is the factory preset, not stored\n");
    return false;
  }
  std::string path = PresetFileName(static_cast<unsigned int>(preset));
  if (!File::write_file(path, data, size)) {
    perror("PresetsParamVector::Save");
    return false;
  }
  config->Set(kRegisterStoreResultParamID, kRegisterInProgress);
  config->Set(kRegisterStoreParamID, static_cast<unsigned int>(preset));
  std::vector<unsigned int> good = {kRegisterDone};
  std::vector<unsigned int> errors = {kRegisterFailed, kRegisterEmpty};
  bool stored = WaitForStates(config, kRegisterStoreResultParamID, good, errors, waitTimeoutMs);
  if (!stored) fprintf(stderr, "PresetsParamVector::Store - WaitForState failed\n");
  unlink(path.c_str());
  return stored;
}

}  // namespace values
}  // namespace config
}  // namespace zyn
