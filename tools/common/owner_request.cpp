#include "common/owner_request.h"

#include <time.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "config/config.h"
#include "config/descriptors/owner_params.h"

namespace common {

namespace {

std::string NewToken() {
  static std::mt19937 generator{std::random_device{}()};
  unsigned int value = 0;
  while (value == 0) value = static_cast<unsigned int>(generator());
  char text[9];
  snprintf(text, sizeof text, "%08x", value);
  return text;
}

}  // namespace

OwnerRequest::OwnerRequest(std::string operation, unsigned int number)
    : _operation(std::move(operation)), _number(number), _token(NewToken()) {}

bool OwnerRequest::Send(Config* client) {
  _sent = client->Set(kOwnerRegisterRequestParamID,
                      _token + " " + _operation + " " + std::to_string(_number));
  return _sent;
}

bool OwnerRequest::Poll(Config* client) {
  std::string answers;
  if (!_sent || !client->Get(kOwnerRegisterOutcomesParamID, answers)) return false;
  // The newest answer is the last line; a token appears once.
  std::string head = _token + " ";
  size_t at = answers.rfind("\n" + head);
  if (at != std::string::npos) {
    ++at;
  } else if (answers.compare(0, head.size(), head) == 0) {
    at = 0;
  } else {
    return false;
  }
  size_t end = answers.find('\n', at);
  std::string line =
      answers.substr(at + head.size(), end == std::string::npos ? end : end - at - head.size());
  char* rest = nullptr;
  _state = static_cast<unsigned int>(strtoul(line.c_str(), &rest, 10));
  _message = *rest == ' ' ? rest + 1 : rest;
  _answered = true;
  return true;
}

bool OwnerRequest::Run(Config* client, long timeoutMs, long pollMs) {
  if (!Send(client)) return false;
  auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
  while (!Poll(client)) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    timespec pause = {pollMs / 1000, (pollMs % 1000) * 1000000};
    nanosleep(&pause, nullptr);
  }
  return true;
}

std::string OwnerRequest::Failure() const {
  if (!_sent) return "configd did not take the request";
  return _answered ? std::string() : "configd did not answer in time";
}

}  // namespace common
