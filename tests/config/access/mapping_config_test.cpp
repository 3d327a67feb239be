// MappingConfig over fakes, over a real store with the unit's catalogue and
// mapper, and over socket clients: translated access, change fan-out to the
// generic parameters with the values they stand for, and Create's failures.
#include "config/access/mapping_config.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "config/access/socket_client.h"
#include "config/access/socket_factory.h"
#include "config/descriptors/unit_catalogue.h"
#include "config/manager/config_cache.h"
#include "config/manager/config_manager.h"
#include "config/mapper/tundra_param_mapper.h"
#include "loopback_server.h"
#include "recording_config.h"
#include "test_catalogue.h"
#include "test_stderr.h"

using zyn::boxline::config::access::MappingConfig;
using zyn::boxline::config::access::ParamMapper;

namespace {

// A mapper from two small tables; records whether it was destroyed.
class TableMapper : public ParamMapper {
 public:
  std::map<unsigned int, unsigned int> forward;
  std::map<unsigned int, boost::unordered_set<unsigned int>> reverse;
  bool* destroyed = nullptr;
  Config* config = nullptr;
  ~TableMapper() override {
    if (destroyed != nullptr) *destroyed = true;
  }
  unsigned int MapParamID(unsigned int const& id) override {
    auto it = forward.find(id);
    return it == forward.end() ? id : it->second;
  }
  boost::unordered_set<unsigned int> ParamsChangedBy(unsigned int const& id) override {
    auto it = reverse.find(id);
    return it == reverse.end() ? boost::unordered_set<unsigned int>() : it->second;
  }
  bool isBaseParam(unsigned int const& id) override { return reverse.count(id) == 0; }
  void SetConfig(Config* c) override { config = c; }
};

// Records events as "Name=value" (ID name without "eParamID_") and lets a
// test wait for a number of them.
class NamedEvents : public ConfigEventListener {
 public:
  bool ParamChanged(eParam_t id, unsigned int value, timeval) override {
    return Add(Name(id) + "=" + std::to_string(value));
  }
  bool ParamChanged(eParam_t id, std::string value, timeval) override {
    return Add(Name(id) + "='" + value + "'");
  }
  bool DataChanged(eParam_t id, std::string& data, timeval) override {
    return Add(Name(id) + "=data:" + data);
  }
  // The events so far, once `count` arrived or after a deadline.
  std::vector<std::string> WaitFor(size_t count, int timeoutMs = 5000) {
    std::unique_lock<std::mutex> hold(lock);
    arrived.wait_for(hold, std::chrono::milliseconds(timeoutMs),
                     [&] { return seen.size() >= count; });
    return seen;
  }
  std::vector<std::string> Take() {
    std::lock_guard<std::mutex> hold(lock);
    std::vector<std::string> out;
    out.swap(seen);
    return out;
  }

 private:
  static std::string Name(eParam_t id) {
    ParamDescriptor* d = GetDescriptor(id);
    return d == nullptr ? std::to_string(id) : d->GetParamIDName().substr(9);
  }
  bool Add(const std::string& line) {
    std::lock_guard<std::mutex> hold(lock);
    seen.push_back(line);
    arrived.notify_all();
    return true;
  }
  std::mutex lock;
  std::condition_variable arrived;
  std::vector<std::string> seen;
};

unsigned int ID(const char* name) {
  ParamDescriptor* d = GetDescriptor(std::string("eParamID_") + name);
  EXPECT_NE(nullptr, d) << name;
  return d == nullptr ? 0 : d->GetParamID();
}

typedef std::vector<std::string> Lines;

// The unit's catalogue and the test parameters, and the unit's mapper.
class MappingConfigTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    unit_catalogue::CatalogueIDs();
    test_catalogue::Register();
    testing::internal::CaptureStdout();
    tundra::mapper::TundraParamMapper::Initialize();
    testing::internal::GetCapturedStdout();
  }
  const unsigned int gain = ID("Vid1YUVProcAmpGain");
  const unsigned int input = ID("Vid1VideoInput");
  const unsigned int gainSDI1 = ID("Vid1YUVProcAmpGain_SDI1");
  const unsigned int gainHDMI = ID("Vid1YUVProcAmpGain_HDMI");
  const unsigned int ipConfig = ID("IPConfig");
  const unsigned int ipAddress = ID("IPAddress");
};

}  // namespace

TEST_F(MappingConfigTest, EveryValueFormIsTranslated) {
  TableMapper mapper;
  mapper.forward = {{7, 70}};
  RecordingConfig direct, behind;
  MappingConfig mapping(&behind, &mapper, nullptr);
  // The same calls on the store-side ID directly and on the caller-side ID
  // through the mapping.
  for (Config* c : std::vector<Config*>{&direct, &mapping}) {
    unsigned int id = c == &direct ? 70 : 7;
    unsigned int u;
    std::string s = "x", d = "y";
    c->Set(id, 1u);
    c->Get(id);
    c->Get(id, u);
    c->Set(id, std::string("t"));
    c->Get(id, s);
    c->GetSerializable(id);
    c->SetSerializable(id, RecordingConfig::Value());
    c->GetData(id, d);
    c->SetData(id, d);
    c->GetParamDescriptor(id);  // descriptors stay the caller's ID's
    c->Unlock(id);
  }
  direct.calls[9] = "GetParamDescriptor(7)";
  direct.calls[10] = "Unlock(7)";
  EXPECT_EQ(direct.calls, behind.calls);
  EXPECT_EQ(70u, mapping.MapID(7));
  EXPECT_EQ(8u, mapping.MapID(8));

  RecordingConfig plain;
  MappingConfig unmapped(&plain, nullptr, nullptr);
  unmapped.Set(7, 1u);
  std::string data = "z";
  unmapped.GetData(7, data);
  EXPECT_EQ((Lines{"Set(7,1)", "GetData'z'(7)"}), plain.calls)
      << "without a mapper IDs pass unchanged";
}

TEST_F(MappingConfigTest, GenericsFollowTheirSelectorInAStore) {
  MappingConfig* mapping = nullptr;
  Stderr([&] {
    mapping = MappingConfig::Create("local:configid=47", new tundra::mapper::TundraParamMapper(),
                                    true, false);
  });
  ASSERT_NE(nullptr, mapping);
  Config* store = mapping->GetDelegate();
  NamedEvents onlyGain, everything;
  mapping->AddConfigEventListener(gain, &onlyGain);
  mapping->AddConfigEventListener(&everything);

  ASSERT_TRUE(store->Set(input, 0));
  everything.Take();
  onlyGain.Take();
  EXPECT_TRUE(mapping->Set(gain, 900));
  EXPECT_EQ(900u, store->Get(gainSDI1)) << "input SDI1 selects the SDI1 gain";
  EXPECT_EQ((Lines{"Vid1YUVProcAmpGain=900"}), onlyGain.Take())
      << "a change of the current specific reaches the generic's listener";
  EXPECT_EQ((Lines{"Vid1YUVProcAmpGain_SDI1=900", "Vid1YUVProcAmpGain=900"}), everything.Take());

  store->Set(gainHDMI, 300);
  onlyGain.Take();
  everything.Take();
  ASSERT_TRUE(mapping->Set(input, 6));
  EXPECT_EQ(300u, mapping->Get(gain)) << "input HDMI selects the HDMI gain";
  EXPECT_EQ((Lines{"Vid1YUVProcAmpGain=300"}), onlyGain.Take())
      << "a selector change carries the value of the newly selected specific";
  Lines all = everything.Take();
  EXPECT_NE(all.end(), std::find(all.begin(), all.end(), "Vid1VideoInput=6"));
  EXPECT_NE(all.end(), std::find(all.begin(), all.end(), "Vid1YUVProcAmpGain=300"));

  // A volatile selector is reported as itself only, with no fan-out, though
  // the mapping follows it.
  EXPECT_TRUE(mapping->IsVolatile(ipConfig));
  EXPECT_FALSE(mapping->IsVolatile(gain));
  EXPECT_FALSE(mapping->IsVolatile(test_catalogue::kUnknown)) << "no descriptor";
  std::string before, after;
  mapping->Get(ipAddress, before);
  store->Set(ipConfig, 1 - store->Get(ipConfig));
  mapping->Get(ipAddress, after);
  EXPECT_NE(before, after) << "DHCP and static addresses differ by default";
  EXPECT_EQ((Lines{"IPConfig=" + std::to_string(store->Get(ipConfig))}), everything.Take());
  EXPECT_TRUE(onlyGain.Take().empty());

  EXPECT_TRUE(mapping->RemoveConfigEventListener(&onlyGain));
  EXPECT_FALSE(mapping->RemoveConfigEventListener(&onlyGain));
  store->Set(gainHDMI, 301);
  EXPECT_TRUE(onlyGain.Take().empty()) << "removed";
  EXPECT_EQ((Lines{"Vid1YUVProcAmpGain_HDMI=301", "Vid1YUVProcAmpGain=301"}), everything.Take());
  mapping->RemoveConfigEventListener(&everything);
  delete mapping;
}

TEST_F(MappingConfigTest, WithoutAMapperNothingIsForwarded) {
  MappingConfig* mapping = nullptr;
  Stderr([&] { mapping = MappingConfig::Create("local:configid=48", nullptr, false, false); });
  ASSERT_NE(nullptr, mapping);
  NamedEvents events;
  mapping->AddConfigEventListener(&events);
  EXPECT_TRUE(mapping->Set(gain, 5));
  EXPECT_EQ(5u, mapping->Get(gain)) << "the generic's own value, unmapped";
  EXPECT_EQ(5u, mapping->GetDelegate()->Get(gain));
  mapping->Set(input, 6);
  EXPECT_TRUE(events.Take().empty());
  mapping->RemoveConfigEventListener(&events);
  delete mapping;
}

TEST_F(MappingConfigTest, CreateFailuresReleaseWhatWasOpened) {
  bool destroyed = false;
  auto* mapper = new TableMapper();
  mapper->destroyed = &destroyed;
  std::string err =
      Stderr([&] { EXPECT_EQ(nullptr, MappingConfig::Create("nowhere:", mapper, true, false)); });
  EXPECT_NE(std::string::npos, err.find("MappingConfig::Create: pConfig failed\n")) << err;
  EXPECT_TRUE(destroyed) << "a mapper handed over is destroyed on failure";

  Config* store = nullptr;
  Stderr([&] { store = ConfigFactoryImpl::GetInstance()->Connect("local:configid=49"); });
  auto* manager = dynamic_cast<ConfigManager*>(store);
  ASSERT_NE(nullptr, manager);
  TableMapper kept;
  err = Stderr([&] {
    EXPECT_EQ(nullptr, MappingConfig::Create("local:configid=49", "nowhere:", &kept, false, false));
  });
  EXPECT_NE(std::string::npos, err.find("MappingConfig::Create: pEvConfig failed\n")) << err;
  EXPECT_EQ(nullptr, kept.config) << "the mapper is attached only on success";
  EXPECT_EQ(1, manager->GetUseCount()) << "the request connection was released";

  MappingConfig* mapping = MappingConfig::Create("local:configid=49", &kept, false, false);
  ASSERT_NE(nullptr, mapping);
  EXPECT_EQ(mapping, kept.config) << "the mapper reads its selectors through the mapping";
  EXPECT_EQ(3, manager->GetUseCount()) << "one connection for requests, one for events";
  delete mapping;
  EXPECT_EQ(1, manager->GetUseCount());
  ConfigFactoryImpl::GetInstance()->Disconnect(store);
}

TEST_F(MappingConfigTest, CachedReadsStayCurrentThroughEvents) {
  MappingConfig* mapping = nullptr;
  Stderr([&] {
    mapping = MappingConfig::Create("local:configid=50", new tundra::mapper::TundraParamMapper(),
                                    true, true);
  });
  ASSERT_NE(nullptr, mapping);
  Config* store = ConfigFactoryImpl::GetInstance()->Connect("local:configid=50");
  ASSERT_NE(nullptr, dynamic_cast<ConfigCache*>(mapping->GetDelegate()));
  const std::string hdmi = std::to_string(store->Get(gainHDMI));
  const std::string sdi1 = std::to_string(store->Get(gainSDI1));
  store->Set(input, 0);
  EXPECT_EQ(store->Get(gainSDI1), mapping->Get(gain));
  NamedEvents events;
  mapping->AddConfigEventListener(gain, &events);
  store->Set(input, 6);
  store->Set(gainHDMI, 123);
  EXPECT_EQ(123u, mapping->Get(gain));
  store->Set(gainHDMI, 124);
  EXPECT_EQ(124u, mapping->Get(gain)) << "the cache was refreshed by the change event";
  store->Set(input, 0);
  store->Set(gainSDI1, 77);
  EXPECT_EQ(77u, mapping->Get(gain));
  EXPECT_EQ((Lines{"Vid1YUVProcAmpGain=" + hdmi, "Vid1YUVProcAmpGain=123", "Vid1YUVProcAmpGain=124",
                   "Vid1YUVProcAmpGain=" + sdi1, "Vid1YUVProcAmpGain=77"}),
            events.Take());
  mapping->RemoveConfigEventListener(&events);
  delete mapping;
  EXPECT_EQ(1, static_cast<ConfigManager*>(store)->GetUseCount()) << "both connections released";
  ConfigFactoryImpl::GetInstance()->Disconnect(store);
}

TEST_F(MappingConfigTest, EventsOverSocketClients) {
  LoopbackServer server;
  zyn::config::access::SocketFactory factory;
  std::string uri = "socket://127.0.0.1:" + std::to_string(server.port) + "/configid=0";
  Config* requests = factory.Connect(uri);
  Config* eventsConnection = factory.Connect(uri);
  ASSERT_NE(nullptr, requests);
  ASSERT_NE(nullptr, eventsConnection);
  tundra::mapper::TundraParamMapper mapper;
  {
    MappingConfig mapping(requests, &mapper, eventsConnection);
    mapper.SetConfig(&mapping);
    NamedEvents events, sync;
    mapping.AddConfigEventListener(std::list<eParam_t>{gain}, &events);
    mapping.AddConfigEventListener(test_catalogue::kPercent, &sync);
    // The server registers the events connection while the client goes on:
    // change a parameter until its event comes back.
    for (unsigned int v = 1; v < 100 && sync.WaitFor(1, 50).empty(); ++v)
      server.store->Set(test_catalogue::kPercent, v);
    ASSERT_FALSE(sync.Take().empty());

    // A selector change, then a change of the selected specific.
    const std::string hdmi = "Vid1YUVProcAmpGain=" + std::to_string(server.store->Get(gainHDMI));
    server.store->Set(input, 6);
    EXPECT_EQ((Lines{hdmi}), events.WaitFor(1));
    server.store->Set(gainHDMI, 410);
    EXPECT_EQ((Lines{hdmi, "Vid1YUVProcAmpGain=410"}), events.WaitFor(2));
    events.Take();
    EXPECT_TRUE(mapping.Set(gain, 420));
    EXPECT_EQ((Lines{"Vid1YUVProcAmpGain=420"}), events.WaitFor(1));
    EXPECT_EQ(420u, server.store->Get(gainHDMI));
    EXPECT_EQ(420u, mapping.Get(gain));
    mapping.RemoveConfigEventListener(&events);
  }
  factory.Disconnect(static_cast<zyn::config::access::SocketClient*>(eventsConnection));
  factory.Disconnect(static_cast<zyn::config::access::SocketClient*>(requests));
}
