// OwnerRequest is one preset or reset command sent to configd with a token
// of its own (eParamID_OwnerRegisterRequest), so that its requester reads
// configd's answer to this command and never another client's: configd runs
// such commands one at a time and appends "TOKEN STATE MESSAGE" to
// eParamID_OwnerRegisterOutcomes, where Poll looks for the token.
//
// Used by configctl and configweb. Each call takes a connected Config that
// the caller may hand to other work between calls; an object is used by one
// thread.
#ifndef TOOLS_COMMON_OWNER_REQUEST_H
#define TOOLS_COMMON_OWNER_REQUEST_H

#include <string>

class Config;

namespace common {

class OwnerRequest {
 public:
  // `operation` is one of kOwnerOperations ("save", "recall", ...);
  // `number` the preset (1 or 2 for "reset"). Picks a fresh token.
  OwnerRequest(std::string operation, unsigned int number);

  // Sends the request. False when configd did not take it (an older
  // configd, or a store that is not an owner's).
  bool Send(Config* client);
  // Looks once for the answer; true once it is there.
  bool Poll(Config* client);
  // Send, then Poll every `pollMs` for at most `timeoutMs`. True when
  // answered; false when not sent or not answered in time (`Failure` says
  // which).
  bool Run(Config* client, long timeoutMs, long pollMs = 5);

  [[nodiscard]] unsigned int GetState() const { return _state; }
  [[nodiscard]] const std::string& GetMessage() const { return _message; }
  // Why Run gave no answer: "configd did not take the request" or "configd
  // did not answer in time".
  [[nodiscard]] std::string Failure() const;
  [[nodiscard]] const std::string& GetToken() const { return _token; }

 private:
  std::string _operation;
  unsigned int _number;
  std::string _token;
  bool _sent = false;
  bool _answered = false;
  unsigned int _state = 0;
  std::string _message;
};

}  // namespace common

#endif  // TOOLS_COMMON_OWNER_REQUEST_H
