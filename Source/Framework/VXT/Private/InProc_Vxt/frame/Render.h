// How values become the text of trace lines.
//
// A line is rendered into one fresh stream in the classic locale. The
// rendering classes are small structs that hold a value or a pointer and
// write their text only when inserted, so that nothing is rendered while a
// level is off:
//
//   Hex2 Hex4 Hex8 Hex16 Dec Pointer Bool Quoted Enum<NameOf>   single values
//   Out<Class>(pointer) List<Class>(array, count) Bytes(array, count)
//   BitDataText{record} AddressText{record}                     composites
//   Timeout Omitted NotListed                                   fixed literals
//   TraceArgs("name", value, ...)                               argument lists
//
// The stream's base and fill carry over from one value to the next within a
// line; each class sets what it needs.
#pragma once

#include "frame/EnumNames.h"
#include "frame/RenderComposites.h"
#include "frame/RenderScalars.h"
#include "frame/TraceArgs.h"
