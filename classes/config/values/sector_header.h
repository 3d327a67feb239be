// SectorHeader (class ID 6) heads a stored sector of settings: its write
// counter, configuration version and data length, stored as three
// big-endian words ("Odometer", "ConfigVersion", "Length").
#ifndef CLASSES_CONFIG_VALUES_SECTOR_HEADER_H
#define CLASSES_CONFIG_VALUES_SECTOR_HEADER_H

#include "config/values/serializable.h"

class SectorHeader : public Serializable {
 public:
  SectorHeader(unsigned int odometer, unsigned int configVersion, unsigned int length);
  // A new header owned by the caller.
  static SectorHeader* Create(unsigned int odometer, unsigned int configVersion,
                              unsigned int length);

  // Same class ID and all three fields equal.
  bool IsEqual(Serializable* other) override;
  void Serialize(Serializer* serializer) override;
  void Deserialize(DeSerializer* deserializer) override;

  unsigned int GetOdometer() const { return odometer; }
  void SetOdometer(unsigned int v) { odometer = v; }
  unsigned int GetConfigVersion() const { return configVersion; }
  void SetConfigVersion(unsigned int v) { configVersion = v; }
  unsigned int GetLength() const { return length; }
  void SetLength(unsigned int v) { length = v; }

 private:
  unsigned int odometer;
  unsigned int configVersion;
  unsigned int length;
};

#endif  // CLASSES_CONFIG_VALUES_SECTOR_HEADER_H
