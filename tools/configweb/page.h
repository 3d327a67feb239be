// The page configweb serves: the files under tools/configweb/page/, built
// into the program (embed_page.cmake writes them into a generated source),
// so the unit needs no files and the browser fetches nothing from elsewhere.
// Each file has a strong ETag from its bytes, for conditional requests.
#ifndef TOOLS_CONFIGWEB_PAGE_H
#define TOOLS_CONFIGWEB_PAGE_H

#include <cstddef>
#include <string>

namespace configweb {

struct PageFile {
  const char* path;  // "/index.html"
  const char* contentType;
  const char* etag;  // quoted, as sent
  const unsigned char* data;
  size_t size;
};

extern const PageFile kPageFiles[];
extern const size_t kPageFileCount;

// The file served at `path` ("/" is "/index.html"); null when there is none.
const PageFile* FindPageFile(const std::string& path);

}  // namespace configweb

#endif  // TOOLS_CONFIGWEB_PAGE_H
