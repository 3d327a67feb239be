// WebApi answers configweb's JSON requests: the menu groups, one group's
// parameters with their descriptors and values, get and set of one
// parameter, configd's health, and preset save and recall. Every answer is
// a complete reply (status, type, body); failures are JSON objects with an
// "error" text: 404 for an unknown parameter, group or path, 400 for a
// malformed value or body (checked whole before anything is set), 403 for a
// parameter read-only to users (a generic one by the parameter it stands
// for now), 409 for a value the store refused (with the value it kept), 503
// while configd is not connected. Paths outside /api/ are the page's files.
//
// Holds no state of its own beyond the session it reads through and what it
// makes once from the catalogue, which does not change while the program
// runs (each descriptor's JSON, each group's brief form), under _keptLock;
// Handle may be called from any HTTP connection thread at once.
#ifndef TOOLS_CONFIGWEB_WEB_API_H
#define TOOLS_CONFIGWEB_WEB_API_H

#include <mutex>
#include <string>
#include <unordered_map>

#include "common/json.h"

class Config;
class ParamDescriptor;

namespace common {
class OwnerRequest;
struct ParamValue;
}  // namespace common

namespace configweb {

class DaemonSession;

struct WebReply {
  int status = 200;
  std::string contentType = "application/json";
  std::string body;
  // A page file's validator: with one, the server answers a matching
  // If-None-Match with 304 and lets the browser keep it ("no-cache").
  std::string etag;
};

class WebApi {
 public:
  // How long a preset command waits for configd's result.
  static constexpr long kPresetTimeoutMs = 10000;
  // The largest preset file the page may import (the request body limit of
  // that one path).
  static constexpr size_t kPresetFileLimit = 1024 * 1024;

  explicit WebApi(DaemonSession& session) : _session(session) {}
  WebApi(const WebApi&) = delete;
  WebApi& operator=(const WebApi&) = delete;

  // The reply to `method` on `target` (path and query, still %-encoded).
  WebReply Handle(const std::string& method, const std::string& target, const std::string& body);

 private:
  WebReply Groups();
  // One group's parameters; `query` may ask for one section
  // ("section=K", menu numbers "K.*") or for names and menu numbers only
  // ("values=no").
  WebReply Group(const std::string& number, const std::string& query);
  WebReply GetParam(const std::string& name);
  WebReply SetParam(const std::string& name, const std::string& body);
  // save (body {"name":TEXT} optional), recall, or the preset file's
  // export (GET) and import (PUT, the file as the body).
  WebReply Preset(const std::string& number, const std::string& operation, const std::string& body);
  // Every preset: number, name and "factory", "saved" or "empty".
  WebReply PresetList();
  WebReply PresetExport(unsigned int preset);
  WebReply PresetImport(unsigned int preset, const std::string& image);
  // "factory" or "hard": the owner's factory reset, as this page's request.
  WebReply FactoryReset(const std::string& kind);
  // Who the unit is: system name, product, software version, serial
  // number and current IP address, with the IDs that change them.
  WebReply Unit();
  // Every parameter the page shows, by names and group, for its search.
  WebReply Index();
  // The generic parameters of a group with what they stand for now.
  WebReply Mapping(const std::string& number);
  // Runs `request` as this page's own and waits for configd's answer; an
  // error reply in `failure` when there is none.
  bool RunOwnerRequest(common::OwnerRequest& request, WebReply& failure);
  WebReply Status();
  // {"ok":BOOL,"message":TEXT}: configd's health line; 503 with "configd
  // lost" while it is not connected, 502 when it publishes no health.
  WebReply Health();
  // The descriptor, editing hints and, when `value` is given, the current
  // value of one parameter.
  common::Json ParamJson(ParamDescriptor* descriptor, Config* config,
                         const common::ParamValue* value);

  // A copy of the descriptor's JSON, made on first use and kept.
  common::Json Describe(ParamDescriptor* descriptor);

  DaemonSession& _session;
  std::mutex _keptLock;
  std::unordered_map<unsigned int, common::Json> _described;  // guarded by _keptLock
  std::unordered_map<int, std::string> _briefs;               // guarded by _keptLock
};

// Whether the page leaves `descriptor` out of its menus: the front panel's
// hidden ones, the menus' own bookkeeping values and those kept from remote
// interfaces.
bool HiddenFromPage(const ParamDescriptor* descriptor);
// The name of a menu group as the front panel's menu buttons show it.
std::string GroupName(int group);
// Whether `target` is the one request whose body may be a preset file.
bool TakesPresetFile(const std::string& method, const std::string& target);
// `text` with %XX escapes decoded; false for a broken escape.
bool UrlDecode(const std::string& text, std::string& decoded);

}  // namespace configweb

#endif  // TOOLS_CONFIGWEB_WEB_API_H
