// Serializable is the root of everything that crosses a process or network
// boundary or is stored: an object that knows its class ID and writes itself
// to a Serializer and reads itself back from a DeSerializer. A reader that
// meets an object in a stream learns only its class ID and recreates the
// object through ClassFactory.
//
// Not thread-safe: the class ID and the dirty flag are plain fields.
#ifndef CLASSES_CONFIG_VALUES_SERIALIZABLE_H
#define CLASSES_CONFIG_VALUES_SERIALIZABLE_H

#include <cstdint>

class Serializer;
class DeSerializer;

// Class IDs of the serialisable classes. 17 marks an object whose class ID
// was never set; 2-5 and 10-13 are not used by any class.
enum eClassID_t : int32_t {
  eClassID_IntegerValue = 0,
  eClassID_StringValue = 1,
  eClassID_SectorHeader = 6,
  eClassID_Checkpoint = 7,
  eClassID_Presets = 8,
  eClassID_Vector = 9,
  eClassID_PackageHeader = 14,
  eClassID_Unset = 17,
};

class Serializable {
 public:
  Serializable();
  explicit Serializable(eClassID_t classID);
  virtual ~Serializable() = default;

  virtual eClassID_t GetClassID();
  virtual void SetClassID(eClassID_t id);
  // True when `other` has the same class ID; subclasses narrow this.
  virtual bool IsEqual(Serializable* other);
  virtual void Serialize(Serializer* serializer);
  virtual void Deserialize(DeSerializer* deserializer);
  virtual bool IsDirty();
  virtual void SetDirty(bool dirty);

 protected:
  Serializable(const Serializable&) = default;
  Serializable& operator=(const Serializable&) = default;

 private:
  eClassID_t classID;
  bool dirty;
};

#endif  // CLASSES_CONFIG_VALUES_SERIALIZABLE_H
