#include "StatePortDescription.h"

#include <algorithm>

#include "../Target/FacetChecks.h"
#include "../Target/JsonReader.h"

namespace voxtrel::platform::state_port {
namespace {

using target::Json;
using target::ObjectReader;

constexpr size_t kMaxNameLength = 63;
constexpr size_t kMaxDescriptionLength = 255;

template <class Named>
void RequireDistinct(const std::vector<Named>& items, const std::string& place) {
  for (size_t i = 0; i < items.size(); ++i)
    for (size_t j = 0; j < i; ++j)
      if (items[i].name == items[j].name) target::Fail(place, "the name '" + items[i].name + "' is given twice");
}

std::vector<AddressField> ReadFields(const Json* fields, const std::string& place) {
  std::vector<AddressField> read;
  if (fields == nullptr) return read;
  for (size_t index = 0; index < fields->size(); ++index) {
    const ObjectReader object((*fields)[index], target::PlaceOf(place, index), {"name", "description", "values"});
    read.push_back({object.RequiredString("name", kMaxNameLength),
                    object.OptionalString("description", kMaxDescriptionLength),
                    object.OptionalUnsigned("values", 1, 1ull << 32, 1)});
  }
  RequireDistinct(read, place);
  return read;
}

PortDescription ReadPort(const Json& value, const std::string& place) {
  const ObjectReader object(value, place,
                            {"name", "accessSize", "description", "addressFields", "resetValue", "readOnly", "source"});
  PortDescription port;
  port.name = object.RequiredString("name", kMaxNameLength);
  port.accessSize = static_cast<uint32_t>(object.RequiredUnsigned("accessSize", 1, 8));
  if (port.accessSize != 1 && port.accessSize != 2 && port.accessSize != 4 && port.accessSize != 8)
    target::Fail(object.Place("accessSize"), "expected 1, 2, 4 or 8 bytes");
  port.description = object.OptionalString("description", kMaxDescriptionLength);
  port.addressFields = ReadFields(object.OptionalArray("addressFields"), object.Place("addressFields"));
  port.resetValue = object.OptionalUnsigned("resetValue", 0, port.Mask(), 0);
  port.readOnly = object.OptionalBool("readOnly", false);
  const std::string source = object.OptionalString("source", 16);
  if (source == "postCode") {
    port.source = PortSource::PostCode;
  } else if (source == "runState") {
    port.source = PortSource::RunState;
    if (port.addressFields.size() != 1)
      target::Fail(object.Place("addressFields"), "a runState port has one address field: the thread's index");
  } else if (!source.empty()) {
    target::Fail(object.Place("source"), "expected \"postCode\" or \"runState\"");
  }
  if (port.source != PortSource::Stored) port.readOnly = true;
  return port;
}

std::vector<PortDescription> ReadPorts(const Json& facet, const std::string& place) {
  std::vector<PortDescription> ports;
  for (size_t index = 0; index < facet.size(); ++index) ports.push_back(ReadPort(facet[index], target::PlaceOf(place, index)));
  RequireDistinct(ports, place);
  return ports;
}

// Checked when a description is selected, so a mistake is reported then.
const bool registered = [] {
  target::RegisterFacetCheck("statePorts", [](const Json& facet, const std::string& place, const target::Node&) {
    ReadPorts(facet, place);
  });
  return true;
}();

}  // namespace

std::vector<PortDescription> ReadStatePorts(const target::Node& device) {
  const Json* facet = device.FindFacet("statePorts");
  return facet ? ReadPorts(*facet, "statePorts") : std::vector<PortDescription>{};
}

}  // namespace voxtrel::platform::state_port
