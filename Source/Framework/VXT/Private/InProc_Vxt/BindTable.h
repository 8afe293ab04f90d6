// Binding a service's component table.
#pragma once

#include <cstdint>

namespace vxt {

// Asks the component's getter for its table and stores it in the service's
// member. A table that is already bound is not written again, so that the
// services reading it on other threads never race with a repeated bind.
template <class Table>
uint32_t BindTable(uint32_t (*getter)(const Table**), const Table*& member) {
  const Table* table = nullptr;
  const uint32_t code = getter(&table);
  if (member != table) member = table;
  return code;
}

}  // namespace vxt
