// RegisterHandler is the owner's side of the register parameters and of the
// factory reset. It listens to the store for the commands
//   eParamID_RegisterSave = N    save the register parameters as preset N
//   eParamID_RegisterRecall = N  apply preset N (0: the factory values)
//   eParamID_RegisterLoad = N    write preset N's image to the preset file
//   eParamID_RegisterStore = N   take the preset file in as preset N
//   eParamID_FactorySettings = 1 ("FACTORY") or 2 ("HARD FACTORY")
// and carries each out on its own thread, reporting through the matching
// result parameter: in progress (1), then done (2), empty (4) or failed (3).
// A recall or an import is all or nothing: every value is checked against
// its descriptor before any is applied.
//
// A client that must know the outcome of its own command (configctl,
// configweb) sends it instead as a tokened request in
// eParamID_OwnerRegisterRequest; the handler runs it like the plain command
// (the result parameter moves as usual) and then appends "TOKEN STATE
// MESSAGE" to eParamID_OwnerRegisterOutcomes. Commands run one at a time in
// the order their Sets reached the store, so each answer belongs to exactly
// one request.
//
// DESIGN: ParamChanged runs on the writer's thread with the store's listener
// lock held, so it only queues the command (under `_mutex`) for the register
// thread, which alone writes to the store, the presets and the files. A
// client's Set therefore never waits for a preset operation.
//
// Ownership: the store and the PresetStore are borrowed and must outlive the
// handler. Start and Stop belong to the controlling thread.
#ifndef CLASSES_CONFIG_OWNER_REGISTER_HANDLER_H
#define CLASSES_CONFIG_OWNER_REGISTER_HANDLER_H

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>

#include "config/owner/store_worker.h"

class Config;
class ParamDescriptor;
class PresetStore;

class RegisterHandler : public StoreWorker {
 public:
  // What a command came to: a register result state (done, failed, empty)
  // and the text its requester is shown.
  struct Outcome {
    unsigned int state;
    std::string message;
  };

  static constexpr unsigned int kRegisterRecall = 0x05CDE9A4;
  static constexpr unsigned int kRegisterRecallResult = 0x4000E4C8;
  static constexpr unsigned int kRegisterSave = 0xAAB50096;
  static constexpr unsigned int kRegisterSaveResult = 0x7A9D2C71;
  static constexpr unsigned int kFactorySettings = 0xEA4F2E24;

  // `folder` is where preset files are handed over ("/tmp/zyn"). Load
  // creates it when missing with kFolderMode (configd's group, the unit's
  // processes, exchanges files there) and writes files with kFileMode
  // through a temporary file and a rename; Load and Store refuse a folder
  // that is a symlink, owned by another user or writable by others, and
  // anything in it that is not a regular file (see file_system.h).
  static constexpr unsigned int kFolderMode = 0770;
  static constexpr unsigned int kFileMode = 0660;
  RegisterHandler(Config* store, PresetStore* presets, std::string folder);
  ~RegisterHandler() override;

  // Whether `id` is one of the commands above.
  static bool IsCommand(unsigned int id);
  // Whether a parameter belongs in user presets.
  static bool InPresets(const ParamDescriptor* descriptor);

  bool ParamChanged(eParam_t id, unsigned int value, timeval when) override;
  bool ParamChanged(eParam_t id, std::string value, timeval when) override;

  // The commands; each sets its result parameter (Probe excepted) and
  // returns its outcome. Called on the register thread (or directly by
  // tests, with the thread not started).
  Outcome Save(unsigned int number);
  Outcome Recall(unsigned int number);
  Outcome Load(unsigned int number);
  Outcome Store(unsigned int number);
  Outcome Reset(bool hard);
  // Whether preset `number` holds anything; touches no file and no result.
  Outcome Probe(unsigned int number);

  // Parses a tokened request ("TOKEN OPERATION NUMBER"). False when it is
  // not one; `token` is still set when the text began with a valid token.
  static bool ParseRequest(const std::string& text, std::string& token, unsigned int& command,
                           unsigned int& number);

 private:
  // A command waiting for the register thread; `token` is empty for a plain
  // command, `command` 0 for a request that did not parse.
  struct Pending {
    unsigned int command;
    unsigned int value;
    std::string token;
  };

  void Run() override;
  Outcome Execute(const Pending& pending);
  // Appends the answer to a tokened request (register thread).
  void Answer(const std::string& token, const Outcome& outcome);
  // Checks every value of `values` and applies the ones that differ; on any
  // refusal nothing stays changed. False with the reason in `problem`.
  bool ApplyWhole(const std::string& values, std::string& problem);
  std::string PresetPath(unsigned int number) const;

  PresetStore* _presets;
  std::string _folder;
  std::deque<Pending> _queue;        // guarded by _mutex
  std::deque<std::string> _answers;  // register thread only: the newest last
};

#endif  // CLASSES_CONFIG_OWNER_REGISTER_HANDLER_H
