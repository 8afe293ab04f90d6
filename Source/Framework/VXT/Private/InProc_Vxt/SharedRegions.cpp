#include "SharedRegions.h"

#include <chrono>
#include <utility>

#include <boost/interprocess/permissions.hpp>

namespace vxt {
namespace bip = boost::interprocess;

namespace {

bip::permissions OwnerOnly() {
  bip::permissions permissions;
  permissions.set_permissions(0600);
  return permissions;
}

bip::shared_memory_object CreateObject(const std::string& identifier, uint32_t memorySize) {
  bip::shared_memory_object object(bip::create_only, identifier.c_str(), bip::read_write, OwnerOnly());
  try {
    object.truncate(memorySize);
  } catch (...) {
    bip::shared_memory_object::remove(identifier.c_str());
    throw;
  }
  return object;
}

bip::mapped_region MapWhole(const std::string& identifier, bip::shared_memory_object& object) {
  try {
    return bip::mapped_region(object, bip::read_write);
  } catch (...) {
    bip::shared_memory_object::remove(identifier.c_str());
    throw;
  }
}

}  // namespace

SharedRegion::SharedRegion(std::string identifier, uint32_t memorySize)
    : identifier_(std::move(identifier)),
      object_(CreateObject(identifier_, memorySize)),
      mapping_(MapWhole(identifier_, object_)) {}

SharedRegion::~SharedRegion() {
  // Members then unmap and close, in that order.
  bip::shared_memory_object::remove(identifier_.c_str());
}

SharedRegions& SharedRegions::Get() {
  static SharedRegions regions;
  return regions;
}

std::string SharedRegions::NewIdentifier() {
  static constexpr char kAlphabet[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  static constexpr uint32_t kModulus = 2147483647;  // The Lehmer generator's, with multiplier 48271
  static std::once_flag seeded;
  std::call_once(seeded, [this] {
    const auto ticks = static_cast<uint32_t>(std::chrono::system_clock::now().time_since_epoch().count());
    identifierState_ = ticks % kModulus;
    if (identifierState_ == 0) identifierState_ = 1;
  });

  std::string identifier(63, '0');
  for (char& letter : identifier) {
    identifierState_ = static_cast<uint32_t>(uint64_t{identifierState_} * 48271 % kModulus);
    letter = kAlphabet[identifierState_ % 62];
  }
  return identifier;
}

}  // namespace vxt
