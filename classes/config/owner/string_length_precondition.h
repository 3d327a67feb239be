// StringLengthPrecondition is the owner's own check of texts: it refuses a
// string update whose length lies outside its parameter's descriptor limits
// (minLength to maxLength), so that a client cannot store a text the unit's
// displays and files were never sized for. Integer updates pass; the store's
// default precondition still checks their ranges and lists.
//
// Installed by configd in its store, which then owns it. Called on the
// writer's thread without a lock; it holds no state.
#ifndef CLASSES_CONFIG_OWNER_STRING_LENGTH_PRECONDITION_H
#define CLASSES_CONFIG_OWNER_STRING_LENGTH_PRECONDITION_H

#include "config/manager/update_precondition.h"

class StringLengthPrecondition : public zyn::config::UpdatePrecondition {
 public:
  StringLengthPrecondition() = default;

  bool IsUpdateValid(Config* config, zyn::config::IntegerUpdates& updates) override;
  // False, with one line on standard error, for a text of the wrong length.
  bool IsUpdateValid(Config* config, zyn::config::StringUpdates& updates) override;
  bool IsUpdateValid(Config* config, unsigned int paramID, Serializable& value) override;
};

#endif  // CLASSES_CONFIG_OWNER_STRING_LENGTH_PRECONDITION_H
