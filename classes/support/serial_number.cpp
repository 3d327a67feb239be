#include "support/serial_number.h"

#include <net/if.h>
#include <netdb.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "support/logger.h"

namespace {

constexpr int kMacBytes = 6;
constexpr int kSerialDisplayOffset = 500;

std::string g_interface = SerialNumber_KR9::kDefaultInterface;
SerialNumber_KR9::MacReader g_reader = &SerialNumber_KR9::ReadMacAddress;

}  // namespace

SerialNumber_KR9::eMacRead_t SerialNumber_KR9::ReadMacAddress(const std::string& interface_name,
                                                              unsigned char mac[6]) {
  const protoent* tcp = getprotobyname("tcp");
  if (tcp == nullptr) return eMacRead_NoProtocol;
  int fd = socket(AF_INET, SOCK_STREAM, tcp->p_proto);
  if (fd < 0) return eMacRead_NoSocket;
  ifreq request;
  memset(&request, 0, sizeof request);
  strncpy(request.ifr_name, interface_name.c_str(), IFNAMSIZ - 1);
  ioctl(fd, SIOCGIFHWADDR, &request);
  close(fd);
  memcpy(mac, request.ifr_hwaddr.sa_data, kMacBytes);
  return eMacRead_OK;
}

std::string SerialNumber_KR9::GetMacAddress() {
  unsigned char mac[kMacBytes] = {};
  switch (g_reader(g_interface, mac)) {
    case eMacRead_NoProtocol:
      return "Proto error";
    case eMacRead_NoSocket:
      return "socket error";
    case eMacRead_OK:
      break;
  }
  char text[3 * kMacBytes];
  snprintf(text, sizeof text, "%02X:%02X:%02X:%02X:%02X:%02X", mac[0], mac[1], mac[2], mac[3],
           mac[4], mac[5]);
  return text;
}

int SerialNumber_KR9::GetSerialNumber() {
  unsigned char mac[kMacBytes] = {};
  switch (g_reader(g_interface, mac)) {
    case eMacRead_NoProtocol:
      fprintf(stderr, "cannot map \"tcp\" to protocol number\n");
      return 0;
    case eMacRead_NoSocket:
      perror("socket creation failed");
      return 0;
    case eMacRead_OK:
      break;
  }
  const unsigned int oui = (mac[0] << 16) | (mac[1] << 8) | mac[2];
  const unsigned int nic = (mac[3] << 16) | (mac[4] << 8) | mac[5];
  if (oui == kZynOUI && nic >= kManufacturingFirst && nic < kManufacturingEnd)
    return static_cast<int>(nic - kManufacturingFirst);
  if (oui == kZynOUI && nic >= kEngineeringFirst && nic < kEngineeringEnd)
    return static_cast<int>(kEngineeringFirst) - static_cast<int>(nic);
  // A development host's address is in neither range: only verbose says so.
  if (zyn::logging::IsVerbose())
    fprintf(stderr,
            "SerialNumber_KR9::GetSerialNumber(). Error!!!  Mac address is not in manufacturing "
            "range and it is not in engineering range\n");
  return 0;
}

std::string SerialNumber_KR9::FormatSerialNumber(int serial) {
  char text[32];
  if (serial < 0) {
    snprintf(text, sizeof text, "ENG%06lld ", -static_cast<long long>(serial));
  } else {
    snprintf(text, sizeof text, "21F%06lld  ",
             static_cast<long long>(serial) + kSerialDisplayOffset);
  }
  return text;
}

std::string SerialNumber_KR9::GetFormattedSerialNumber() {
  return FormatSerialNumber(GetSerialNumber());
}

void SerialNumber_KR9::SetInterfaceName(const std::string& interface_name) {
  g_interface = interface_name;
}

void SerialNumber_KR9::SetMacReader(MacReader reader) {
  g_reader = reader != nullptr ? reader : &SerialNumber_KR9::ReadMacAddress;
}
