// The Jtag component's getter: a record of its three tables, constant from
// library load on.
#include "Jtag.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace voxtrel::platform::jtag {
const JtagAccessComponent* AccessTable();
const JtagConfigurationComponent* ConfigurationTable();
const JtagDiagnosticComponent* DiagnosticTable();
}  // namespace voxtrel::platform::jtag

uint32_t Voxtrel_GetJtag(const JtagComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetJtag");
  if (!table) return voxtrel::platform::target::kNullArgument;
  namespace jtag = voxtrel::platform::jtag;
  static const JtagComponent kJtag{jtag::AccessTable(), jtag::ConfigurationTable(), jtag::DiagnosticTable()};
  *table = &kJtag;
  return 0;
}
