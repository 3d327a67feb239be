#include "config/access/dump_context.h"

#include <execinfo.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace zyn {
namespace config {
namespace access {

void dump_context() {
  constexpr int kMaxFrames = 4096;
  // On the heap: connection threads run on small stacks.
  std::unique_ptr<void*[]> frames(new void*[kMaxFrames]);
  int count = backtrace(frames.get(), kMaxFrames);
  backtrace_symbols_fd(frames.get(), count, 2);
  fflush(stdout);  // our own pending output goes before the child's
  int status = system("vmstat");
  (void)status;  // a missing vmstat only shortens the report
}

}  // namespace access
}  // namespace config
}  // namespace zyn
