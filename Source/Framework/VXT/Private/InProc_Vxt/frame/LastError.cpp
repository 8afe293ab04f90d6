#include "frame/LastError.h"

#include <sstream>
#include <string>

#include <boost/thread/tss.hpp>

#include "frame/Render.h"
#include "frame/TextStream.h"
#include "frame/TraceLine.h"

namespace vxt::frame {
namespace {

// Each thread owns its string; it is freed when the thread ends.
boost::thread_specific_ptr<std::string>& LastErrorSlot() {
  static boost::thread_specific_ptr<std::string> slot;
  return slot;
}

void StoreLastError(std::string text) {
  auto& slot = LastErrorSlot();
  if (slot.get() == nullptr) {
    slot.reset(new std::string(std::move(text)));
  } else {
    *slot = std::move(text);
  }
}

}  // namespace

const ServiceLogger& LookupLogger() {
  static const ServiceLogger logger;
  return logger;
}

void ReportErrorMessage(const char* source, const char* message) {
  const ServiceLogger& logger = LookupLogger();
  TraceLine(logger, 1, "In  InProc ReportErrorMessage(", Quoted{source}, Quoted{message}, ")");

  TextStream text;
  if (source != nullptr && *source != '\0') text << source << ": ";
  if (message != nullptr && *message != '\0') text << message;
  StoreLastError(text.str());

  TraceLine(logger, 1, "Out InProc ReportErrorMessage()");
}

void ClearLastErrorMessage() { StoreLastError(std::string()); }

const char* LastErrorMessage() {
  static const char kEmpty[] = "";
  const std::string* text = LastErrorSlot().get();
  return text != nullptr ? text->c_str() : kEmpty;
}

}  // namespace vxt::frame
