// configweb's HTTP API and event stream against a real configd: menus in
// menu order, get and set with the store's clamping and refusals, every
// kind of bad request, changes made elsewhere arriving on the stream, and
// the loss and return of configd.
#include <arpa/inet.h>
#include <dirent.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>

#include "config/access/socket_factory.h"
#include "config/config.h"
#include "config/descriptors/param_descriptor.h"
#include "config/descriptors/param_groups.h"
#include "configweb/page.h"
#include "configweb/value_cache.h"
#include "web_fixture.h"

using namespace web_test;

namespace {

// Shuts down every socket of this process connected to 127.0.0.1:`port`:
// configweb's link to configd breaks as when configd cuts it, while configd
// stays up. The number of sockets cut.
int CutConnectionsTo(int port) {
  int cut = 0;
  DIR* fds = opendir("/proc/self/fd");
  if (fds == nullptr) return 0;
  while (dirent* entry = readdir(fds)) {
    int fd = atoi(entry->d_name);
    sockaddr_in peer{};
    socklen_t length = sizeof peer;
    if (fd <= 2 || getpeername(fd, reinterpret_cast<sockaddr*>(&peer), &length) != 0) continue;
    if (peer.sin_family == AF_INET && ntohs(peer.sin_port) == port &&
        ::shutdown(fd, SHUT_RDWR) == 0)
      ++cut;
  }
  closedir(fds);
  return cut;
}

}  // namespace

TEST_F(WebTest, GetAndSetGoThroughTheStoreSayWhatItKeptAndRefuseBeforeStoring) {
  // A name in any form configctl takes; here one %-escaped.
  EXPECT_EQ("200 Unlocked", Get("/api/params/eParamID%5FFrontPanelLock").With("value_name"));
  EXPECT_EQ("200 accepted",
            Put("/api/params/FrontPanelLock", "{\"value\":\"Locked\"}").With("result"));
  EXPECT_EQ("eParamID_FrontPanelLock = 1 (Locked)\n", Ctl({"get", "FrontPanelLock"}).out);

  HttpReply high = Put("/api/params/DisplayIntensity", "{\"value\": 250}");
  EXPECT_EQ("200 clamped", high.With("result"));
  EXPECT_EQ("200 100", high.With("value"));
  EXPECT_EQ("200 250", high.With("requested"));
  EXPECT_EQ("eParamID_DisplayIntensity = 100 %\n", Ctl({"get", "DisplayIntensity"}).out);

  EXPECT_TRUE(Has(Put("/api/params/FrontPanelLock", "{\"value\":7}").With("error"),
                  "400 '7' is not a value of"));
  EXPECT_EQ("eParamID_FrontPanelLock = 1 (Locked)\n", Ctl({"get", "FrontPanelLock"}).out);

  EXPECT_EQ(200, Put("/api/params/SystemName", "{\"value\":\"rack \\\"7\\\" \\u00e9\"}").status);
  EXPECT_EQ("eParamID_SystemName = rack \"7\" \xC3\xA9\n", Ctl({"get", "SystemName"}).out);

  // Read-only and bad values are refused before anything is stored.
  struct Case {
    const char* param;
    const char* body;
    int status;
    const char* error;
  };
  const Case cases[] = {
      {"SystemName", "{\"value\":\"ab\\u0000cd\"}", 400, "holds U+0000 (byte 2)"},
      {"SystemName", "{\"value\":\"\"}", 400, "takes 1 to 20 bytes, not 0"},
      {"ReferenceAlarm", "{\"value\":1}", 403, "eParamID_ReferenceAlarm is read-only"},
      {"SoftwareVersion", "{\"value\":\"hacked\"}", 403, "is read-only"},
      // A generic parameter is as writable as the one it stands for (DHCP here).
      {"IPAddress", "{\"value\":\"127.0.0.9\"}", 403,
       "eParamID_IPAddress_DHCP is read-only (eParamID_IPAddress stands for it now)"},
  };
  const std::string before = Ctl({"get", "SystemName", "ReferenceAlarm", "IPAddress_DHCP"}).out;
  for (const Case& c : cases) {
    HttpReply reply = Put(std::string("/api/params/") + c.param, c.body);
    EXPECT_EQ(c.status, reply.status) << c.param << " " << c.body;
    EXPECT_TRUE(Has(reply.json.get<std::string>("error", ""), c.error)) << reply.body;
  }
  EXPECT_EQ(before, Ctl({"get", "SystemName", "ReferenceAlarm", "IPAddress_DHCP"}).out);

  // The listings say so, and the page shows such values as text.
  auto readonly = [this](int group, const std::string& param) {
    HttpReply listed = Get("/api/groups/" + std::to_string(group));
    for (const auto& p : listed.json.get_child("params"))
      if (p.second.get<std::string>("param") == param) return p.second.get<std::string>("readonly");
    return std::string("not listed");
  };
  EXPECT_EQ("true", readonly(kStatusMenuGroup, "eParamID_ReferenceAlarm"));
  EXPECT_EQ("true", readonly(kConfigMenuGroup, "eParamID_IPAddress"));
  EXPECT_EQ("false", readonly(kConfigMenuGroup, "eParamID_SuppressReferenceAlarm"));
  ASSERT_EQ(0, Ctl({"set", "IPConfig", "1"}).exitCode);
  EXPECT_EQ("false", readonly(kConfigMenuGroup, "eParamID_IPAddress"));
}

TEST_F(WebTest, BadRequestsGetClearErrorsAndTheServerKeepsServing) {
  struct Case {
    const char* method;
    const char* target;
    std::string body;
    int status;
    const char* error;  // part of the "error" text
  };
  const Case cases[] = {
      {"GET", "/api/params/NoSuchThing", "", 404, "unknown parameter 'NoSuchThing'"},
      {"PUT", "/api/params/NoSuchThing", "{\"value\":1}", 404, "unknown parameter"},
      {"PUT", "/api/params/SystemName", "{\"value\":", 400, "not JSON"},
      {"PUT", "/api/params/SystemName", "{\"other\":1}", 400, "\"value\" member"},
      {"PUT", "/api/params/SystemName", "{\"value\":{\"a\":1}}", 400, "\"value\" member"},
      {"GET", "/api/params/%zz", "", 400, "%-escape"},
      {"GET", "/api/nothing", "", 404, "no such API path"},
      {"DELETE", "/api/params/SystemName", "", 405, "GET, PUT or POST"},
      {"PUT", "/api/params/SystemName", std::string(20000, 'x'), 413, "too large"},
  };
  for (const Case& c : cases) {
    HttpReply reply = Request(server->GetPort(), c.method, c.target, c.body);
    EXPECT_EQ(c.status, reply.status) << c.method << " " << c.target;
    EXPECT_TRUE(Has(reply.json.get<std::string>("error", ""), c.error))
        << c.method << " " << c.target << ": " << reply.body;
  }
  std::string bigHeader =
      "GET / HTTP/1.1\r\nHost: x\r\nX-Pad: " + std::string(20000, 'p') + "\r\n\r\n";
  EXPECT_EQ(431, Request(server->GetPort(), "", "", "", bigHeader).status);
  EXPECT_EQ(400, Request(server->GetPort(), "", "", "", "NONSENSE\r\n\r\n").status);
  EXPECT_EQ("200 zyn-kr-9", Get("/api/params/SystemName").With("value"))
      << "the server stopped serving";
}

TEST_F(WebTest, TheEventStreamCarriesChangesAndACutLinkIsMadeAgainWithAResyncFrame) {
  EventStream stream;
  ASSERT_TRUE(OpenStream(stream));
  std::string data;
  ASSERT_TRUE(SetUntilHeard(stream, {"SystemName", "from-ctl-"}, "from-ctl-", &data))
      << "no change arrived";
  EXPECT_TRUE(Has(data, "\"param\":\"eParamID_SystemName\"")) << data;
  // Reads are answered from values the events keep current: once the page
  // has the change, so has a read.
  Get("/api/params/SystemName");
  Ctl({"set", "SystemName", "read-after"});
  ASSERT_TRUE(stream.WaitFor("read-after", kEventMs));
  EXPECT_EQ("200 read-after", Get("/api/params/SystemName").With("value"));

  EventStream second;
  ASSERT_TRUE(OpenStream(second));
  EXPECT_EQ(200, Put("/api/params/FrontPanelLock", "{\"value\":1}").status);
  EXPECT_TRUE(stream.WaitFor("\"value_name\":\"Locked\"", kEventMs, &data)) << "first stream";
  EXPECT_TRUE(second.WaitFor("\"value_name\":\"Locked\"", kEventMs, &data)) << "second stream";

  // A link to a running configd that is cut is made again with a resync frame.
  ASSERT_EQ(200, Put("/api/params/SystemName", "{\"value\":\"before-cut\"}").status);
  ASSERT_TRUE(stream.WaitFor("before-cut", kEventMs));
  ASSERT_GT(CutConnectionsTo(daemon.port), 0);
  ASSERT_TRUE(stream.WaitFor("\"values\":", kEventMs, &data)) << "no resync frame";
  EXPECT_TRUE(Has(data, "\"connected\":true")) << data;
  EXPECT_TRUE(Has(data, "\"value\":\"before-cut\"")) << "values the page was sent: " << data;
  EXPECT_TRUE(SetUntilHeard(stream, {"SystemName", "after-cut-"}, "after-cut-"))
      << "changes after the cut did not arrive";
  EXPECT_EQ(0, stream.lostFrames) << "configd was up all along";
}

TEST_F(WebTest, ALostDaemonIsShownAndTheLinkComesBackWithIt) {
  EventStream stream;
  ASSERT_TRUE(OpenStream(stream));
  EXPECT_EQ(0, daemon.Stop(SIGTERM).exitCode);
  EXPECT_TRUE(stream.WaitFor("\"connected\":false", kEventMs));
  HttpReply down = Get("/api/groups/2");
  EXPECT_EQ(503, down.status);
  EXPECT_TRUE(Has(down.json.get<std::string>("error", ""), "not reachable"));
  HttpReply lost = Get("/api/health");
  EXPECT_EQ(503, lost.status);
  EXPECT_EQ(503, Put("/api/params/FrontPanelLock", "{\"value\":\"Locked\"}").status);
  EXPECT_EQ("configd lost", lost.json.get<std::string>("message", ""));

  daemon.process = std::make_unique<tools_test::ChildProcess>();
  ASSERT_TRUE(daemon.process->Start(tools_test::ConfigdArgs(
      std::to_string(daemon.port), daemon.state.path, daemon.multicastPort)));
  std::string ready;
  ASSERT_TRUE(daemon.process->ReadLine(ready, tools_test::kStartMs)) << "configd did not restart";
  EXPECT_TRUE(stream.WaitFor("\"connected\":true", kEventMs));
  EXPECT_EQ(200, Get("/api/groups/2").status);
}

// A writer pipelining Sets as fast as configd takes them: every stream ends
// on the last value, and none is told configd was lost. Open streams have
// their own limit: at it, a request is still served and only another stream
// is refused.
TEST_F(WebTest, StreamsKeepUpWithAPipeliningWriterAndAtTheirLimitDoNotKeepRequestsOut) {
  std::vector<std::unique_ptr<EventStream>> streams(3);
  for (auto& stream : streams) ASSERT_TRUE(OpenStream(*(stream = std::make_unique<EventStream>())));
  zyn::config::access::SocketFactory factory;
  Config* writer = factory.Connect(daemon.Uri());
  ASSERT_NE(nullptr, writer);
  constexpr int kSets = 20000;
  for (int i = 0; i < kSets; ++i)
    ASSERT_TRUE(writer->Set(tools_test::kSystemName, "fast-" + std::to_string(i)));
  std::string last = "\"fast-" + std::to_string(kSets - 1) + "\"";
  for (size_t i = 0; i < streams.size(); ++i) {
    EXPECT_TRUE(streams[i]->WaitFor(last, 60000)) << "stream " << i << " missed the last value";
    EXPECT_EQ(0, streams[i]->lostFrames) << "stream " << i << " was told configd was lost";
  }
  factory.Disconnect(writer);

  configweb::EventHub otherHub;
  configweb::HttpServer limited(
      *api, otherHub, [this] { return session->StatusFrame(); },
      configweb::HttpServer::kMaxConnections);
  ASSERT_TRUE(limited.Start("127.0.0.1", 0));
  std::vector<std::unique_ptr<EventStream>> atLimit(configweb::HttpServer::kMaxConnections);
  for (auto& stream : atLimit)
    ASSERT_TRUE(OpenStream(*(stream = std::make_unique<EventStream>()), limited.GetPort()));
  EXPECT_EQ(200, Request(limited.GetPort(), "GET", "/api/params/SystemName").status);
  EXPECT_EQ(503, Request(limited.GetPort(), "GET", "/api/events").status);
  limited.Stop();
}

TEST(EventHubTest, ASubscriberFallenBehindIsResynchronisedAndDirectWritesKeepTheBytesInOrder) {
  configweb::EventHub hub;
  hub.SetResyncSource([] { return std::string("R"); });
  auto slow = hub.Subscribe();
  auto other = hub.Subscribe();
  std::string frames;
  for (size_t i = 0; i < configweb::EventHub::kQueueLimit; ++i) hub.Publish("f");
  ASSERT_TRUE(other->Next(frames, 0));
  EXPECT_EQ(configweb::EventHub::kQueueLimit, frames.size()) << "frames are joined in order";
  hub.Publish("g");
  hub.Publish("h");
  EXPECT_FALSE(slow->Closed());
  ASSERT_TRUE(slow->Next(frames, 0));
  EXPECT_EQ("R", frames) << "the overflowing queue is replaced by one resync frame";
  hub.Publish("i");
  ASSERT_TRUE(slow->Next(frames, 0));
  EXPECT_EQ("i", frames) << "frames after the resync follow it";
  ASSERT_TRUE(other->Next(frames, 0));
  EXPECT_EQ("ghi", frames) << "a subscriber that keeps up loses nothing";
  hub.ResyncAll();
  ASSERT_TRUE(other->Next(frames, 0));
  EXPECT_EQ("R", frames);
  hub.Close();
  EXPECT_TRUE(other->Closed());
  EXPECT_EQ(nullptr, hub.Subscribe()) << "a closed hub takes no subscribers";

  // Frames written straight to an idle stream's peer: what the socket did not
  // take goes out first, and nothing is written directly while the stream
  // thread writes.
  configweb::EventHub direct;
  auto subscriber = direct.Subscribe();
  std::string wire;
  long room = 3;
  subscriber->SetDirectWriter([&](const char* bytes, size_t length) {
    long n = std::min(room, static_cast<long>(length));
    wire.append(bytes, static_cast<size_t>(n));
    room -= n;
    return n > 0 ? n : -1;
  });
  direct.Publish("abcde");
  direct.Publish("fg");
  ASSERT_TRUE(subscriber->Next(frames, 0));
  EXPECT_EQ("abc", wire);
  EXPECT_EQ("defg", frames) << "the rest of a cut frame comes first";
  room = 100;
  direct.Publish("h");
  EXPECT_EQ("abc", wire) << "written directly while the stream thread writes";
  subscriber->Written();
  ASSERT_TRUE(subscriber->Next(frames, 0));
  EXPECT_EQ("h", frames);
  subscriber->Written();
  direct.Publish("i");
  EXPECT_EQ("abci", wire);
}

TEST(ListenAddressTest, AddressAndPortAreSplitAndChecked) {
  std::string address;
  int port = 0;
  EXPECT_TRUE(configweb::ParseListenAddress("127.0.0.1:8080", address, port));
  EXPECT_EQ("127.0.0.1", address);
  EXPECT_EQ(8080, port);
  EXPECT_TRUE(configweb::ParseListenAddress("[::1]:0", address, port));
  EXPECT_EQ("::1", address);
  for (const char* bad : {"127.0.0.1", ":80", "127.0.0.1:", "127.0.0.1:65536", "h:-1", "[]:80"})
    EXPECT_FALSE(configweb::ParseListenAddress(bad, address, port)) << bad;
}

TEST_F(WebTest, PresetsAreSavedAndRecalledThroughTheRegisters) {
  const std::string param = "/api/params/AnalogVideoInputSelect";  // kept in presets
  ASSERT_EQ(200, Put(param, "{\"value\":\"Component\"}").status);
  EXPECT_EQ("200 Store Complete", Post("/api/presets/3/save").With("result"));
  ASSERT_EQ(200, Put(param, "{\"value\":\"Composite\"}").status);
  EXPECT_EQ("200 Recall Complete", Post("/api/presets/3/recall").With("result"));
  EXPECT_EQ("Component", Get(param).json.get<std::string>("value_name", ""));

  EXPECT_EQ("409 Preset Empty", Post("/api/presets/7/recall").With("result"));
  EXPECT_EQ(400, Post("/api/presets/41/save").status);
  EXPECT_EQ(403, Post("/api/presets/0/save").status) << "the factory preset is never overwritten";

  // Saved with a name, listed with it; the file out and in again, larger
  // than any other request body may be.
  EXPECT_EQ(200, Post("/api/presets/5/save", "{\"name\":\"Studio B\"}").status);
  EXPECT_EQ(400, Post("/api/presets/5/save", "{\"name\":\"\"}").status) << "an empty name";
  HttpReply list = Get("/api/presets");
  ASSERT_EQ(41u, list.json.size()) << list.body;
  std::string states;
  for (const auto& slot : list.json)
    states +=
        slot.second.get<std::string>("name") + "=" + slot.second.get<std::string>("state") + ";";
  EXPECT_TRUE(Has(states, "Factory values=factory;")) << states;
  EXPECT_TRUE(Has(states, "Preset 4=empty;Studio B=saved;")) << states;
  HttpReply file = Get("/api/presets/5/file");
  ASSERT_EQ(200, file.status) << file.body;
  ASSERT_GT(file.body.size(), configweb::HttpServer::kBodyLimit);
  EXPECT_EQ(409, Get("/api/presets/7/file").status) << "an empty preset has no file";
  EXPECT_EQ(200, Put("/api/presets/9/file", file.body).status);
  EXPECT_TRUE(file.body == Get("/api/presets/9/file").body) << "the same image back";
  EXPECT_EQ(413, Put("/api/params/SystemName", file.body).status)
      << "only a preset file may be large";
  EXPECT_EQ(404, Post("/api/presets/3/erase").status);
  EXPECT_EQ(405, Get("/api/presets/3/save").status);
}

// A generic parameter stands for the specific one its selector picks: the
// group says which, a set lands there, and a change of that specific one
// reaches the stream as a change of the generic.
TEST_F(WebTest, GroupsListTheMenusInOrderWithoutHiddenParametersAndGenericsGoThroughTheMapper) {
  auto mapsTo = [this] {
    HttpReply group = Get("/api/groups/7");
    auto params = group.json.get_child_optional("params");
    if (!params) return "no parameters: " + group.body;
    for (const auto& param : *params)
      if (param.second.get<std::string>("param") == "eParamID_Vid1YUVProcAmpGain")
        return param.second.get<std::string>("maps_to", "none");
    return std::string("not listed");
  };
  EXPECT_EQ("eParamID_Vid1YUVProcAmpGain_SDI1", mapsTo());
  ASSERT_EQ(0, Ctl({"set", "Vid1VideoInput", "HDMI"}).exitCode);
  EXPECT_EQ("eParamID_Vid1YUVProcAmpGain_HDMI", mapsTo());
  // In words, with the selector the page follows, and re-asked alone.
  HttpReply mapping = Get("/api/groups/3/mapping");
  EXPECT_TRUE(Has(mapping.body, "\"maps_to_name\":\"IP Address (IP Config: DHCP)\""))
      << mapping.body;
  ASSERT_EQ(0, Ctl({"set", "IPConfig", "1"}).exitCode);
  EXPECT_TRUE(Has(Get("/api/groups/3/mapping").body, "IP Address (IP Config: Static Addr)"));
  EXPECT_TRUE(Has(Get("/api/groups/3").body, "\"selector\":2947125650"));

  EXPECT_EQ(200, Put("/api/params/Vid1YUVProcAmpGain", "{\"value\":95.0}").status);
  EXPECT_EQ("eParamID_Vid1YUVProcAmpGain_HDMI = 95.0 %\n",
            Ctl({"get", "Vid1YUVProcAmpGain_HDMI"}).out);

  EventStream stream;
  ASSERT_TRUE(OpenStream(stream));
  EXPECT_TRUE(SetUntilHeard(stream, {"--raw", "Vid1YUVProcAmpGain_HDMI", ""},
                            "\"param\":\"eParamID_Vid1YUVProcAmpGain\""))
      << "the generic's change never arrived";

  HttpReply groups = Get("/api/groups");
  ASSERT_EQ(200, groups.status) << groups.body;
  std::map<int, std::string> names;
  for (const auto& group : groups.json) {
    names[group.second.get<int>("group")] = group.second.get<std::string>("name");
    EXPECT_GT(group.second.get<int>("count"), 0) << group.second.get<std::string>("name");
  }
  EXPECT_EQ("System", names[2]);
  EXPECT_EQ("Debug", names[11]) << "the one group the button list does not name";

  for (int group : {2, 4}) {
    HttpReply one = Get("/api/groups/" + std::to_string(group));
    ASSERT_EQ(200, one.status) << one.body;
    unsigned int previous = 0;
    size_t count = 0;
    for (const auto& param : one.json.get_child("params")) {
      unsigned int id = param.second.get<unsigned int>("id");
      ParamDescriptor* descriptor = GetDescriptor(id);
      ASSERT_NE(nullptr, descriptor) << id;
      std::string name = descriptor->GetParamIDName();
      EXPECT_FALSE(descriptor->HasClassName("panel_hidden") ||
                   descriptor->HasClassName("hidden_param") ||
                   descriptor->HasClassName("rest_hidden"))
          << name;
      EXPECT_TRUE(previous == 0 || MenuNumberCompare(previous, id)) << name << " out of order";
      EXPECT_TRUE(param.second.get_child_optional("current.value")) << name << " has no value";
      previous = id;
      ++count;
    }
    EXPECT_GT(count, 10u) << "group " << group;
  }
  EXPECT_FALSE(Has(Get("/api/groups/4").body, "\"Factory Preset\"")) << "a hidden preset shown";
  for (const char* bad : {"0", "12", "x", "2x"})
    EXPECT_EQ(404, Get(std::string("/api/groups/") + bad).status) << bad;
}

// A value read from configd before a change of it arrived is not kept: the
// change is newer, and the cache would serve the old value until the next.
TEST(ValueCacheTest, AReadOlderThanAChangeIsNotKept) {
  configweb::ValueCache cache;
  common::ParamValue old, changed, found;
  old.number = 1;
  changed.number = 2;
  cache.Changed(7, changed);  // the event link is live
  uint64_t ticket = cache.Ticket();
  cache.Changed(7, changed);
  cache.Fill(7, old, ticket);
  EXPECT_FALSE(cache.Find(7, found));
  cache.Fill(7, changed, cache.Ticket());
  ASSERT_TRUE(cache.Find(7, found));
  EXPECT_EQ(2u, found.number);
}

// The page's files come from the program with validators: a repeated
// request with the validator is answered 304 without the body; who the
// unit is, and the search index, come from the API.
TEST_F(WebTest, ThePageIsServedWithValidatorsAndTheUnitSaysWhoItIsAndHowItIs) {
  size_t total = 0;
  for (const char* path : {"/", "/page.css", "/page.js"}) {
    HttpReply file = Get(path);
    EXPECT_EQ(200, file.status) << path;
    total += file.body.size();
  }
  EXPECT_LT(total, 100u * 1024) << "the page stays small";
  EXPECT_EQ(404, Get("/nothing.js").status);
  EXPECT_EQ(405, Post("/").status);
  std::string raw = "GET /page.js HTTP/1.1\r\nHost: x\r\nConnection: close\r\n\r\n";
  HttpReply first = Request(server->GetPort(), "", "", "", raw);
  ASSERT_EQ(200, first.status);
  const configweb::PageFile* js = configweb::FindPageFile("/page.js");
  ASSERT_NE(nullptr, js);
  raw.insert(raw.find("Connection"), "If-None-Match: " + std::string(js->etag) + "\r\n");
  HttpReply again = Request(server->GetPort(), "", "", "", raw);
  EXPECT_EQ(304, again.status);
  EXPECT_TRUE(again.body.empty()) << again.body;

  HttpReply unit = Get("/api/unit");
  EXPECT_EQ("zyn-kr-9", unit.json.get<std::string>("system_name", "")) << unit.body;
  EXPECT_EQ("KR-9", unit.json.get<std::string>("product", "")) << unit.body;
  EXPECT_EQ("21F000500", unit.json.get<std::string>("serial_number", "")) << unit.body;
  EXPECT_TRUE(Has(Get("/api/index").body, "[\"eParamID_AudioLevelCh1_SDI1\",\"SDI1 Level Ch 1\""));
  // A large group in brief, and one of its sections in full.
  HttpReply brief = Get("/api/groups/9?values=no");
  EXPECT_EQ(626u, brief.json.get_child("params").size());
  EXPECT_FALSE(Has(brief.body, "\"descriptor\"") || Has(brief.body, "\"current\"")) << "brief";
  HttpReply section = Get("/api/groups/9?section=15");
  ASSERT_EQ(16u, section.json.get_child("params").size()) << section.body;
  for (const auto& p : section.json.get_child("params"))
    EXPECT_EQ(0u, p.second.get<std::string>("descriptor.menu_number").find("15."));
  EXPECT_TRUE(Has(section.body, "\"current\""));
  // The reboot is a command with its consequence, not a bare choice.
  EXPECT_TRUE(Has(Get("/api/groups/3").body, "\"label\":\"Reboot the unit\""));
  // The health says whether configd keeps its settings.
  EXPECT_EQ("{\"ok\":true,\"message\":\"ok\"}", Get("/api/health").body);
  const std::string failed = "state folder /var/lib/configd: No space left on device";
  ASSERT_EQ(0, Ctl({"set", "--force", "OwnerHealth", failed}).exitCode);
  HttpReply bad = Get("/api/health");
  EXPECT_EQ("200 false", bad.With("ok"));
  EXPECT_EQ("200 " + failed, bad.With("message"));
  EXPECT_TRUE(Has(Get("/page.js").body, "/api/health")) << "the page shows it";
}
