// Checkpoint (class ID 7) marks a position within the stored data of one
// store. Stored as two big-endian words, the offset first ("offset") and
// then the store ID ("configID"), although the store ID comes first in
// memory: stored data depends on this order.
#ifndef CLASSES_CONFIG_VALUES_CHECKPOINT_H
#define CLASSES_CONFIG_VALUES_CHECKPOINT_H

#include "config/config_types.h"
#include "config/values/serializable.h"

class Checkpoint : public Serializable {
 public:
  // Store -1, offset 0.
  Checkpoint();
  explicit Checkpoint(eConfigID_t configID);

  void Serialize(Serializer* serializer) override;
  void Deserialize(DeSerializer* deserializer) override;

  eConfigID_t GetConfigID() const { return configID; }
  void SetConfigID(eConfigID_t id) { configID = id; }
  unsigned int GetOffset() const { return offset; }
  void SetOffset(unsigned int v) { offset = v; }

 private:
  eConfigID_t configID;
  unsigned int offset;
};

#endif  // CLASSES_CONFIG_VALUES_CHECKPOINT_H
