// The client record a client passes to StartNewInstance.
#pragma once

#include <cstddef>
#include <cstdint>

// Sizes accepted in VXT_Client::structureSize. A size of 0 counts as short.
inline constexpr uint32_t VXT_CLIENT_SIZE = 1296;
inline constexpr uint32_t VXT_CLIENT_SHORT_SIZE = 264;
inline constexpr uint32_t VXT_CLIENT_TEXT_SIZE = 256;

struct VXT_Client {
  uint32_t structureSize;  // VXT_CLIENT_SIZE, or VXT_CLIENT_SHORT_SIZE / 0 for a record ending after identifier
  uint32_t clientId;       // Chosen by the client
  char identifier[VXT_CLIENT_TEXT_SIZE];  // By custom "<name>_<number>@<place>"
  uint8_t clientData[516];                // Carried along unread
  uint8_t isLocal;                        // Set by StartNewInstance
  char startTime[VXT_CLIENT_TEXT_SIZE];   // UTC connection time, set by StartNewInstance
  uint8_t moreClientData[259];            // Carried along unread
};

static_assert(sizeof(VXT_Client) == VXT_CLIENT_SIZE);
static_assert(offsetof(VXT_Client, clientData) == VXT_CLIENT_SHORT_SIZE);

// StartNewInstance's hostingType: only in-process hosting without outside
// connections is served.
enum VXT_ServerHostingType : uint32_t {
  VXT_ServerHostingType_In_Process = 0,
  VXT_ServerHostingType_In_Process_Allow_Connections = 1,
};
