// Presets, the preset file hand-over, the factory reset and the owner's text
// check, with the register commands called directly.
#include "config/owner/register_handler.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <map>

#include "config/descriptors/owner_params.h"
#include "config/descriptors/string_descriptor.h"
#include "config/owner/file_system.h"
#include "config/owner/preset_image.h"
#include "config/owner/preset_store.h"
#include "config/owner/string_length_precondition.h"
#include "config/owner/value_image.h"
#include "config/values/integer_value.h"
#include "config/values/presets_param_vector.h"
#include "owner_fixture.h"

using namespace owner_test;
using namespace zyn::config::values;

namespace {

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
    auto* list = dynamic_cast<EnumDescriptor*>(GetDescriptor(choice));
    for (auto& value : list->GetOrderedEnumValueDescriptors())
      if (value.GetValue() != list->GetFactoryDefault()) other = value.GetValue();
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
  handler.Save(4);
  EXPECT_EQ(kRegisterDone, store.Get(kSaveResult));
  Stderr([&] { handler.Save(0); });
  EXPECT_EQ(kRegisterFailed, store.Get(kSaveResult)) << "the factory preset stays";
  FaultyFiles failing;
  failing.failFsync = true;
  PresetStore unwritable(&failing, folder.path);
  Stderr([&] {
    EXPECT_EQ("preset 6 could not be written to the state folder",
              RegisterHandler(&store, &unwritable, folder.path).Save(6).message);
  });
  EXPECT_EQ(kRegisterFailed, store.Get(kSaveResult)) << "a failed write";

  store.Set(range, low + 4);
  store.Set(kFrontPanelLock, 0);
  EventCounter counter;
  store.AddConfigEventListener(&counter);
  Stderr([&] { handler.Recall(4); });
  store.RemoveConfigEventListener(&counter);
  EXPECT_EQ(kRegisterDone, store.Get(kRecallResult));
  EXPECT_EQ(low + 3, store.Get(range));
  EXPECT_EQ(0u, store.Get(kFrontPanelLock)) << "excluded from presets";
  EXPECT_EQ((std::map<unsigned int, int>{{kRecallResult, 2}, {range, 1}}), counter.events)
      << "one event per changed value";

  Stderr([&] { handler.Recall(9); });
  EXPECT_EQ(kRegisterEmpty, store.Get(kRecallResult));
  Stderr([&] { handler.Recall(0); });
  EXPECT_EQ(Range()->GetFactoryDefault(), store.Get(range));
  EXPECT_NE(other, store.Get(choice));
  EXPECT_EQ(1u, PresetStore(FileSystem::Default(), folder.path).Load()) << "kept on disk";
}

// Tokened requests run through the handler's thread and each gets its own
// answer line; malformed ones are answered as failures when they carry a
// token and ignored when they do not.
TEST_F(RegisterHandlerTest, TokenedRequestsAreAnsweredOnePerToken) {
  std::string token;
  unsigned int command = 0, number = 0;
  for (const char* bad :
       {"", "0000000 save 1", "00000000 save 1", "1234567g save 1", "12345678 save",
        "12345678 reset 3", "12345678 wipe 1", "12345678 save 1000", "12345678 save -1"})
    EXPECT_FALSE(RegisterHandler::ParseRequest(bad, token, command, number)) << bad;
  ASSERT_TRUE(RegisterHandler::ParseRequest("0a0B0c0D recall 12", token, command, number));
  EXPECT_EQ("0a0B0c0D", token);
  EXPECT_EQ(RegisterHandler::kRegisterRecall, command);
  EXPECT_EQ(12u, number);

  store.Set(range, Range()->GetMinValue() + 1);
  handler.Start();
  Stderr([&] {
    for (const char* request :
         {"00000001 save 6", "00000002 recall 9", "00000003 wipe 1", "00000004 probe 6"})
      store.Set(kOwnerRegisterRequestParamID, std::string(request));
    for (int i = 5; i < 45; ++i) {
      char request[32];
      snprintf(request, sizeof request, "%08x probe 9", i);
      store.Set(kOwnerRegisterRequestParamID, std::string(request));
    }
    handler.Stop();
  });
  std::string answers;
  ASSERT_TRUE(store.Get(kOwnerRegisterOutcomesParamID, answers));
  EXPECT_EQ(kOwnerOutcomeLines,
            static_cast<size_t>(std::count(answers.begin(), answers.end(), '\n')));
  EXPECT_TRUE(Has(answers, "\n0000002c 4 preset 9 is empty\n")) << answers;
  EXPECT_FALSE(Has(answers, "00000001 ")) << "the oldest answers go first";
  EXPECT_EQ(kRegisterEmpty, store.Get(kRecallResult)) << "plain result still moves";
  std::string six;
  EXPECT_TRUE(presets.Get(6, six));
}

// A preset whose newer copy is damaged is recalled from the older one, and
// the requester is told so; a fresh save makes the copy whole again.
TEST_F(RegisterHandlerTest, RecallFromTheOlderCopySaysSo) {
  store.Set(range, Range()->GetMinValue() + 1);
  Stderr([&] { handler.Save(8); });
  store.Set(range, Range()->GetMinValue() + 2);
  Stderr([&] { handler.Save(8); });  // the newer copy, in preset_8.b
  std::string path = folder.path + "/preset_8.b", bytes;
  ASSERT_TRUE(FileSystem::Default()->ReadFile(path, 1 << 20, bytes));
  bytes[bytes.size() - 5] ^= 0x40;
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;

  PresetStore reread(FileSystem::Default(), folder.path);
  RegisterHandler after(&store, &reread, folder.path);
  Stderr([&] { reread.Load(); });
  RegisterHandler::Outcome outcome{0, ""};
  std::string err = Stderr([&] { outcome = after.Recall(8); });
  EXPECT_EQ(kRegisterDone, outcome.state);
  EXPECT_EQ("preset 8 recalled from its older copy: the newer copy is damaged", outcome.message);
  EXPECT_TRUE(Has(err, "older copy")) << err;
  EXPECT_EQ(Range()->GetMinValue() + 1, store.Get(range));
  Stderr([&] {
    after.Save(8);
    outcome = after.Recall(8);
  });
  EXPECT_EQ("preset 8 recalled", outcome.message);
}

// Refuses every update of one parameter, as a store's own check may.
struct Refuse : zyn::config::UpdatePrecondition {
  explicit Refuse(unsigned int refused) : id(refused) {}
  bool IsUpdateValid(Config*, zyn::config::IntegerUpdates& u) override {
    return u.front().first != id;
  }
  bool IsUpdateValid(Config*, zyn::config::StringUpdates&) override { return true; }
  bool IsUpdateValid(Config*, unsigned int, Serializable&) override { return true; }
  unsigned int id;
};

TEST_F(RegisterHandlerTest, RecallIsAllOrNothing) {
  unsigned int low = Range()->GetMinValue();
  struct Bad {
    unsigned int id, value;
    std::string reason;
  };
  Refuse refuse(choice);  // the last case: refused by the store after `range` was applied
  for (const Bad& bad : {Bad{choice, 0xBAD, "2989 is not in its list"},
                         Bad{kFrontPanelLock, 1, "eParamID_FrontPanelLock does not belong"},
                         Bad{choice, other, " refused by the store"}}) {
    Vector values;
    values.Add(new IntegerValue(eConfigID_Default, range, eCParam_IntegerValue, low + 2));
    values.Add(new IntegerValue(eConfigID_Default, bad.id, eCParam_IntegerValue, bad.value));
    ASSERT_TRUE(presets.Save(5, ValueImage::Encode(values)));
    if (bad.value == other) store.AddUpdatePrecondition(&refuse);
    std::string err = Stderr([&] { handler.Recall(5); });
    store.RemoveUpdatePrecondition(&refuse);
    EXPECT_EQ(kRegisterFailed, store.Get(kRecallResult)) << bad.reason;
    EXPECT_EQ(Range()->GetFactoryDefault(), store.Get(range)) << "nothing applied";
    EXPECT_TRUE(Has(err, "RegisterHandler::Recall - preset 5 refused: ")) << err;
    EXPECT_TRUE(Has(err, bad.reason)) << err;
  }
}

TEST_F(RegisterHandlerTest, HandOverChecksTheWholeImage) {
  store.Set(range, Range()->GetMinValue() + 1);
  Stderr([&] { handler.Save(2); });
  Stderr([&] { handler.Load(2); });
  EXPECT_EQ(kRegisterDone, store.Get(kRegisterLoadResultParamID));
  std::string image;
  ASSERT_TRUE(FileSystem::Default()->ReadFile(folder.path + "/preset_2.bin", 1 << 20, image));
  Stderr([&] { handler.Load(3); });
  EXPECT_EQ(kRegisterEmpty, store.Get(kRegisterLoadResultParamID));

  WriteFile(6, image);
  Stderr([&] { handler.Store(6); });
  EXPECT_EQ(kRegisterDone, store.Get(kRegisterStoreResultParamID));
  std::string two, six;
  EXPECT_TRUE(presets.Get(2, two) && presets.Get(6, six) && two == six);

  std::string values = image.substr(PresetImage::kHeaderSize);
  std::string longer = PresetImage::Encode(PresetImage::UnitProduct(), values);
  longer[11] = static_cast<char>(longer[11] + 1);
  const std::pair<std::string, std::string> rejected[] = {
      {PresetImage::Encode(0x12345678, values), "made for product 0x12345678"},
      {longer, "in the header"},
      {image.substr(0, image.size() - 3), "in the file"},
      {PresetImage::Encode(PresetImage::UnitProduct(), values + "x"), "do not read back"},
      {"", "truncated at 0 bytes"}};
  for (const auto& [bytes, reason] : rejected) {
    WriteFile(7, bytes);
    std::string err = Stderr([&] { handler.Store(7); });
    EXPECT_EQ(kRegisterEmpty, store.Get(kRegisterStoreResultParamID)) << reason;
    EXPECT_TRUE(Has(err, reason)) << err;
  }
  unlink((folder.path + "/preset_7.bin").c_str());
  Stderr([&] { handler.Store(7); });
  EXPECT_EQ(kRegisterFailed, store.Get(kRegisterStoreResultParamID)) << "missing file";
  WriteFile(0, image);
  Stderr([&] { handler.Store(0); });
  EXPECT_EQ(kRegisterFailed, store.Get(kRegisterStoreResultParamID)) << "factory preset";
  EXPECT_FALSE(presets.Get(7, values));
}

TEST_F(RegisterHandlerTest, FactoryResetKeepsIdentityHardResetClearsAllAndTextsKeepTheirLimits) {
  store.Set(range, Range()->GetMinValue() + 1);
  store.Set(kFrontPanelLock, 1);
  store.Set(kSystemName, std::string("rack-7"));
  Stderr([&] { handler.Save(3); });
  store.Set(RegisterHandler::kFactorySettings, 1);
  Stderr([&] { handler.Reset(false); });
  std::string name;
  EXPECT_TRUE(store.Get(kSystemName, name) && name == "rack-7");
  EXPECT_EQ(1u, store.Get(kFrontPanelLock));
  EXPECT_EQ(Range()->GetFactoryDefault(), store.Get(range));
  EXPECT_EQ(0u, store.Get(RegisterHandler::kFactorySettings)) << "back to idle";
  EXPECT_TRUE(presets.Get(3, name));

  Stderr([&] { handler.Reset(true); });
  EXPECT_TRUE(store.Get(kSystemName, name) && name == "zyn-kr-9");
  EXPECT_EQ(0u, store.Get(kFrontPanelLock));
  EXPECT_FALSE(presets.Get(3, name));
  EXPECT_EQ(0u, PresetStore(FileSystem::Default(), folder.path).Load());

  store.AddUpdatePrecondition(new StringLengthPrecondition());
  std::string err = Stderr([&] { EXPECT_FALSE(store.Set(kSystemName, std::string(3000, 'x'))); });
  EXPECT_TRUE(Has(err,
                  "StringLengthPrecondition::IsUpdateValid - eParamID_SystemName refuses "
                  "3000 characters (1 to 20)\n"))
      << err;
  EXPECT_TRUE(store.Set(kSystemName, std::string(20, 'x')));
  // Every text the catalogue starts with passes its own limits.
  for (unsigned int id : GetParamIDs()) {
    std::string value;
    bool text = dynamic_cast<StringDescriptor*>(GetDescriptor(id)) && store.Get(id, value);
    EXPECT_TRUE(!text || store.Set(id, value)) << GetDescriptor(id)->GetParamIDName() << value;
  }
}

TEST_F(RegisterHandlerTest, HandOverFolderIsNotATrap) {
  Stderr([&] { handler.Save(2); });
  Vector none;
  std::string image = PresetImage::Encode(PresetImage::UnitProduct(), ValueImage::Encode(none));
  TempFolder elsewhere;
  std::string target = elsewhere.path + "/target";
  std::ofstream(target) << image;
  auto preset = [&](unsigned int n) {
    return folder.path + "/preset_" + std::to_string(n) + ".bin";
  };
  // A symlink or a FIFO planted as the preset file: not followed, nothing
  // blocks, the operation fails.
  ASSERT_EQ(0, symlink(target.c_str(), preset(2).c_str()));
  ASSERT_EQ(0, symlink(target.c_str(), preset(3).c_str()));
  ASSERT_EQ(0, mkfifo(preset(4).c_str(), 0600));
  Stderr([&] { handler.Load(2); });
  EXPECT_EQ(kRegisterFailed, store.Get(kRegisterLoadResultParamID));
  for (unsigned int n : {3, 4}) {
    std::string err = Stderr([&] { handler.Store(n); });
    EXPECT_EQ(kRegisterFailed, store.Get(kRegisterStoreResultParamID)) << n;
    EXPECT_TRUE(Has(err, preset(n) + " cannot be read")) << err;
  }
  std::string kept;
  ASSERT_TRUE(FileSystem::Default()->ReadFile(target, 1 << 20, kept));
  EXPECT_EQ(image, kept) << "the link's target is untouched";

  // A folder writable by others, owned by another user, or a symlink is
  // refused by both directions.
  std::string link = elsewhere.path + "/link";
  ASSERT_EQ(0, symlink(folder.path.c_str(), link.c_str()));
  RegisterHandler linked(&store, &presets, link);
  struct Case {
    RegisterHandler* handler;
    std::function<void()> spoil;
    std::string why;
  };
  std::vector<Case> cases = {
      {&linked, [] {}, "it is a symlink"},
      {&handler, [&] { chmod(folder.path.c_str(), 0777); }, "it is writable by others"},
      {&handler, [&] { chmod(folder.path.c_str(), 01777); }, "it is writable by others"}};
  if (geteuid() == 0)
    cases.push_back({&handler,
                     [&] {
                       chmod(folder.path.c_str(), 0700);
                       ASSERT_EQ(0, chown(folder.path.c_str(), 4321, -1));
                     },
                     "it is owned by uid 4321"});
  for (const Case& c : cases) {
    c.spoil();
    std::string err = Stderr([&] { c.handler->Load(2), c.handler->Store(5); });
    EXPECT_EQ(kRegisterFailed, store.Get(kRegisterLoadResultParamID)) << c.why;
    EXPECT_EQ(kRegisterFailed, store.Get(kRegisterStoreResultParamID)) << c.why;
    EXPECT_EQ(2u, Count(err, "the preset folder ")) << err;
    EXPECT_EQ(2u, Count(err, c.why)) << err;
  }
  ASSERT_EQ(0, chown(folder.path.c_str(), geteuid(), -1));

  // A missing folder is made private to configd's group.
  RegisterHandler fresh(&store, &presets, folder.path + "/zyn");
  Stderr([&] { fresh.Load(2); });
  EXPECT_EQ(kRegisterDone, store.Get(kRegisterLoadResultParamID));
  struct stat info;
  ASSERT_EQ(0, stat((folder.path + "/zyn").c_str(), &info));
  EXPECT_EQ(0770u, info.st_mode & 07777);
  ASSERT_EQ(0, stat((folder.path + "/zyn/preset_2.bin").c_str(), &info));
  EXPECT_EQ(0660u, info.st_mode & 07777);
  unlink((folder.path + "/zyn/preset_2.bin").c_str());
  rmdir((folder.path + "/zyn").c_str());
}
