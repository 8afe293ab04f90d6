// What the platform hands the emulating module when it builds a domain's
// backend: the physical memory map with the contents of its ROMs, the
// threads, and the platform's side of the machine (IO devices, the CPUID
// table, the model-specific registers the engine keeps none of). The module
// sees these only through this header: it links nothing of the platform, and
// the platform links nothing of it (it is loaded at run time, see
// EngineModule.h).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "CpuBackend.h"
#include "CpuTypes.h"

namespace voxtrel::platform::cpu {

// The machine around the CPUs. Called on the backend's execution thread only
// (guest IN/OUT, CPUID, the debugger's MSR and IO calls, which the backend
// serialises), so implementations need no lock of their own for that.
class DomainMachine {
 public:
  virtual ~DomainMachine() = default;

  // False when no device claims the port: reads then give all ones to the
  // guest, writes are dropped, and the debugger's calls get Unmapped.
  virtual bool ReadIo(uint16_t port, uint32_t size, uint32_t& value) = 0;
  virtual bool WriteIo(uint16_t port, uint32_t size, uint32_t value) = 0;

  // What CPUID gives the thread, APIC id fields already in place.
  virtual CpuidResult Cpuid(uint32_t thread, uint32_t leaf, uint32_t subleaf) = 0;

  // The model-specific registers kept beside the engine (TSC, APIC base,
  // the description's defaults). GeneralProtection for one it does not keep.
  virtual CpuResult ReadMsr(uint32_t thread, uint32_t msr, uint64_t& value) = 0;
  virtual CpuResult WriteMsr(uint32_t thread, uint32_t msr, uint64_t value) = 0;

  // The devices' and model registers' state after a reset.
  virtual void Reset() = 0;
};

struct RegionSetup {
  MemoryRegion region;         // Base and size 4 KiB aligned; holes carry no bytes
  std::vector<uint8_t> image;  // ROM: its contents from the base, at most size bytes; the rest reads 0
};

struct EngineSetup {
  std::vector<RegionSetup> regions;  // The whole map, ascending, as CpuBackend::MemoryMap gives it
  uint32_t threadCount = 0;
  std::vector<uint32_t> apicIds;  // By thread index
  std::shared_ptr<DomainMachine> machine;
};

// The module's one entry point, looked up by name with dlsym. Gives a
// running backend, or null with `error` set.
using CreateBackendFunction = CpuBackend* (*)(const EngineSetup& setup, std::string& error);
inline constexpr const char* kCreateBackendSymbol = "VoxtrelCpuEngine_CreateBackend";
inline constexpr const char* kEngineModuleName = "libVoxtrelCpuEngine.so";

}  // namespace voxtrel::platform::cpu
