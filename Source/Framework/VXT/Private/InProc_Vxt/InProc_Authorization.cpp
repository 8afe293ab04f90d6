// The Authorization service. Every operation but HasCredentials runs in the
// short frame: no check of its own and no catch-all, the component being
// bound to let no exception out.
#include "InProc_Authorization.h"

#include "BindTable.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_Authorization instance;

using frame::Bool;
using frame::Call;
using frame::Dec;
using frame::Hex8;
using frame::List;
using frame::Out;
using frame::Quoted;
using frame::TraceArgs;
using Table = AuthorizationComponent;
using LevelName = char[VXT_AUTHORIZATION_LEVEL_NAME_SIZE];

const LevelName* LevelNames(const char* fields) { return reinterpret_cast<const LevelName*>(fields); }

}  // namespace

InProc_Authorization::InProc_Authorization() {
  // The component is there from load on; the result is looked at by the
  // operations, which find a null table when it failed.
  BindTable(&Voxtrel_GetAuthorization, authorization);
}

InProc_Authorization& InProc_Authorization::Instance() { return instance; }

VXT_Result InProc_Authorization::SetCredentials(const char* username, const char* password) {
  // The password stands in no argument of the line, so nothing can render it.
  return RunOperation(logger, VXT_OPERATION(Authorization, SetCredentials).Uncaught(),
                      TraceArgs("username", username, "password", frame::Omitted{}), TraceArgs(), [&](Call& call) {
                        return call.Core(authorization,
                                         [&](const Table& t) { return t.SetCredentials(username, password); });
                      });
}

VXT_Result InProc_Authorization::ClearCredentials() {
  return RunOperation(logger, VXT_OPERATION(Authorization, ClearCredentials).Uncaught(), TraceArgs(), TraceArgs(),
                      [&](Call& call) {
                        return call.Core(authorization, [](const Table& t) { return t.ClearCredentials(); });
                      });
}

VXT_Result InProc_Authorization::GetNumAuthorizationLevels(uint32_t deviceId, uint32_t* numLevelNames) {
  return RunOperation(logger, VXT_OPERATION(Authorization, GetNumAuthorizationLevels).Uncaught(),
                      TraceArgs("deviceId", Hex8{deviceId}), TraceArgs("numLevelNames", Out<Dec>(numLevelNames)),
                      [&](Call& call) {
                        return call.Core(authorization, [&](const Table& t) {
                          return t.GetNumAuthorizationLevels(deviceId, numLevelNames);
                        });
                      });
}

VXT_Result InProc_Authorization::GetAuthorizationLevels(uint32_t deviceId, uint32_t numLevelNames, char* levelNames) {
  return RunOperation(logger, VXT_OPERATION(Authorization, GetAuthorizationLevels).Uncaught(),
                      TraceArgs("deviceId", Hex8{deviceId}, "numLevelNames", Dec{numLevelNames}),
                      TraceArgs("levelNames", List<Quoted>(LevelNames(levelNames), numLevelNames)), [&](Call& call) {
                        return call.Core(authorization, [&](const Table& t) {
                          return t.GetAuthorizationLevels(deviceId, numLevelNames, levelNames);
                        });
                      });
}

VXT_Result InProc_Authorization::QueryAuthorizationLevel(uint32_t deviceId, char* levelName) {
  return RunOperation(logger, VXT_OPERATION(Authorization, QueryAuthorizationLevel).Uncaught(),
                      TraceArgs("deviceId", Hex8{deviceId}),
                      TraceArgs("levelName", Out<Quoted>(LevelNames(levelName))), [&](Call& call) {
                        return call.Core(authorization,
                                         [&](const Table& t) { return t.QueryAuthorizationLevel(deviceId, levelName); });
                      });
}

VXT_Result InProc_Authorization::Authorize(uint32_t deviceId, const char* levelName) {
  return RunOperation(logger, VXT_OPERATION(Authorization, Authorize).Counted().Uncaught(),
                      TraceArgs("deviceId", Hex8{deviceId}, "levelName", Quoted{levelName}), TraceArgs(),
                      [&](Call& call) {
                        return call.Core(authorization, [&](const Table& t) { return t.Authorize(deviceId, levelName); });
                      });
}

VXT_Result InProc_Authorization::HasCredentials(uint32_t* hasCredentials) {
  return RunOperation(logger, VXT_OPERATION(Authorization, HasCredentials), TraceArgs(),
                      TraceArgs("hasCredentials", Out<Bool>(hasCredentials)), [&](Call& call) {
                        if (call.NotNull(hasCredentials, "hasCredentials").failed()) return call.code();
                        uint8_t held = 0;
                        const uint32_t code =
                            call.Core(authorization, [&](const Table& t) { return t.HasCredentials(&held); });
                        // A failed call reads as holding no credentials.
                        *hasCredentials = held;
                        return code;
                      });
}

}  // namespace vxt
