// dump_context writes a diagnostic snapshot of the process to standard
// error: the calling thread's backtrace (up to 4096 frames, symbolised by
// backtrace_symbols_fd on descriptor 2), then the output of the shell command
// "vmstat" (on standard output). Used when a wait times out unexpectedly.
//
// Thread-safety: callable from any thread; it allocates one frame table per
// call and runs a child process, so it is meant for failure paths only.
#ifndef CLASSES_CONFIG_ACCESS_DUMP_CONTEXT_H
#define CLASSES_CONFIG_ACCESS_DUMP_CONTEXT_H

namespace zyn {
namespace config {
namespace access {

void dump_context();

}  // namespace access
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_ACCESS_DUMP_CONTEXT_H
