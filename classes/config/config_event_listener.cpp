#include "config/config_event_listener.h"

bool ConfigEventListener::DataChanged(eParam_t, std::string&, timeval) { return false; }
