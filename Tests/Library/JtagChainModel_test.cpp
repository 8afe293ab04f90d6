// The default chain against a small model of IEEE 1149.1 written here,
// independently of the platform's: the same random walk of moves, shifts,
// scans and resets must give the same TDO bits.
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "JtagTestSupport.h"

namespace vxt::test {
namespace {

using namespace jtag;

// The state after one TCK, by TMS: the diagram of the standard, row by row.
constexpr int kNext[16][2] = {{1, 0},   {1, 2},   {3, 9},  {4, 5},  {4, 5},  {6, 8},  {6, 7},  {4, 8},
                              {1, 2},   {10, 0},  {11, 12}, {11, 12}, {13, 15}, {13, 14}, {11, 15}, {1, 2}};
enum { TLR = 0, RTI = 1, CapDR = 3, ShfDR = 4, UpdDR = 8, CapIR = 10, ShfIR = 11, UpdIR = 15 };

struct ModelTap {
  int irLength;
  uint32_t idcode;
  uint64_t idcodeOpcode;
  std::vector<std::pair<uint64_t, int>> registers;  // Opcode, length of the described registers
  uint64_t ir = 0;
  std::vector<std::vector<bool>> values;            // Of the described registers
  std::vector<bool> shift;
};

class ChainModel {
 public:
  ChainModel() {
    // From the TDO end: ChipsetTap, UncoreTap, CpuTap.
    taps_ = {{4, kChipsetIdcode, 0x1, {{0x6, 16}}, 0, {}, {}},
             {6, kUncoreIdcode, 0x01, {{0x14, 48}}, 0, {}, {}},
             {8, kCpuIdcode, 0x02, {{0x00, 64}, {0x28, 72}}, 0, {}, {}}};
    for (ModelTap& tap : taps_) tap.values.resize(tap.registers.size());
    Reset();
  }
  void Reset() {
    state_ = TLR;
    for (ModelTap& tap : taps_) {
      tap.ir = tap.idcodeOpcode;
      for (size_t i = 0; i < tap.registers.size(); ++i) tap.values[i].assign(tap.registers[i].second, false);
    }
  }
  // One TCK; TDO before it.
  bool Clock(bool tms, bool tdi) {
    bool tdo = true;
    if (state_ == CapDR || state_ == CapIR)
      for (ModelTap& tap : taps_) tap.shift = state_ == CapIR ? Number(1, tap.irLength) : Capture(tap);
    if (state_ == ShfDR || state_ == ShfIR) {
      tdo = taps_.front().shift.front();
      bool carry = tdi;
      for (size_t i = taps_.size(); i-- > 0;) {
        std::vector<bool>& bits = taps_[i].shift;
        const bool out = bits.front();
        bits.erase(bits.begin());
        bits.push_back(carry);
        carry = out;
      }
    }
    state_ = kNext[state_][tms ? 1 : 0];
    if (state_ == UpdIR)
      for (ModelTap& tap : taps_) tap.ir = Value(tap.shift);
    if (state_ == UpdDR)
      for (ModelTap& tap : taps_)
        if (std::vector<bool>* reg = Selected(tap)) *reg = tap.shift;
    if (state_ == TLR) Reset();
    return tdo;
  }
  int state() const { return state_; }

 private:
  static std::vector<bool> Number(uint64_t value, int length) {
    std::vector<bool> bits(length);
    for (int i = 0; i < length; ++i) bits[i] = i < 64 && ((value >> i) & 1) != 0;
    return bits;
  }
  static uint64_t Value(const std::vector<bool>& bits) {
    uint64_t value = 0;
    for (size_t i = 0; i < bits.size() && i < 64; ++i) value |= uint64_t{bits[i]} << i;
    return value;
  }
  static std::vector<bool>* Selected(ModelTap& tap) {
    for (size_t i = 0; i < tap.registers.size(); ++i)
      if (tap.registers[i].first == tap.ir) return &tap.values[i];
    return nullptr;
  }
  static std::vector<bool> Capture(ModelTap& tap) {
    if (tap.ir == tap.idcodeOpcode) return Number(tap.idcode, 32);
    if (std::vector<bool>* reg = Selected(tap)) return *reg;
    return {false};  // BYPASS, and every opcode that names nothing
  }

  std::vector<ModelTap> taps_;  // From the TDO end
  int state_ = TLR;
};

// The shortest TMS path, searched breadth first on the model's own table.
std::vector<bool> Path(int from, int to) {
  std::vector<std::vector<bool>> paths(16);
  std::vector<bool> seen(16, false);
  std::vector<int> queue{from};
  seen[from] = true;
  for (size_t head = 0; head < queue.size(); ++head) {
    const int here = queue[head];
    for (const bool tms : {false, true}) {
      const int next = kNext[here][tms ? 1 : 0];
      if (seen[next]) continue;
      seen[next] = true;
      paths[next] = paths[here];
      paths[next].push_back(tms);
      queue.push_back(next);
    }
  }
  return paths[to];
}

TEST_F(JtagTest, RandomWalksGiveTheTdoOfAnIndependentModel) {
  ChainModel model;
  std::mt19937_64 random(20261124);
  for (int step = 0; step < 600; ++step) {
    SCOPED_TRACE("step " + std::to_string(step));
    uint64_t token = 0;
    const int kind = static_cast<int>(random() % 10);
    if (kind == 0) {
      ASSERT_EQ(access->TapReset(kChain, VXT_JtagResetType_TRST_ONLY, &token), VXT_SUCCESS);
      receipts->Destroy(token);
      model.Reset();
    } else if (kind < 5 || (model.state() != ShfDR && model.state() != ShfIR)) {
      const int target = static_cast<int>(random() % 16);
      ASSERT_EQ(access->GoToState(kChain, static_cast<VXT_JtagState>(target), 0, VXT_JtagWaitType_COUNT, &token),
                VXT_SUCCESS);
      receipts->Destroy(token);
      for (const bool tms : Path(model.state(), target)) model.Clock(tms, true);
    } else {
      // A shift of up to 200 bits (longer than the path, across words at
      // every offset), staying or leaving for Exit1 and beyond.
      const uint32_t count = 1 + static_cast<uint32_t>(random() % 200);
      std::vector<uint8_t> tdi((count + 7) / 8);
      for (uint8_t& byte : tdi) byte = static_cast<uint8_t>(random());
      const int shiftState = model.state();
      const int end = random() % 2 ? shiftState : static_cast<int>(random() % 16);
      VXT_BitData value = EmptyRecord();
      ASSERT_EQ(bits->CreateFromRawBits(&value, count, tdi.data(), static_cast<uint32_t>(tdi.size())), VXT_SUCCESS);
      ASSERT_EQ(access->Shift(kChain, static_cast<VXT_JtagState>(end), count, &value, &token), VXT_SUCCESS);
      std::vector<uint8_t> expected(tdi.size(), 0);
      for (uint32_t i = 0; i < count; ++i) {
        const bool last = i + 1 == count && end != shiftState;
        if (model.Clock(last, ((tdi[i / 8] >> (i % 8)) & 1) != 0)) expected[i / 8] |= static_cast<uint8_t>(1u << (i % 8));
      }
      for (const bool tms : Path(model.state(), end)) model.Clock(tms, true);
      std::vector<uint8_t> tdo(tdi.size());
      uint32_t size = 0;
      ASSERT_EQ(receipts->GetValueAsRawBytes(token, tdo.data(), static_cast<uint32_t>(tdo.size()), &size), VXT_SUCCESS);
      receipts->Destroy(token);
      ASSERT_EQ(tdo, expected);
      ASSERT_EQ(bits->Destroy(&value), VXT_SUCCESS);
    }
  }
}

// The IR of each TAP captures ...01; in BYPASS the DR path is one bit each.
TEST_F(JtagTest, BypassPathsAreOneBitForEachTapAndIdcodesFillTheDataPath) {
  struct Case {
    uint64_t ir;  // 18 bits, from the TDO end
    uint32_t pathLength;
  };
  const Case cases[] = {
      {0x3ffff, 3},                                         // All in BYPASS
      {0x3fff1, 34},                                        // ChipsetTap IDCODE
      {0x1 | (0x01u << 4) | (0x02u << 10), 32 * 3},         // Every IDCODE (the reset state)
      {0xf | (0x01u << 4) | (0x02u << 10), 1 + 32 + 32},    // All but ChipsetTap
      {0x0000f | (0x3fu << 4) | (0x28u << 10), 1 + 1 + 72}, // CpuTap's CORE_DEBUG
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.ir);
    VXT_BitData ir = Vector(18, c.ir);
    uint64_t token = 0;
    ASSERT_EQ(access->IrDrScanAuto(kChain, &ir, 200, nullptr, &token), VXT_SUCCESS);
    VXT_BitData value = EmptyRecord();
    ASSERT_EQ(receipts->GetValue(token, &value), VXT_SUCCESS);
    EXPECT_EQ(value.bitSize, c.pathLength);
    receipts->Destroy(token);
  }
}

}  // namespace
}  // namespace vxt::test
