// SerialNumber_KR9 derives the unit's serial number from the MAC address of
// its Ethernet interface. Addresses of the maker's OUI fall into a
// manufacturing range (serials 0 and up, shown "21F" and the serial plus
// 500) and an engineering range (serials 0 and down, shown "ENG" and the
// negated serial); any other address has no serial.
//
// The class is a set of static operations. The interface name and the way
// the address is read are replaceable for tests; they are process-wide
// settings and must be changed only while no other thread uses the class.
#ifndef CLASSES_SUPPORT_SERIAL_NUMBER_H
#define CLASSES_SUPPORT_SERIAL_NUMBER_H

#include <string>

class SerialNumber_KR9 {
 public:
  static constexpr const char* kDefaultInterface = "eth0";
  // The maker's OUI: the first three bytes of every address it assigns.
  static constexpr unsigned int kZynOUI = 0x0A5E9C;
  // The lower 24 bits of the address: [first, end) of each range.
  static constexpr unsigned int kManufacturingFirst = 0x360000;
  static constexpr unsigned int kManufacturingEnd = 0x3A0000;
  static constexpr unsigned int kEngineeringFirst = 0x880C00;
  static constexpr unsigned int kEngineeringEnd = 0x880D00;

  enum eMacRead_t { eMacRead_OK, eMacRead_NoProtocol, eMacRead_NoSocket };
  // Reads the 6-byte hardware address of an interface into mac.
  typedef eMacRead_t (*MacReader)(const std::string& interface_name, unsigned char mac[6]);

  SerialNumber_KR9() = delete;

  // "%02X:%02X:%02X:%02X:%02X:%02X", or "Proto error" / "socket error" when
  // the address cannot be asked for.
  static std::string GetMacAddress();
  // The serial number by the address ranges; 0 on any failure, with the
  // reason on standard error.
  static int GetSerialNumber();
  // "ENG%06d " of -serial for a negative serial, otherwise "21F%06d  " of
  // serial + 500 (one and two trailing blanks).
  static std::string FormatSerialNumber(int serial);
  static std::string GetFormattedSerialNumber();

  // The default reader: SIOCGIFHWADDR on a TCP socket, closed before it
  // returns. An interface the kernel does not know reads as all zeros.
  static eMacRead_t ReadMacAddress(const std::string& interface_name, unsigned char mac[6]);

  // Test seams. A null reader restores ReadMacAddress.
  static void SetInterfaceName(const std::string& interface_name);
  static void SetMacReader(MacReader reader);
};

#endif  // CLASSES_SUPPORT_SERIAL_NUMBER_H
