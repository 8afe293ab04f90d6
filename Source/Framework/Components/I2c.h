// The I2c component: the target's I2C buses and the devices on them.
//
// As with the Jtag component, the getter gives a record whose first field is
// the access table. Every entry returns an internal code and hands back an
// operation token: a read's value holds the bytes read, byte 0 first; a
// write's value holds the number of bytes the device acknowledged. An
// address no device answers fails the receipt with "NACK" in its message.
// A bus is named by its device id (node type "I2cBus"). The bundle layout
// is described in docs/target-description.md.
#pragma once

#include <cstdint>

#include "PlatformApi.h"

struct I2cAccessComponent {
  uint32_t (*I2cRawRead)(uint32_t i2cBusId, uint8_t idbyte, uint32_t bytecnt, uint32_t options,
                         uint64_t* operationToken);
  uint32_t (*I2cRawWrite)(uint32_t i2cBusId, uint8_t idbyte, const uint8_t* bytebuffer, uint32_t bytecnt,
                          uint32_t options, uint64_t* operationToken);
  uint32_t (*Lock)(uint32_t i2cBusId, uint64_t* operationToken);
  uint32_t (*Unlock)(uint32_t i2cBusId, uint64_t* operationToken);
  uint32_t (*BundleScan)(uint32_t i2cBusId, const void* bundleBuffer, uint32_t bundleBufferSize,
                         uint64_t* operationToken);
};

struct I2cComponent {
  const I2cAccessComponent* access;
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetI2c(const I2cComponent** table);
