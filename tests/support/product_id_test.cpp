// Product identity: the environment rules of CProductID with their caching,
// and the serial number that SerialNumber_KR9 derives from the MAC address.
#include "support/product_id.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <string>

#include "support/serial_number.h"
#include "test_stderr.h"

namespace {

void SetOrUnset(const char* variable, const char* value) {
  value != nullptr ? setenv(variable, value, 1) : unsetenv(variable);
}

// Each test starts from a fresh cache and leaves the environment as found.
class ProductIDTest : public testing::Test {
 protected:
  void SetUp() override {
    for (int i = 0; i < 2; ++i)
      if (const char* value = getenv(kVariables[i])) saved_[i] = value;
  }
  void TearDown() override {
    for (int i = 0; i < 2; ++i) SetOrUnset(kVariables[i], saved_[i] ? saved_[i]->c_str() : nullptr);
    CProductID::ForgetCachedAnswers();
  }
  void Start(const char* product_id, const char* release_build,
             const char* release_file = "/nonexistent/pollux_release") {
    SetOrUnset("PRODUCT_ID", product_id);
    SetOrUnset("RELEASE_BUILD", release_build);
    CProductID::ForgetCachedAnswers(release_file);
  }

  CProductID product;

 private:
  static constexpr const char* kVariables[2] = {"PRODUCT_ID", "RELEASE_BUILD"};
  std::optional<std::string> saved_[2];
};

std::string Answers(const CProductID& p) {
  std::string answers;
  answers += p.isKR9() ? "KR9 " : "";
  answers += p.isKR21() ? "KR21 " : "";
  answers += p.isKR2() ? "KR2 " : "";
  answers += p.isTundra() ? "Tundra " : "";
  answers += p.isPollux() ? "Pollux " : "";
  return answers;
}

TEST_F(ProductIDTest, ProductStringsMatchExactlyAreCachedAndReleaseComesFromTheVariableOrMarker) {
  const struct {
    const char* product;
    const char* answers;
  } cases[] = {
      {"KR-9", "KR9 "},       {"KR21", "KR21 Tundra "},
      {"KR2", "KR2 Tundra "}, {"TUNDRA", "Tundra "},
      {"POLLUX", "Pollux "},  {"kr-9", ""},
      {"KR-9 ", ""},          {"", ""},
  };
  for (const auto& c : cases) {
    Start(c.product, nullptr);
    EXPECT_EQ(Answers(product), c.answers) << "PRODUCT_ID=\"" << c.product << "\"";
    EXPECT_STREQ(product.getProductID(), c.product);
    EXPECT_FALSE(product.canDoHeight(1080));
  }
  // Unset, every answer is false and isPollux says so once.
  Start(nullptr, nullptr);
  std::string answers;
  const std::string err = Stderr([&] {
    answers = Answers(product);
    product.isPollux();
    EXPECT_FALSE(product.isRelease());
  });
  EXPECT_EQ(answers, "");
  EXPECT_EQ(product.getProductID(), nullptr);
  EXPECT_EQ(err, "isPollux: PRODUCT_ID environment variable not set");

  // The answers are cached until forgotten.
  Start("KR21", nullptr);
  EXPECT_TRUE(product.isTundra());
  setenv("PRODUCT_ID", "KR-9", 1);
  EXPECT_TRUE(product.isKR21()) << "the first answer stays";
  EXPECT_FALSE(product.isKR9()) << "the product ID was read once";
  EXPECT_STREQ(product.getProductID(), "KR21");
  CProductID::ForgetCachedAnswers();
  EXPECT_TRUE(product.isKR9());

  Start("KR-9", "1");
  EXPECT_TRUE(product.isRelease());

  Start("KR-9", "0");
  EXPECT_FALSE(product.isRelease());

  char marker[] = "/tmp/product_id_test_XXXXXX";
  const int fd = mkstemp(marker);
  ASSERT_GE(fd, 0);
  close(fd);
  Start("KR-9", nullptr, marker);
  EXPECT_FALSE(product.isRelease()) << "the marker counts only on Pollux";
  EXPECT_EQ(getenv("RELEASE_BUILD"), nullptr);

  Start("POLLUX", "0", marker);
  EXPECT_TRUE(product.isRelease());
  EXPECT_STREQ(getenv("RELEASE_BUILD"), "1") << "the marker sets the variable";
  unlink(marker);

  Start("POLLUX", nullptr, marker);
  EXPECT_FALSE(product.isRelease()) << "no marker file";
}

// A MAC address source for the serial-number tests.
unsigned char g_mac[6];
std::string g_interface;
SerialNumber_KR9::eMacRead_t g_result = SerialNumber_KR9::eMacRead_OK;

SerialNumber_KR9::eMacRead_t FakeMac(const std::string& interface_name, unsigned char mac[6]) {
  g_interface = interface_name;
  if (g_result == SerialNumber_KR9::eMacRead_NoSocket) errno = EMFILE;
  for (int i = 0; i < 6; ++i) mac[i] = g_mac[i];
  return g_result;
}

class SerialNumberTest : public testing::Test {
 protected:
  void SetUp() override {
    g_result = SerialNumber_KR9::eMacRead_OK;
    SerialNumber_KR9::SetMacReader(&FakeMac);
  }
  void TearDown() override {
    SerialNumber_KR9::SetMacReader(nullptr);
    SerialNumber_KR9::SetInterfaceName(SerialNumber_KR9::kDefaultInterface);
  }
  static void SetMac(unsigned int oui, unsigned int nic) {
    const unsigned int words[2] = {oui, nic};
    for (int i = 0; i < 6; ++i) g_mac[i] = (words[i / 3] >> (8 * (2 - i % 3))) & 0xFF;
  }
};

constexpr const char kRangeError[] =
    "SerialNumber_KR9::GetSerialNumber(). Error!!!  Mac address is not in manufacturing range "
    "and it is not in engineering range\n";

TEST_F(SerialNumberTest, RangesGiveSerialsAndFormatsAndTheMacAddressItsTextOrFailure) {
  const unsigned int oui = SerialNumber_KR9::kZynOUI;
  const struct {
    unsigned int oui, nic;
    int serial;
    const char* formatted;
  } cases[] = {
      {oui, 0x360000, 0, "21F000500  "},      {oui, 0x36000A, 10, "21F000510  "},
      {oui, 0x39FFFF, 262143, "21F262643  "}, {oui, 0x880C00, 0, "21F000500  "},
      {oui, 0x880C01, -1, "ENG000001 "},      {oui, 0x880CFF, -255, "ENG000255 "},
      {oui, 0x35FFFF, 0, "21F000500  "},      {oui, 0x3A0000, 0, "21F000500  "},
      {oui, 0x880BFF, 0, "21F000500  "},      {oui, 0x880D00, 0, "21F000500  "},
      {0x0A5E9D, 0x360001, 0, "21F000500  "}, {0x000000, 0x000000, 0, "21F000500  "},
  };
  SetMac(0x000000, 0x000000);
  EXPECT_EQ(Stderr([] { SerialNumber_KR9::GetSerialNumber(); }), "")
      << "a host outside the ranges is no fault: said only when verbose";
  VerboseDiagnostics verbose;
  for (const auto& c : cases) {
    SetMac(c.oui, c.nic);
    int serial = 1;
    const std::string err = Stderr([&] { serial = SerialNumber_KR9::GetSerialNumber(); });
    const bool in_range = c.oui == oui && ((c.nic >= 0x360000 && c.nic < 0x3A0000) ||
                                           (c.nic >= 0x880C00 && c.nic < 0x880D00));
    EXPECT_EQ(serial, c.serial) << std::hex << c.oui << ":" << c.nic;
    EXPECT_EQ(err, in_range ? "" : kRangeError) << std::hex << c.oui << ":" << c.nic;
    Stderr([&] { EXPECT_EQ(SerialNumber_KR9::GetFormattedSerialNumber(), c.formatted); });
  }
  EXPECT_EQ(SerialNumber_KR9::FormatSerialNumber(-2147483647 - 1), "ENG2147483648 ");
  EXPECT_EQ(SerialNumber_KR9::FormatSerialNumber(999999), "21F1000499  ");

  // The MAC address as text, and the reader's failures.
  SetMac(0x0A5E9C, 0x36B0FF);
  EXPECT_EQ(SerialNumber_KR9::GetMacAddress(), "0A:5E:9C:36:B0:FF");
  EXPECT_EQ(g_interface, "eth0");
  SerialNumber_KR9::SetInterfaceName("lo");
  SerialNumber_KR9::GetMacAddress();
  EXPECT_EQ(g_interface, "lo");

  g_result = SerialNumber_KR9::eMacRead_NoProtocol;
  EXPECT_EQ(SerialNumber_KR9::GetMacAddress(), "Proto error");
  int serial = 1;
  EXPECT_EQ(Stderr([&] { serial = SerialNumber_KR9::GetSerialNumber(); }),
            "cannot map \"tcp\" to protocol number\n");
  EXPECT_EQ(serial, 0);

  g_result = SerialNumber_KR9::eMacRead_NoSocket;
  EXPECT_EQ(SerialNumber_KR9::GetMacAddress(), "socket error");
  EXPECT_EQ(Stderr([&] { serial = SerialNumber_KR9::GetSerialNumber(); }),
            "socket creation failed: Too many open files\n");
  EXPECT_EQ(serial, 0);
}

TEST(SerialNumberIoctlTest, LoopbackReadsAsZerosAndHasNoSerial) {
  unsigned char mac[6] = {1, 1, 1, 1, 1, 1};
  ASSERT_EQ(SerialNumber_KR9::ReadMacAddress("lo", mac), SerialNumber_KR9::eMacRead_OK);
  for (unsigned char byte : mac) EXPECT_EQ(byte, 0);
  SerialNumber_KR9::SetInterfaceName("lo");
  VerboseDiagnostics verbose;
  int serial = 1;
  EXPECT_EQ(Stderr([&] { serial = SerialNumber_KR9::GetSerialNumber(); }), kRangeError);
  EXPECT_EQ(serial, 0);
  EXPECT_EQ(SerialNumber_KR9::GetMacAddress(), "00:00:00:00:00:00");
  SerialNumber_KR9::SetInterfaceName(SerialNumber_KR9::kDefaultInterface);
}

}  // namespace
