// The settings owner's own parameters: three texts that configd adds to the
// unit's catalogue so that its clients can learn what the catalogue's
// parameters cannot tell them. They sit in no menu group, are volatile
// (never kept, never in a preset, never reset) and carry the "rest_hidden"
// class, so that a client walking the menus never meets them; a client that
// does not know them (a panel, a plain protocol client) is unaffected.
//
//   eParamID_OwnerRegisterRequest  a client's preset or reset command with a
//       token of its own: "TOKEN OPERATION NUMBER", TOKEN eight hexadecimal
//       digits the client chose (not 00000000), OPERATION one of
//       kOwnerOperations, NUMBER the preset (or 1 for "FACTORY", 2 for
//       "HARD FACTORY" with the operation "reset"). "probe" asks whether a
//       preset is saved (done) or empty, without touching any file.
//   eParamID_OwnerRegisterOutcomes ("readonly") the owner's answers to such
//       requests, oldest first, one per line: "TOKEN STATE MESSAGE", STATE
//       the register result state (2 done, 3 failed, 4 empty or rejected)
//       and MESSAGE what the requester should be told. The last
//       kOwnerOutcomeLines answers are kept, so a requester polling for its
//       token finds it even when other requests finished after its own.
//   eParamID_OwnerHealth ("readonly") "ok" while every accepted kept setting
//       is on disk, otherwise one line naming the state folder and the error.
//
// The owner serialises every register operation, so an answer always
// belongs to the request that carries its token. The catalogue's register
// parameters keep working as before for clients that use them directly.
//
// AddOwnerDescriptors runs before other threads read the registry, in the
// owner and in every client that uses these parameters.
#ifndef CLASSES_CONFIG_DESCRIPTORS_OWNER_PARAMS_H
#define CLASSES_CONFIG_DESCRIPTORS_OWNER_PARAMS_H

#include <cstddef>
#include <string>

constexpr unsigned int kOwnerRegisterRequestParamID = 0x630CE5F6;
constexpr unsigned int kOwnerRegisterOutcomesParamID = 0x7AFFE59C;
constexpr unsigned int kOwnerHealthParamID = 0xE49CE83E;

// The operations of a request, in the order of the register commands.
constexpr const char* kOwnerOperations[] = {"save", "recall", "load", "store", "reset", "probe"};
constexpr size_t kOwnerOutcomeLines = 32;
constexpr const char* kOwnerHealthOk = "ok";

// Whether `id` is one of the three owner parameters.
[[nodiscard]] bool IsOwnerParam(unsigned int id);

// Builds the catalogue if it is not built yet, then registers the three
// descriptors and indexes their names. Idempotent.
void AddOwnerDescriptors();

#endif  // CLASSES_CONFIG_DESCRIPTORS_OWNER_PARAMS_H
