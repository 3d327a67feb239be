// MappingConfig with the unit's mapper over stores of the unit's catalogue
// and over socket clients: translated access, changes fanned out to the
// generic parameters with the values they stand for, Create's failures.
#include "config/access/mapping_config.h"

#include <gtest/gtest.h>

#include <condition_variable>

#include "config/access/socket_factory.h"
#include "config/descriptors/unit_catalogue.h"
#include "config/manager/config_manager.h"
#include "config/mapper/tundra_param_mapper.h"
#include "loopback_server.h"

using zyn::boxline::config::access::MappingConfig;
typedef std::vector<std::string> Lines;

namespace {

// Records events as "Name=value", the ID name without "eParamID_".
class NamedEvents : public ConfigEventListener {
 public:
  bool ParamChanged(eParam_t id, unsigned int value, timeval) override {
    return Add(GetDescriptor(id)->GetParamIDName().substr(9) + "=" + std::to_string(value));
  }
  bool ParamChanged(eParam_t id, std::string value, timeval) override {
    return Add(GetDescriptor(id)->GetParamIDName().substr(9) + "='" + value + "'");
  }
  // The events so far, once `count` came or after a deadline; cleared.
  Lines Take(size_t count = 0, int timeoutMs = 5000) {
    std::unique_lock<std::mutex> hold(lock);
    arrived.wait_for(hold, std::chrono::milliseconds(timeoutMs),
                     [&] { return seen.size() >= count; });
    Lines out;
    out.swap(seen);
    return out;
  }

 private:
  bool Add(const std::string& line) {
    std::lock_guard<std::mutex> hold(lock);
    seen.push_back(line);
    arrived.notify_all();
    return true;
  }
  std::mutex lock;
  std::condition_variable arrived;
  Lines seen;
};

unsigned int ID(const char* name) { return GetDescriptor(std::string(name))->GetParamID(); }

Config* Open(const std::string& uri) {
  Config* c = nullptr;
  Stderr([&] { c = ConfigFactoryImpl::GetInstance()->Connect(uri); });
  return c;
}

class MappingConfigTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    unit_catalogue::CatalogueIDs();
    test_catalogue::Register();
  }
  tundra::mapper::TundraParamMapper* NewMapper() {
    testing::internal::CaptureStdout();  // the tables' build lines
    auto* mapper = new tundra::mapper::TundraParamMapper();
    testing::internal::GetCapturedStdout();
    return mapper;
  }
  const unsigned int gain = ID("eParamID_Vid1YUVProcAmpGain");
  const unsigned int input = ID("eParamID_Vid1VideoInput");
  const unsigned int gainSDI1 = ID("eParamID_Vid1YUVProcAmpGain_SDI1");
  const unsigned int gainHDMI = ID("eParamID_Vid1YUVProcAmpGain_HDMI");
};

}  // namespace

TEST_F(MappingConfigTest, GenericsFollowTheirSelectorDirectAndCached) {
  for (bool cached : {false, true}) {
    SCOPED_TRACE(cached ? "cached" : "direct");
    const std::string uri = "local:configid=" + std::to_string(47 + cached);
    MappingConfig* mapping = nullptr;
    Stderr([&] { mapping = MappingConfig::Create(uri, NewMapper(), true, cached); });
    Config* store = Open(uri);
    ASSERT_TRUE(mapping != nullptr && store != nullptr);
    NamedEvents gainOnly, all;
    mapping->AddConfigEventListener(gain, &gainOnly);
    mapping->AddConfigEventListener(&all);
    store->Set(input, 0);
    store->Set(gainHDMI, 300);
    gainOnly.Take(), all.Take();

    EXPECT_TRUE(mapping->Set(gain, 900));
    EXPECT_EQ(900u, store->Get(gainSDI1)) << "input SDI1 selects the SDI1 gain";
    EXPECT_EQ((Lines{"Vid1YUVProcAmpGain_SDI1=900", "Vid1YUVProcAmpGain=900"}), all.Take());
    store->Set(input, 6);
    EXPECT_EQ(300u, mapping->Get(gain)) << "input HDMI selects the HDMI gain";
    EXPECT_EQ((Lines{"Vid1YUVProcAmpGain=900", "Vid1YUVProcAmpGain=300"}), gainOnly.Take())
        << "a selector change carries the value of the newly selected gain";
    store->Set(gainHDMI, 301);
    EXPECT_EQ(301u, mapping->Get(gain)) << "reads stay current";

    // A volatile selector is reported as itself, without the fan-out.
    all.Take();
    const unsigned int ipConfig = ID("eParamID_IPConfig");
    std::string before, after;
    mapping->Get(ID("eParamID_IPAddress"), before);
    store->Set(ipConfig, 1 - store->Get(ipConfig));
    mapping->Get(ID("eParamID_IPAddress"), after);
    EXPECT_NE(before, after) << "the DHCP and static addresses differ";
    EXPECT_EQ((Lines{"IPConfig=" + std::to_string(store->Get(ipConfig))}), all.Take());
    EXPECT_TRUE(mapping->IsVolatile(ipConfig) && !mapping->IsVolatile(gain));

    EXPECT_TRUE(mapping->RemoveConfigEventListener(&gainOnly));
    mapping->RemoveConfigEventListener(&all);
    delete mapping;
    EXPECT_EQ(1, static_cast<ConfigManager*>(store)->GetUseCount()) << "connections released";
    ConfigFactoryImpl::GetInstance()->Disconnect(store);
  }
}

TEST_F(MappingConfigTest, CreateFailuresAndNoMapper) {
  EXPECT_EQ("MappingConfig::Create: pConfig failed\n",
            Stderr([] {
              EXPECT_EQ(nullptr, MappingConfig::Create("nowhere:", nullptr, 0, 0));
            }).substr(0 + 0));
  Config* store = Open("local:configid=49");
  std::string err = Stderr([] {
    EXPECT_EQ(nullptr, MappingConfig::Create("local:configid=49", "nowhere:", nullptr, 0, 0));
  });
  EXPECT_NE(std::string::npos, err.find("MappingConfig::Create: pEvConfig failed\n")) << err;
  EXPECT_EQ(1, static_cast<ConfigManager*>(store)->GetUseCount()) << "requests released";

  MappingConfig* plain = MappingConfig::Create("local:configid=49", nullptr, false, false);
  NamedEvents events;
  plain->AddConfigEventListener(&events);
  EXPECT_TRUE(plain->Set(gain, 5));
  EXPECT_EQ(5u, store->Get(gain)) << "without a mapper IDs pass unchanged";
  store->Set(input, 6);
  EXPECT_EQ(Lines{}, events.Take(0, 0)) << "and no events are delivered";
  plain->RemoveConfigEventListener(&events);
  delete plain;
  ConfigFactoryImpl::GetInstance()->Disconnect(store);
}

TEST_F(MappingConfigTest, EventsOverSocketClients) {
  LoopbackServer server;
  zyn::config::access::SocketFactory factory;
  std::string uri = "socket://127.0.0.1:" + std::to_string(server.port) + "/configid=0";
  Config* requests = factory.Connect(uri);
  Config* events = factory.Connect(uri);
  std::unique_ptr<tundra::mapper::TundraParamMapper> mapper(NewMapper());
  auto* mapping = new MappingConfig(requests, mapper.get(), events);
  mapper->SetConfig(mapping);
  NamedEvents gainOnly, sync;
  mapping->AddConfigEventListener(std::list<eParam_t>{gain}, &gainOnly);
  mapping->AddConfigEventListener(test_catalogue::kPercent, &sync);
  // The server registers the events connection while the client goes on.
  for (unsigned int v = 1; v < 100 && sync.Take(1, 50).empty(); ++v)
    server.store->Set(test_catalogue::kPercent, v);

  server.store->Set(gainHDMI, 410);
  server.store->Set(input, 6);
  EXPECT_EQ("Vid1YUVProcAmpGain=410", gainOnly.Take(2).back());
  EXPECT_TRUE(mapping->Set(gain, 420));
  EXPECT_EQ((Lines{"Vid1YUVProcAmpGain=420"}), gainOnly.Take(1));
  EXPECT_EQ(420u, server.store->Get(gainHDMI));
  delete mapping;
  factory.Disconnect(events);
  factory.Disconnect(requests);
}
