// The builders of the unit's system catalogue: identity and status, network
// and SNMP settings, front-panel behaviour, remote control and GPI, LEDs,
// alarms, presets (registers), analogue standards, MADI, discovery and the
// front panel's menu positions. CreateDescriptors runs them in its fixed
// order; each registers its descriptors under their fixed IDs, replacing a
// descriptor already registered under the same ID.
//
// The sources: param_descriptors_system.cpp (identity, status, system
// standards, LEDs, alarms, VCP, MADI, menu positions), _config.cpp (network,
// SNMP, front panel, alarm suppression, lock, password, discovery),
// _remote.cpp (remote control and GPI) and _presets.cpp (registers and
// preset names).
//
// Thread-safety: the builders write the registry; they run only while the
// catalogue is built. The serial number, MAC address, software version and
// product ID parameters take their defaults from the product identity
// (support/product_id.h, support/serial_number.h) when they are built.
#ifndef CLASSES_CONFIG_DESCRIPTORS_PARAM_DESCRIPTORS_SYSTEM_H
#define CLASSES_CONFIG_DESCRIPTORS_PARAM_DESCRIPTORS_SYSTEM_H

#include "config/descriptors/param_groups.h"

// The presets: numbers 0 to 40, preset 0 being the read-only factory preset.
constexpr int kPresetNameCount = 41;
constexpr unsigned int kFactoryPresetNameParamID = 0x383AA021;

void createParamDescriptor_TestID();
void createParamDescriptor_Status();
void createParamDescriptor_PersistStatus();
void createParamDescriptor_ProductID();

void createParamDescriptors_Config();
void createParamDescriptor_FrontPanelLock();
void createParamDescriptor_SystemPassword();

void createParamDescriptors_LED();
void createParamDescriptors_Remote();
// Also makes the preset names (createParamDescriptor_PresetNames).
void createParamDescriptors_Presets();
void createParamDescriptor_PresetNames();
void createParamDescriptors_System();
void createParamDescriptors_Alarm();
void createParamDescriptors_VCP();
void createParamDescriptors_MADI();

// The last selected entry of each menu.
void createParamDescriptor_LastSelectedParam();
void createParamDescriptor_LastSelectedParamConfig();
void createParamDescriptor_LastSelectedParamSystem();
void createParamDescriptor_LastSelectedParamVideoProc();
void createParamDescriptor_LastSelectedParamAudioProc();
void createParamDescriptor_LastSelectedParamRemote();
void createParamDescriptor_LastSelectedParamPreset();
void createParamDescriptor_LastSelectedParamOutput();
void createParamDescriptor_LastSelectedParamVideoOutput();
void createParamDescriptor_LastSelectedParamAudioOutput();

void createParamDescriptor_CurrentlySelectedButton();
void createParamDescriptor_PauseFeatures();
void createDiscoveryDescriptors();

#endif  // CLASSES_CONFIG_DESCRIPTORS_PARAM_DESCRIPTORS_SYSTEM_H
