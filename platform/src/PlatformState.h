#ifndef QUILLSET_PLATFORM_STATE_H
#define QUILLSET_PLATFORM_STATE_H

#include <nlohmann/json.hpp>

#include <string>

// What the stand-ins share: where the simulated watch keeps its state, its device profile and
// injected faults. Usage records and launches go to the services daemon (DaemonLink.h).
namespace platform {

// $QUILLSET_STATE; "" (with one clear message on stderr) when the program was not started
// through `quillset-sim run`. Calls backed by the state then fail with an I/O error.
const std::string &stateDir();
bool hasState();
// The build or install tree of the programs.
const std::string &dataDir();

// The device profile, read once; an empty object when there is none.
const nlohmann::json &profile();

// How long the watch takes to answer an asynchronous request (profile "latency", in ms);
// 0 when the profile does not say. The longest is what a reader waits for everything.
double latencySeconds(const char *key);
double longestLatencySeconds();

// Asynchronous replies on their way (eSIM, telephony): the stand-ins count them so that a
// reader of the screen can wait until every answer has arrived.
void awaitReplies(int change);
int repliesAwaited();

// True when the profile's "faults" make call (for any key, or for this key) fail; code
// receives the error code to answer with. Logs nothing: the stand-in decides what to say.
bool fault(const char *call, const char *key, int *code);

// Log-client handles made and not yet destroyed: what a client leaves open behind it.
int logManagerHandlesOpen();

// Forgets the cached profile so that the next query reads it again (tests change profiles).
void reloadProfile();

}  // namespace platform

#endif
