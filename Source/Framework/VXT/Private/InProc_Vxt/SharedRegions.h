// Shared memory regions that a client and the library both map, per client.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include <boost/interprocess/mapped_region.hpp>
#include <boost/interprocess/shared_memory_object.hpp>

namespace vxt {

// A named shared memory object and its read-write mapping. The object is
// readable and writable by the owning user only. Destruction removes the
// name from the system first, then unmaps and closes.
class SharedRegion {
 public:
  // Throws boost::interprocess::interprocess_exception; a creation that fails
  // part-way leaves no object behind.
  SharedRegion(std::string identifier, uint32_t memorySize);
  ~SharedRegion();
  SharedRegion(const SharedRegion&) = delete;
  SharedRegion& operator=(const SharedRegion&) = delete;

  void* address() const { return mapping_.get_address(); }
  uint64_t size() const { return mapping_.get_size(); }
  const std::string& identifier() const { return identifier_; }

 private:
  std::string identifier_;
  boost::interprocess::shared_memory_object object_;
  boost::interprocess::mapped_region mapping_;
};

struct ClientRegions {
  uint64_t lastHandle = 0;  // Handles are never reused while this lasts
  std::unordered_map<uint64_t, std::unique_ptr<SharedRegion>> regions;
};

// All regions, by client id.
struct SharedRegions {
  std::unordered_map<uint32_t, ClientRegions> regionsByClient;
  std::mutex regionsMutex;

  static SharedRegions& Get();

  // A fresh name of 63 letters and digits; call under regionsMutex.
  std::string NewIdentifier();

 private:
  uint32_t identifierState_ = 0;
};

}  // namespace vxt
