// WebApi answers configweb's JSON requests: the menu groups, one group's
// parameters with their descriptors and values, get and set of one
// parameter, configd's health, and preset save and recall. Every answer is
// a complete reply (status, type, body); failures are JSON objects with an
// "error" text: 404 for an unknown parameter, group or path, 400 for a
// malformed value or body (checked whole before anything is set), 403 for a
// parameter read-only to users (a generic one by the parameter it stands
// for now), 409 for a value the store refused (with the value it kept), 503
// while configd is not connected.
//
// Holds no state of its own beyond the session it reads through; Handle may
// be called from any HTTP connection thread at once.
#ifndef TOOLS_CONFIGWEB_WEB_API_H
#define TOOLS_CONFIGWEB_WEB_API_H

#include <string>

#include "common/json.h"

class Config;
class ParamDescriptor;

namespace configweb {

class DaemonSession;

struct WebReply {
  int status = 200;
  std::string contentType = "application/json";
  std::string body;
};

class WebApi {
 public:
  // How long a preset command waits for configd's result.
  static constexpr long kPresetTimeoutMs = 10000;

  explicit WebApi(DaemonSession& session) : _session(session) {}
  WebApi(const WebApi&) = delete;
  WebApi& operator=(const WebApi&) = delete;

  // The reply to `method` on `target` (path and query, still %-encoded).
  WebReply Handle(const std::string& method, const std::string& target, const std::string& body);

 private:
  WebReply Groups();
  WebReply Group(const std::string& number);
  WebReply GetParam(const std::string& name);
  WebReply SetParam(const std::string& name, const std::string& body);
  WebReply Preset(const std::string& number, const std::string& operation);
  WebReply Status();
  // {"ok":BOOL,"message":TEXT}: configd's health line; 503 with "configd
  // lost" while it is not connected, 502 when it publishes no health.
  WebReply Health();
  // The descriptor, current value and editing hints of one parameter.
  common::Json ParamJson(ParamDescriptor* descriptor, Config* config);

  DaemonSession& _session;
};

// Whether the page leaves `descriptor` out of its menus: the front panel's
// hidden ones, the menus' own bookkeeping values and those kept from remote
// interfaces.
bool HiddenFromPage(const ParamDescriptor* descriptor);
// The name of a menu group as the front panel's menu buttons show it.
std::string GroupName(int group);
// `text` with %XX escapes decoded; false for a broken escape.
bool UrlDecode(const std::string& text, std::string& decoded);

}  // namespace configweb

#endif  // TOOLS_CONFIGWEB_WEB_API_H
