// The rendering classes of trace lines, the stream state they share within a
// line, and the enumeration name tables.
#include "frame/Render.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "VXT_Enumerations.h"
#include "VXT_Records.h"

namespace vxt::frame {
namespace {

// Renders the pieces into one stream, as a trace line is.
template <class... Pieces>
std::string Line(const Pieces&... pieces) {
  std::ostringstream line;
  (line << ... << pieces);
  return line.str();
}

struct RenderCase {
  const char* what;
  std::string rendered;
  std::string expected;
};

void ExpectAll(const std::vector<RenderCase>& cases) {
  for (const RenderCase& c : cases) EXPECT_EQ(c.rendered, c.expected) << c.what;
}

TEST(RenderTest, SingleValues) {
  const char unterminated[3] = {'a', 'b', 'c'};
  int32_t signedValue = -4;
  VXT_RunStatus status = VXT_RunStatus_Halted;
  const VXT_BitData bitData{VXT_BITDATA_SIZE, 12, 0x5};
  const VXT_Address address{VXT_ADDRESS_SIZE, 0x10, 0xffff, 0x1000, VXT_AddressType_TwoFieldLogical};
  const VXT_Address unknownType{VXT_ADDRESS_SIZE, 0, 0, 0, static_cast<VXT_AddressType>(8)};
  ExpectAll({
      {"hex2 of a character prints a number", Line(Hex2{'A'}), "0x41"},
      {"hex8 of -1", Line(Hex8{int32_t{-1}}), "0xffffffff"},
      {"hex4 of a wider value keeps sixteen bits", Line(Hex4{0x12345u}), "0x2345"},
      {"hex8 of a 64-bit value keeps 32 bits", Line(Hex8{uint64_t{0x123456789}}), "0x23456789"},
      {"hex16 of a negative 32-bit value", Line(Hex16{int32_t{-2}}), "0xfffffffffffffffe"},
      {"dec of the smallest 64-bit value", Line(Dec{std::numeric_limits<int64_t>::min()}), "-9223372036854775808"},
      {"dec of the largest 64-bit value", Line(Dec{~uint64_t{0}}), "18446744073709551615"},
      {"dec of a byte prints a number", Line(Dec{uint8_t{200}}), "200"},
      {"dec of an enumeration", Line(Dec{VXT_BreakpointType_HW_Global}), "32768"},
      {"32-bit boolean, nonzero", Line(Bool{2u}), "True"},
      {"quoted null", Line(Quoted{nullptr}), "<NULL>"},
      {"quoted field without its zero", Line(Quoted{unterminated, sizeof unterminated}), "'abc'"},
      {"quoted field shorter than its bound", Line(Quoted{"ab", 8}), "'ab'"},
      {"pointer", Line(Pointer{reinterpret_cast<const void*>(0xabcdef12u)}), "00000000ABCDEF12"},
      {"null pointer", Line(Pointer{nullptr}), "0000000000000000"},
      {"infinite timeout", Line(Timeout{0xFFFFFFFFu}), "<INFINITE>"},
      {"omitted", Line(Omitted{}), "<OMITTED>"},
      {"unlisted buffer", Line(NotListed{unterminated}), "{...}"},
      {"unlisted null buffer", Line(NotListed{nullptr}), "<NULL>"},
      {"index table", Line(Enum<StepTypeName>{VXT_StepType_Branch}), "Branch"},
      {"index table, one past", Line(Enum<StepTypeName>{5}), "<UNKNOWN>"},
      {"index table, negative", Line(Enum<StepTypeName>{-1}), "<UNKNOWN>"},
      {"sparse table, named", Line(Enum<BreakpointTypeName>{VXT_BreakpointType_Default}), "Default"},
      {"sparse table, unnamed in decimal", Line(Enum<BreakpointTypeName>{7u}), "7"},
      {"signed sparse table, named", Line(Enum<JtagTdiTdoContinuityName>{VXT_JtagTdiTdoContinuity_CORRUPTION}),
       "CORRUPTION"},
      {"signed sparse table, negative", Line(Enum<JtagTdiTdoContinuityName>{int32_t{-3}}), "-3"},
      {"null out argument", Line(Out<Dec>(static_cast<const uint32_t*>(nullptr))), "<NULL>"},
      {"signed out argument", Line(Out<Dec>(&signedValue)), "-4"},
      {"out enumeration", Line(Out<Enum<RunStatusName>>(&status)), "Halted"},
      {"bitdata", Line(BitDataText{&bitData}), "{bitSize = 12 dataHandle = 0x0000000000000005}"},
      {"address", Line(AddressText{&address}),
       "{ldtsel = 0x0010 segsel = 0xffff offset = 0x0000000000001000 addressType = TwoFieldLogical}"},
      {"address of an unknown type", Line(AddressText{&unknownType}),
       "{ldtsel = 0x0000 segsel = 0x0000 offset = 0x0000000000000000 addressType = <UNKNOWN>}"},
      {"null address", Line(AddressText{nullptr}), "<NULL>"},
  });
}

// Base and fill persist within a line, a width lasts one insertion, and
// every class sets what it needs.
TEST(RenderTest, StreamStateWithinALine) {
  ExpectAll({
      {"dec after hex8", Line(Hex8{10u}, " ", Dec{10u}), "0x0000000a 10"},
      {"unnamed value after hex8 prints bare hexadecimal, unpadded", Line(Hex8{1u}, " ", Enum<BreakpointTypeName>{77u}),
       "0x00000001 4d"},
      {"unnamed value after dec prints decimal", Line(Hex8{1u}, " ", Dec{2u}, " ", Enum<BreakpointTypeName>{77u}),
       "0x00000001 2 77"},
      {"unnamed port byte size after hex16", Line(Hex16{uint64_t{1}}, " ", Enum<PortByteSizeName>{8u}),
       "0x0000000000000001 8"},
      {"negative unnamed signed value in hexadecimal keeps 32 bits",
       Line(Hex2{uint8_t{1}}, " ", Enum<JtagTdiTdoContinuityName>{int32_t{-1}}), "0x01 ffffffff"},
      {"unnamed value after bitdata is hexadecimal",
       Line(BitDataText{nullptr}, " ", Dec{1u}, " ", Hex16{uint64_t{2}}, " ", Enum<JtagTdiTdoContinuityName>{16}),
       "<NULL> 1 0x0000000000000002 10"},
      {"hex digits stay lower case after a pointer",
       Line(Pointer{reinterpret_cast<const void*>(0xabcu)}, " ", Hex8{0xabu}), "0000000000000ABC 0x000000ab"},
      {"an unnamed value after a pointer is lower case", Line(Pointer{nullptr}, " ", Enum<BreakpointTypeName>{0xabu}),
       "0000000000000000 ab"},
      {"dec after a negative hex8", Line(Hex8{int32_t{-1}}, " ", Dec{int32_t{-1}}), "0xffffffff -1"},
  });
}

// Names whose spelling is easy to get wrong, the last of each table and the
// values around the tables; sparse tables name only their values.
TEST(EnumNamesTest, OddNamesAndValuesWithoutAName) {
  struct Name {
    const char* (*nameOf)(uint32_t);
    uint32_t value;
    const char* name;  // null: no name
  };
  const Name names[] = {
      {InstructionTypeName, VXT_InstructionType_16Bit, "16Bit"},
      {BreakpointDataSizeName, 0, "Data_Size_1"},
      {DebugRegisterName, VXT_DebugRegister_Register_Any, "Register_Any"},
      {JtagRepeatTypeName, 1, "COMPARE_MATCH_OR_FAIL_AT_MAX_ITER"},
      {JtagWaitTypeName, 3, "COUNT_OR_TRIG_TRIGTO"},
      {PreferenceName, 0, "Dont_Care"},
      {NodeTypeName, VXT_NodeType_VirtualJTAGScanChain, "VirtualJTAGScanChain"},
      {NodeTypeName, VXT_NodeType_VirtualJTAGScanChain + 1, "<UNKNOWN>"},
      {JtagStateName, VXT_JtagState_UpdIR, "UpdIR"},
      {JtagStateName, 16, "<UNKNOWN>"},
      {PinsSignalName, VXT_PinsSignal_PWRGOOD, "PWRGOOD"},
      {StepModeName, 2, "<UNKNOWN>"},
      {RunStatusName, 0xFFFFFFFFu, "<UNKNOWN>"},
      {BreakpointTypeName, VXT_BreakpointType_HW_IO, "HW_IO"},
      {BreakpointTypeName, 5, nullptr},
      {BreakpointTypeName, VXT_BreakpointType_HW_Global, "HW_Global"},
      {BreakpointTypeName, 0x8002, nullptr},
      {AccessWidthName, 0, nullptr},
      {AccessWidthName, 3, nullptr},
      {AccessWidthName, VXT_AccessWidth_QWord, "QWord"},
      {PortByteSizeName, 4, "DWord"},
      {PortByteSizeName, 8, nullptr},
      {JtagTdiTdoContinuityName, 3, nullptr},
      {JtagTdiTdoContinuityName, VXT_JtagTdiTdoContinuity_INVERTED, "INVERTED"},
      {JtagTdiTdoContinuityName, 0xFFFFFFFFu, nullptr},
  };
  for (const Name& n : names) {
    const char* name = n.nameOf(n.value);
    EXPECT_STREQ(name == nullptr ? "(none)" : name, n.name == nullptr ? "(none)" : n.name) << n.value;
  }
}

TEST(RenderTest, ListsAndBytes) {
  const uint8_t bytes[] = {1, 2, 255};
  const char* names[] = {"a", "b"};
  char first[] = "x";
  char* mutableNames[] = {first, nullptr};
  const VXT_NodeType nodeTypes[] = {VXT_NodeType_TargetDomain, static_cast<VXT_NodeType>(99)};
  const VXT_BitData records[] = {{VXT_BITDATA_SIZE, 8, 1}, {VXT_BITDATA_SIZE, 64, 2}};
  const char buffers[2][4] = {{'a', 'b', 'c', 'd'}, {'e', '\0', 'x', 'x'}};
  const int32_t signedValues[] = {-1, 2};
  ExpectAll({
      {"bytes", Line(Bytes(bytes, 3u)), "{0x01, 0x02, 0xff}"},
      {"bytes, zero count", Line(Bytes(bytes, 0u)), "<EMPTY>"},
      {"bytes, null array and zero count", Line(Bytes(static_cast<const uint8_t*>(nullptr), 0u)), "<NULL>"},
      {"negative count", Line(List<Dec>(signedValues, -2)), "<EMPTY>"},
      {"quoted texts through char**", Line(List<Quoted>(mutableNames, 2u)), "{'x', <NULL>}"},
      {"fixed-size buffers keep to their size", Line(List<Quoted>(buffers, 2u)), "{'abcd', 'e'}"},
      {"enumeration names", Line(List<Enum<NodeTypeName>>(nodeTypes, 2u)), "{TargetDomain, <UNKNOWN>}"},
      {"records through their address", Line(List<BitDataText>(records, 2u)),
       "{{bitSize = 8 dataHandle = 0x0000000000000001}, {bitSize = 64 dataHandle = 0x0000000000000002}}"},
      {"signed values in hex8", Line(List<Hex8>(signedValues, 2u)), "{0xffffffff, 0x00000002}"},
      {"null count pointer", Line(List<Quoted>(names, static_cast<const uint32_t*>(nullptr))), "<EMPTY>"},
      {"null array wins over a null count",
       Line(List<Quoted>(static_cast<const char**>(nullptr), static_cast<const uint32_t*>(nullptr))), "<NULL>"},
  });
}

TEST(TraceArgsTest, ArgumentLists) {
  ExpectAll({
      {"no argument", Line("(", TraceArgs(), ")"), "()"},
      {"one argument", Line(TraceArgs("serviceId", Dec{7u})), "serviceId = 7"},
      {"omitted password", Line(TraceArgs("user", Quoted{"me"}, "password", Omitted{})),
       "user = 'me' password = <OMITTED>"},
  });
}

// The list keeps copies of its helpers, so it may outlive the expression
// that built it, and renders what the pointers show when it is written.
TEST(TraceArgsTest, ArgumentsAreRenderedWhenTheLineIsWritten) {
  const uint8_t bytes[] = {7, 8, 9};
  uint32_t count = 0;
  std::string key = "first";
  const auto args = TraceArgs("key", Quoted{key.c_str()}, "count", Out<Dec>(&count), "bytes", Bytes(bytes, &count));
  EXPECT_EQ(Line(args), "key = 'first' count = 0 bytes = <EMPTY>");
  count = 2;
  EXPECT_EQ(Line(args), "key = 'first' count = 2 bytes = {0x07, 0x08}");
}

}  // namespace
}  // namespace vxt::frame
