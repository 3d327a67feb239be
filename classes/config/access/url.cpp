#include "config/access/url.h"

#include <cstdio>

namespace zyn {
namespace config {
namespace access {

bool url::parse(const std::string& text) {
  char work[kMaxText + 1];
  size_t length = text.copy(work, kMaxText);
  work[length] = '\0';
  for (size_t i = 0; i < length; ++i)
    if (work[i] == ':' || work[i] == '/') work[i] = ' ';

  char first[kMaxWord + 1];
  char second[kMaxWord + 1];
  char third[kMaxWord + 1];
  static_assert(kMaxWord == 99, "the widths in the format below");
  int matches = sscanf(work, "%99s %99s %99s", first, second, third);
  if (matches < 3) {
    fprintf(stderr, "url::parse - unable to parse url, found %d matches\n",
            matches < 0 ? 0 : matches);
    return false;
  }
  scheme = first;
  host = second;
  port = third;
  return true;
}

}  // namespace access
}  // namespace config
}  // namespace zyn
