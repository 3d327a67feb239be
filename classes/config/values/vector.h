// Vector (class ID 9) is an ordered list of serialisable objects that it
// owns: elements added to it are destroyed with it. Encoded as "Size" (the
// number of elements) followed by each element framed with its class ID;
// reading recreates every element through the class registry and keeps its
// own copy of the registry's shared scratch objects.
//
// Not thread-safe.
#ifndef CLASSES_CONFIG_VALUES_VECTOR_H
#define CLASSES_CONFIG_VALUES_VECTOR_H

#include <cstddef>
#include <vector>

#include "config/values/serializable.h"

namespace zyn {
namespace config {
namespace values {

class Vector : public Serializable {
 public:
  Vector();
  ~Vector() override;
  Vector(const Vector&) = delete;
  Vector& operator=(const Vector&) = delete;

  void Serialize(Serializer* serializer) override;
  // Replaces the elements with those read; stops at the first element that
  // cannot be read.
  void Deserialize(DeSerializer* deserializer) override;

  // Appends `element` and takes ownership of it; null is ignored.
  void Add(Serializable* element);
  [[nodiscard]] size_t Size() const { return elements.size(); }
  // The element at `index` (still owned by the vector), or null.
  [[nodiscard]] Serializable* Get(size_t index) const;
  void Clear();

 private:
  std::vector<Serializable*> elements;
};

}  // namespace values
}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_VALUES_VECTOR_H
