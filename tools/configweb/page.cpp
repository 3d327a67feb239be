#include "configweb/page.h"

namespace configweb {

const PageFile* FindPageFile(const std::string& path) {
  std::string wanted = path == "/" ? "/index.html" : path;
  for (size_t i = 0; i < kPageFileCount; ++i)
    if (wanted == kPageFiles[i].path) return &kPageFiles[i];
  return nullptr;
}

}  // namespace configweb
