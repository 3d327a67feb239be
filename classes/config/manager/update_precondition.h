// UpdatePrecondition is offered every pending update before a store writes
// it. The queue holds (parameter ID, value) pairs, the front pair being the
// update under test; a precondition may refuse it (false), repair the front
// value in place, or add further pairs, which the store then processes in
// queue order. Preconditions run on the writer's thread without a lock.
#ifndef CLASSES_CONFIG_MANAGER_UPDATE_PRECONDITION_H
#define CLASSES_CONFIG_MANAGER_UPDATE_PRECONDITION_H

#include <deque>
#include <string>
#include <utility>

class Config;
class Serializable;

namespace zyn {
namespace config {

typedef std::deque<std::pair<unsigned int, unsigned int>> IntegerUpdates;
typedef std::deque<std::pair<unsigned int, std::string>> StringUpdates;

class UpdatePrecondition {
 public:
  UpdatePrecondition() = default;
  virtual ~UpdatePrecondition() = default;
  UpdatePrecondition(const UpdatePrecondition&) = delete;
  UpdatePrecondition& operator=(const UpdatePrecondition&) = delete;

  virtual bool IsUpdateValid(Config* config, IntegerUpdates& updates) = 0;
  virtual bool IsUpdateValid(Config* config, StringUpdates& updates) = 0;
  virtual bool IsUpdateValid(Config* config, unsigned int paramID, Serializable& value) = 0;
};

}  // namespace config
}  // namespace zyn

#endif  // CLASSES_CONFIG_MANAGER_UPDATE_PRECONDITION_H
