// The descriptor registry: every parameter descriptor of the unit, keyed by
// parameter ID, with an index from the symbolic ID name ("eParamID_...") to
// the ID. CreateDescriptors builds the whole catalogue once; the lookups
// serve the configuration store and the parameter mapper.
//
// Ownership: the registry owns every descriptor entered into it; they live
// until the process ends. Lookups return borrowed pointers.
//
// Thread-safety: there is no lock. The catalogue is built by one thread
// (CreateDescriptors, AddDescriptor, IndexDescriptorNames) before any other
// thread reads the registry; after that every function here only reads and
// may be called from any thread.
#ifndef CLASSES_CONFIG_DESCRIPTORS_PARAM_DESCRIPTORS_H
#define CLASSES_CONFIG_DESCRIPTORS_PARAM_DESCRIPTORS_H

#include <string>
#include <unordered_map>
#include <vector>

#include "config/descriptors/param_descriptor.h"

// Every descriptor by parameter ID. The map lives for the whole process (it
// is never destroyed, so descriptors stay valid during static destruction).
extern std::unordered_map<unsigned int, ParamDescriptor*>& g_paramDescriptors;

// Builds the catalogue: returns at once if the registry already holds any
// descriptor, otherwise runs every catalogue builder in its fixed order and
// then indexes the names. Called once by the program that hosts the store.
void CreateDescriptors();

// Enters d under its ID; the registry takes ownership. A descriptor that was
// registered under the same ID before is destroyed. A null d is ignored.
void AddDescriptor(ParamDescriptor* d);

// Enters the ID name of every registered descriptor, with its ID, in the
// name index.
void IndexDescriptorNames();

// The descriptor of id, or null if the ID is unknown.
ParamDescriptor* GetDescriptor(unsigned int id);

// The descriptor whose ID name is exactly idName ("eParamID_..."), or null.
ParamDescriptor* GetDescriptor(const std::string& idName);

// True when id is in the registry.
bool IsValidParamID(unsigned int id);

// All registered IDs, in no defined order.
std::vector<unsigned int> GetParamIDs();

// All indexed ID names, in no defined order.
std::vector<std::string> GetParamIDNames();

#endif  // CLASSES_CONFIG_DESCRIPTORS_PARAM_DESCRIPTORS_H
