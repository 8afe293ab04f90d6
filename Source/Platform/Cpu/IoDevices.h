// The IO devices of a target domain, as its "ioDevices" describe them: a
// 16550-style UART and a POST code port. Each claims a range of ports; the
// machine routes IN/OUT by port. Called on the domain's execution thread;
// what tools read (the UART text so far, the POST codes seen) is guarded.
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace voxtrel::platform::cpu {

class IoDevice {
 public:
  IoDevice(std::string name, uint16_t firstPort, uint16_t portCount)
      : name_(std::move(name)), firstPort_(firstPort), portCount_(portCount) {}
  virtual ~IoDevice() = default;

  const std::string& Name() const { return name_; }
  bool Claims(uint16_t port) const { return port >= firstPort_ && port - firstPort_ < portCount_; }
  uint16_t FirstPort() const { return firstPort_; }

  // `offset` from the first port; byte accesses, wider ones are split by the machine.
  virtual uint8_t Read(uint16_t offset) = 0;
  virtual void Write(uint16_t offset, uint8_t value) = 0;
  virtual void Reset() = 0;

 private:
  std::string name_;
  uint16_t firstPort_;
  uint16_t portCount_;
};

// The registers of a 16550 that a polling driver uses: THR/RBR, IER, IIR/FCR,
// LCR (with DLAB and the divisor latch), MCR, LSR, MSR, SCR. Transmission is
// instant: THR is always empty, and every byte written to it is kept as text.
class Uart16550 final : public IoDevice {
 public:
  static constexpr size_t kMaxText = 1 << 20;  // Older text is dropped past this

  Uart16550(std::string name, uint16_t firstPort) : IoDevice(std::move(name), firstPort, 8) {}
  uint8_t Read(uint16_t offset) override;
  void Write(uint16_t offset, uint8_t value) override;
  void Reset() override;

  // Everything transmitted since the domain started (the last kMaxText bytes).
  std::string Text() const;
  // Bytes for the receiver, read by the guest through RBR.
  void Receive(const std::string& bytes);
  // The bytes transmitted from `position` (a count of every byte since the
  // domain started) on, at most `limit`; `position` moves past them. Bytes
  // older than the kept text are skipped; `skipped` says how many.
  std::string TextSince(uint64_t& position, size_t limit, uint64_t& skipped) const;
  // As many of `bytes` as leave at most `capacity` bytes waiting for the
  // guest; how many were taken.
  size_t Accept(const uint8_t* bytes, size_t count, size_t capacity);

 private:
  mutable std::mutex mutex_;
  std::string text_;
  uint64_t transmitted_ = 0;  // Every byte sent since the domain started, dropped ones included
  std::deque<uint8_t> received_;
  uint8_t ier_ = 0, lcr_ = 0, mcr_ = 0, scr_ = 0, dll_ = 0, dlm_ = 0;
};

// Port 0x80 style: every byte written is a POST code.
class PostCodePort final : public IoDevice {
 public:
  static constexpr size_t kMaxCodes = 4096;  // Older codes are dropped past this

  PostCodePort(std::string name, uint16_t port) : IoDevice(std::move(name), port, 1) {}
  uint8_t Read(uint16_t offset) override;
  void Write(uint16_t offset, uint8_t value) override;
  void Reset() override {}

  std::vector<uint8_t> Codes() const;

 private:
  mutable std::mutex mutex_;
  std::deque<uint8_t> codes_;
};

}  // namespace voxtrel::platform::cpu
