// ConfigFactory hands out Config objects by URI and takes them back. A
// factory is a Runnable so that a factory with work of its own can run it on
// a thread.
#ifndef CLASSES_CONFIG_CONFIG_FACTORY_H
#define CLASSES_CONFIG_CONFIG_FACTORY_H

#include <string>

#include "config/config.h"
#include "support/runnable.h"

class ConfigFactory : public Runnable {
 public:
  void Run() override = 0;
  // The Config for `uri`, or null; release it with Disconnect of the same
  // factory.
  virtual Config* Connect(std::string uri) = 0;
  virtual bool Disconnect(Config* config) = 0;
};

#endif  // CLASSES_CONFIG_CONFIG_FACTORY_H
