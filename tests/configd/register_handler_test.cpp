// Presets, the preset file hand-over and the factory reset, on the owner's
// side (commands called directly) and end to end through a running owner.
#include "configd/register_handler.h"

#include <sys/stat.h>

#include <fstream>
#include <map>

#include "config/access/socket_client.h"
#include "config/access/socket_factory.h"
#include "config/descriptors/string_descriptor.h"
#include "config/values/integer_value.h"
#include "config/values/presets_param_vector.h"
#include "configd/daemon.h"
#include "configd/file_system.h"
#include "configd/preset_image.h"
#include "configd/preset_store.h"
#include "configd/string_length_precondition.h"
#include "configd/value_image.h"
#include "owner_fixture.h"

using namespace owner_test;
using namespace zyn::config::values;

namespace {

constexpr unsigned int kFrontPanelLock = 0x4D575A8E;
constexpr unsigned int kSystemName = 0x663F2B65;
constexpr unsigned int kRecallResult = RegisterHandler::kRegisterRecallResult;
constexpr unsigned int kSaveResult = RegisterHandler::kRegisterSaveResult;

// Counts the events of each parameter.
struct EventCounter : ConfigEventListener {
  bool ParamChanged(eParam_t id, unsigned int, timeval) override { return ++events[id]; }
  bool ParamChanged(eParam_t id, std::string, timeval) override { return ++events[id]; }
  std::map<unsigned int, int> events;
};

class RegisterHandlerTest : public OwnerTest {
 protected:
  void SetUp() override {
    OwnerTest::SetUp();
    other = dynamic_cast<EnumDescriptor*>(GetDescriptor(choice))
                ->GetOrderedEnumValueDescriptors()[1]
                .GetValue();
  }
  std::string Run(const std::function<void()>& command) { return Stderr(command); }
  std::string Image(unsigned int product, const std::string& values) {
    return PresetImage::Encode(product, values);
  }
  void WriteFile(unsigned int number, const std::string& bytes) {
    std::ofstream(folder.path + "/preset_" + std::to_string(number) + ".bin") << bytes;
  }

  PresetStore presets{FileSystem::Default(), folder.path};
  RegisterHandler handler{&store, &presets, folder.path};
  unsigned int other = 0;  // a value of `choice` that is not its default
};

}  // namespace

TEST_F(RegisterHandlerTest, SaveAndRecallOnlyThePresetSettings) {
  unsigned int low = Range()->GetMinValue();
  store.Set(range, low + 3);
  store.Set(choice, other);
  store.Set(kFrontPanelLock, 1);
  Run([&] { handler.Save(4); });
  EXPECT_EQ(kRegisterDone, store.Get(kSaveResult));
  Run([&] { handler.Save(0); });
  EXPECT_EQ(kRegisterFailed, store.Get(kSaveResult)) << "the factory preset stays";

  store.Set(range, low + 4);
  store.Set(kFrontPanelLock, 0);
  EventCounter counter;
  store.AddConfigEventListener(&counter);
  Run([&] { handler.Recall(4); });
  store.RemoveConfigEventListener(&counter);
  EXPECT_EQ(kRegisterDone, store.Get(kRecallResult));
  EXPECT_EQ(low + 3, store.Get(range));
  EXPECT_EQ(0u, store.Get(kFrontPanelLock)) << "excluded from presets";
  EXPECT_EQ((std::map<unsigned int, int>{{kRecallResult, 2}, {range, 1}}), counter.events)
      << "one event per changed value";

  Run([&] { handler.Recall(9); });
  EXPECT_EQ(kRegisterEmpty, store.Get(kRecallResult));
  Run([&] { handler.Recall(0); });
  EXPECT_EQ(kRegisterDone, store.Get(kRecallResult));
  EXPECT_EQ(Range()->GetFactoryDefault(), store.Get(range));
  EXPECT_NE(other, store.Get(choice));

  // Saved presets come back after a restart.
  PresetStore reloaded(FileSystem::Default(), folder.path);
  EXPECT_EQ(1u, reloaded.Load());
}

TEST_F(RegisterHandlerTest, RecallIsAllOrNothing) {
  unsigned int low = Range()->GetMinValue();
  struct Bad {
    unsigned int id, value;
    std::string reason;
  };
  for (const Bad& bad : {Bad{choice, 0xBAD, "2989 is not in its list"},
                         Bad{kFrontPanelLock, 1, "eParamID_FrontPanelLock does not belong"}}) {
    Vector values;
    values.Add(new IntegerValue(eConfigID_Default, range, eCParam_IntegerValue, low + 2));
    values.Add(new IntegerValue(eConfigID_Default, bad.id, eCParam_IntegerValue, bad.value));
    ASSERT_TRUE(presets.Save(5, ValueImage::Encode(values)));
    std::string err = Run([&] { handler.Recall(5); });
    EXPECT_EQ(kRegisterFailed, store.Get(kRecallResult)) << bad.reason;
    EXPECT_EQ(Range()->GetFactoryDefault(), store.Get(range)) << "nothing applied";
    EXPECT_NE(std::string::npos, err.find("RegisterHandler::Recall - preset 5 refused: ")) << err;
    EXPECT_NE(std::string::npos, err.find(bad.reason)) << err;
  }
}

TEST_F(RegisterHandlerTest, HandOverChecksTheWholeImage) {
  store.Set(range, Range()->GetMinValue() + 1);
  Run([&] { handler.Save(2); });
  Run([&] { handler.Load(2); });
  EXPECT_EQ(kRegisterDone, store.Get(kRegisterLoadResultParamID));
  std::string image;
  ASSERT_TRUE(FileSystem::Default()->ReadFile(folder.path + "/preset_2.bin", 1 << 20, image));
  Run([&] { handler.Load(3); });
  EXPECT_EQ(kRegisterEmpty, store.Get(kRegisterLoadResultParamID));

  WriteFile(6, image);
  Run([&] { handler.Store(6); });
  EXPECT_EQ(kRegisterDone, store.Get(kRegisterStoreResultParamID));
  std::string two, six;
  ASSERT_TRUE(presets.Get(2, two) && presets.Get(6, six));
  EXPECT_EQ(two, six);

  std::string values = image.substr(PresetImage::kHeaderSize);
  std::string longer = Image(PresetImage::UnitProduct(), values);
  longer[11] = static_cast<char>(longer[11] + 1);
  const std::pair<std::string, std::string> rejected[] = {
      {Image(0x12345678, values), "made for product 0x12345678"},
      {longer, "in the header"},
      {image.substr(0, image.size() - 3), "in the file"},
      {Image(PresetImage::UnitProduct(), values + "x"), "do not read back"},
      {"", "truncated at 0 bytes"}};
  for (const auto& [bytes, reason] : rejected) {
    WriteFile(7, bytes);
    std::string err = Run([&] { handler.Store(7); });
    EXPECT_EQ(kRegisterEmpty, store.Get(kRegisterStoreResultParamID)) << reason;
    EXPECT_NE(std::string::npos, err.find(reason)) << err;
  }
  unlink((folder.path + "/preset_7.bin").c_str());
  Run([&] { handler.Store(7); });
  EXPECT_EQ(kRegisterFailed, store.Get(kRegisterStoreResultParamID)) << "missing file";
  WriteFile(0, image);
  Run([&] { handler.Store(0); });
  EXPECT_EQ(kRegisterFailed, store.Get(kRegisterStoreResultParamID)) << "factory preset";
  EXPECT_FALSE(presets.Get(7, values));
}

TEST_F(RegisterHandlerTest, FactoryResetKeepsIdentityAndHardResetClearsAll) {
  store.Set(range, Range()->GetMinValue() + 1);
  store.Set(kFrontPanelLock, 1);
  store.Set(kSystemName, std::string("rack-7"));
  Run([&] { handler.Save(3); });
  store.Set(RegisterHandler::kFactorySettings, 1);
  Run([&] { handler.Reset(false); });
  std::string name;
  store.Get(kSystemName, name);
  EXPECT_EQ("rack-7", name);
  EXPECT_EQ(1u, store.Get(kFrontPanelLock));
  EXPECT_EQ(Range()->GetFactoryDefault(), store.Get(range));
  EXPECT_EQ(0u, store.Get(RegisterHandler::kFactorySettings)) << "back to idle";
  EXPECT_TRUE(presets.Get(3, name));

  Run([&] { handler.Reset(true); });
  store.Get(kSystemName, name);
  EXPECT_EQ("zyn-kr-9", name);
  EXPECT_EQ(0u, store.Get(kFrontPanelLock));
  EXPECT_FALSE(presets.Get(3, name));
  PresetStore reloaded(FileSystem::Default(), folder.path);
  EXPECT_EQ(0u, reloaded.Load());
}

TEST_F(RegisterHandlerTest, OwnerRefusesTextsOutsideTheirLimits) {
  store.AddUpdatePrecondition(new StringLengthPrecondition());
  std::string err = Stderr([&] { EXPECT_FALSE(store.Set(kSystemName, std::string(3000, 'x'))); });
  EXPECT_NE(std::string::npos,
            err.find("StringLengthPrecondition::IsUpdateValid - eParamID_SystemName refuses "
                     "3000 characters (1 to 20)\n"))
      << err;
  Stderr([&] { EXPECT_FALSE(store.Set(kSystemName, std::string())); });
  EXPECT_TRUE(store.Set(kSystemName, std::string(20, 'x')));
  // Every text the catalogue starts with passes its own limits.
  for (unsigned int id : GetParamIDs()) {
    auto* text = dynamic_cast<StringDescriptor*>(GetDescriptor(id));
    if (text == nullptr) continue;
    std::string value;
    store.Get(id, value);
    EXPECT_TRUE(store.Set(id, value)) << text->GetParamIDName() << " '" << value << "'";
  }
}

TEST(OwnerEndToEndTest, PresetsParamVectorLoadsAndStoresThroughARunningOwner) {
  TempFolder state;
  ConfigDaemon daemon;
  DaemonOptions options;
  options.port = 0;
  options.stateDir = state.path;
  Stderr([&] { ASSERT_TRUE(daemon.Start(options)); });
  zyn::config::access::SocketFactory factory;
  auto* client = factory.Connect("socket://127.0.0.1:" + std::to_string(daemon.GetPort()));
  ASSERT_NE(nullptr, client);
  // Preset numbers of this test only: the hand-over folder is shared.
  client->Set(RegisterHandler::kRegisterSave, 31);
  PresetsParamVector loaded;
  loaded.SetWaitTimeout(15000);
  Stderr([&] { EXPECT_TRUE(loaded.Load(static_cast<eConfigID_t>(31), client)); });
  unsigned int size = 0;
  ASSERT_NE(nullptr, loaded.GetData(size));
  EXPECT_GT(size, PresetImage::kHeaderSize);
  Stderr([&] { EXPECT_TRUE(loaded.Store(static_cast<eConfigID_t>(32), client)); });
  Stderr([&] { EXPECT_FALSE(loaded.Load(static_cast<eConfigID_t>(33), client)); });
  EXPECT_EQ(kRegisterEmpty, client->Get(kRegisterLoadResultParamID));
  factory.Disconnect(client);
  Stderr([&] { daemon.Stop(); });
}
