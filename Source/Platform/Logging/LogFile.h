// Operations on the log file, for the Common component's log operations.
//
// With no log file (VXT_LOG_FILE unset; lines go to standard error) each
// succeeds and changes nothing. They return an internal code: 0, or 0x20004
// with a posted message when the file system refuses.
#pragma once

#include <cstdint>

namespace voxtrel::platform {

// Writes out what is buffered.
uint32_t FlushLogFile();
// Empties the file; logging goes on into it.
uint32_t ClearLogFile();
// Renames the file to "<name>.<UTC yyyymmddThhmmss>", with ".1", ".2"... added
// if that exists, and starts a fresh, empty file under the old name.
uint32_t ArchiveLogFile();

}  // namespace voxtrel::platform
