#include "TargetManager/CoreGroupName.h"

#include "Support/ComponentCall.h"
#include "Target/CallArguments.h"
#include "TargetManager/Request.h"
#include "VXT_Topology.h"

namespace voxtrel::platform::target_manager {

uint32_t GetCoreGroupName(uint32_t deviceId, char* name) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetCoreGroupName", "deviceId=", HexId(deviceId));
  Request request("TargetManager.GetCoreGroupName");
  const target::Node* group = request.NotNull(name, "name").DeviceOfType(deviceId, target::NodeType::LogicalGroupCore);
  if (group == nullptr) return request.code();
  CopyText(group->identifier, name, VXT_DEVICE_IDENTIFIER_SIZE);
  return 0;
}

}  // namespace voxtrel::platform::target_manager
