// FactoryReset returns the store's parameters to their factory defaults.
//
// "FACTORY" (eParamID_FactorySettings = 1) resets every parameter whose
// factory-reset type is not eFactoryReset_Exclude; the excluded ones (the
// network identity and addresses, the system name, the front-panel lock,
// the factory preset's name) keep their values, and the saved presets stay
// with their names. "HARD FACTORY" (2) resets every parameter of the
// catalogue, preset names included; the owner also clears the saved
// presets. Neither touches the preset and factory-reset commands themselves,
// which the owner is executing, nor the owner's own parameters.
//
// Only values that differ from their default are set, so listeners receive
// one event per value changed. Stateless; called on the owner's register
// thread.
#ifndef CLASSES_CONFIG_OWNER_FACTORY_RESET_H
#define CLASSES_CONFIG_OWNER_FACTORY_RESET_H

class Config;
class ParamDescriptor;

class FactoryReset {
 public:
  // The values of eParamID_FactorySettings.
  static constexpr unsigned int kIdle = 0;
  static constexpr unsigned int kFactory = 1;
  static constexpr unsigned int kHardFactory = 2;

  // Whether the reset of the given kind sets this parameter.
  static bool Resets(const ParamDescriptor* descriptor, bool hard);
  // Resets the store; returns the number of values changed. A value the
  // store refuses is reported and skipped.
  static unsigned int Apply(Config* store, bool hard);
};

#endif  // CLASSES_CONFIG_OWNER_FACTORY_RESET_H
