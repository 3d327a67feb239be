// url splits a configuration URI such as "socket://127.0.0.1:43110" into its
// scheme, host and port words; the caller converts the port. Anything after
// the third word (a path, "caching=true") is ignored by the split.
//
// A plain value type without a lock: one thread at a time per object.
#ifndef CLASSES_CONFIG_ACCESS_URL_H
#define CLASSES_CONFIG_ACCESS_URL_H

#include <string>

namespace zyn {
namespace config {
namespace access {

class url {
 public:
  // Every ':' and '/' separates words. With three words or more, stores the
  // first three and returns true. With fewer, reports
  // "url::parse - unable to parse url, found <n> matches", leaves the fields
  // unchanged and returns false. Only the first kMaxText bytes of the text
  // are looked at, and each word keeps at most kMaxWord bytes (a longer run
  // continues as the next word).
  bool parse(const std::string& text);

  static constexpr size_t kMaxText = 1024;
  static constexpr size_t kMaxWord = 99;

  std::string scheme;
  std::string host;
  std::string port;
};

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_URL_H
