// MappingConfig with the unit's mapper over stores of the unit's catalogue:
// translated access, changes fanned out to the generic parameters with the
// values they stand for, Create's failures.
#include "config/access/mapping_config.h"

#include <gtest/gtest.h>

#include "config/config_factory_impl.h"
#include "config/descriptors/unit_catalogue.h"
#include "config/manager/config_manager.h"
#include "config/manager/recording_listener.h"
#include "config/mapper/tundra_param_mapper.h"
#include "test_catalogue.h"
#include "test_stderr.h"

using zyn::boxline::config::access::MappingConfig;

namespace {

// The unit's proc amp gain of processor 1, its selector and two specifics.
constexpr unsigned int kGain = 0x883AD0D9, kInput = 0xD22FD6CA;
constexpr unsigned int kGainSDI1 = 0xB87ACB03, kGainHDMI = 0x13DDCCAB;
constexpr unsigned int kIPConfig = 0xAFA99192;  // a volatile selector
constexpr unsigned int kIPAddress = 0x33A97ED1, kIPAddressStatic = 0x758A24AD;

tundra::mapper::TundraParamMapper* NewMapper() {
  unit_catalogue::CatalogueIDs();
  test_catalogue::Register();
  testing::internal::CaptureStdout();  // the tables' build lines
  auto* mapper = new tundra::mapper::TundraParamMapper();
  testing::internal::GetCapturedStdout();
  return mapper;
}

Config* Open(const std::string& uri) {
  test_catalogue::Register();
  Config* c = nullptr;
  Stderr([&] { c = ConfigFactoryImpl::GetInstance()->Connect(uri); });
  return c;
}

}  // namespace

TEST(MappingConfigTest, GenericsFollowTheirSelectorDirectAndCachedAndCreateFailures) {
  for (bool cached : {false, true}) {
    SCOPED_TRACE(cached ? "cached" : "direct");
    const std::string uri = "local:configid=" + std::to_string(47 + cached);
    MappingConfig* mapping = nullptr;
    tundra::mapper::TundraParamMapper* mapper = NewMapper();
    Stderr([&] { mapping = MappingConfig::Create(uri, mapper, true, cached); });
    Config* store = Open(uri);
    ASSERT_TRUE(mapping != nullptr && store != nullptr);
    store->Set(kInput, 0);
    store->Set(kGainHDMI, 300);
    RecordingListener gainOnly, all;
    mapping->AddConfigEventListener(kGain, &gainOnly);
    mapping->AddConfigEventListener(&all);
    mapping->AddConfigEventListener(kGain, &all);  // adds nothing to "everything"

    EXPECT_TRUE(mapping->Set(kGain, 900));
    EXPECT_EQ(900u, store->Get(kGainSDI1)) << "input SDI1 selects the SDI1 gain";
    EXPECT_EQ("B87ACB03=900 883AD0D9=900", all.Rendered()) << "the specific, then the generic";
    store->Set(kInput, 6);
    EXPECT_EQ(300u, mapping->Get(kGain)) << "input HDMI selects the HDMI gain";
    store->Set(kGainHDMI, 301);
    EXPECT_EQ(301u, mapping->Get(kGain)) << "reads stay current";
    EXPECT_EQ("883AD0D9=900 883AD0D9=300 883AD0D9=301", gainOnly.Rendered())
        << "a selector change carries the value of the newly selected gain";

    store->Set(kIPConfig, 1 - store->Get(kIPConfig));
    std::string heard = all.Rendered();
    EXPECT_EQ("AFA99192=" + std::to_string(store->Get(kIPConfig)),
              heard.substr(heard.rfind(' ') + 1))
        << "a volatile selector is reported as itself, without the fan-out";
    EXPECT_TRUE(mapping->RemoveConfigEventListener(&gainOnly));
    mapping->RemoveConfigEventListener(&all);
    // Data goes through the mapping too: a static address with IP Config static.
    store->Set(kIPConfig, 1);
    std::string data = "127.1.2." + std::to_string(3 + cached), back;
    EXPECT_TRUE(mapping->SetData(kIPAddress, data));
    EXPECT_TRUE(store->Get(kIPAddressStatic, back));
    EXPECT_EQ(data, back);
    delete mapping;
    EXPECT_EQ(1, static_cast<ConfigManager*>(store)->GetUseCount()) << "connections released";
    ConfigFactoryImpl::GetInstance()->Disconnect(store);
  }

  // Create's failures, and a mapping without a mapper.
  EXPECT_EQ("MappingConfig::Create: pConfig failed\n",
            Stderr([] { EXPECT_EQ(nullptr, MappingConfig::Create("nowhere:", nullptr, 0, 0)); }));
  Config* store = Open("local:configid=49");
  std::string err = Stderr([] {
    EXPECT_EQ(nullptr, MappingConfig::Create("local:configid=49", "nowhere:", nullptr, 0, 0));
  });
  EXPECT_TRUE(Has(err, "MappingConfig::Create: pEvConfig failed\n")) << err;
  EXPECT_EQ(1, static_cast<ConfigManager*>(store)->GetUseCount()) << "requests released";

  MappingConfig* plain = MappingConfig::Create("local:configid=49", nullptr, false, false);
  RecordingListener events;
  plain->AddConfigEventListener(&events);
  EXPECT_TRUE(plain->Set(test_catalogue::kPercent, 5));
  EXPECT_EQ(5u, store->Get(test_catalogue::kPercent)) << "without a mapper IDs pass unchanged";
  EXPECT_EQ("", events.Rendered()) << "and no events are delivered";
  plain->RemoveConfigEventListener(&events);
  delete plain;
  ConfigFactoryImpl::GetInstance()->Disconnect(store);
}
