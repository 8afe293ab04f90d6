#include "Logging/LogSink.h"

#include <ctime>
#include <filesystem>
#include <system_error>

#include <spdlog/details/log_msg.h>
#include <spdlog/sinks/stdout_sinks.h>

#include "Error.h"
#include "Logging.h"
#include "Logging/DurableFileSink.h"
#include "Logging/LogFile.h"

namespace voxtrel::platform::logging {
namespace {

// The internal code of a log file operation that the file system refused.
constexpr uint32_t kOperationFailed = 0x20004;

constexpr const char* kDecoratedPattern = "[%Y-%m-%d %H:%M:%S.%e] [%t] [%l] [%n] %v";
constexpr const char* kRawPattern = "%v";

// Levels 1 to 4 as spdlog names them in the decorated format.
spdlog::level::level_enum SpdlogLevel(uint32_t level) {
  switch (level) {
    case 1:
      return spdlog::level::trace;
    case 2:
      return spdlog::level::info;
    case 3:
      return spdlog::level::warn;
    default:
      return spdlog::level::err;
  }
}

uint32_t PostFailure(const std::string& what) {
  Voxtrel_ErrorPostError(kOperationFailed, what.c_str(), __FILE__, __LINE__);
  return kOperationFailed;
}

std::string UtcStamp() {
  const std::time_t now = std::time(nullptr);
  std::tm utc{};
  gmtime_r(&now, &utc);
  char stamp[32] = "";
  std::strftime(stamp, sizeof stamp, "%Y%m%dT%H%M%S", &utc);
  return stamp;
}

// "<path>.<stamp>", or "<path>.<stamp>.<n>" for the first n that is free.
std::filesystem::path ArchiveName(const std::string& path) {
  const std::string base = path + "." + UtcStamp();
  std::filesystem::path candidate = base;
  std::error_code error;
  for (int n = 1; std::filesystem::exists(candidate, error); ++n) candidate = base + "." + std::to_string(n);
  return candidate;
}

}  // namespace

LogSink& LogSink::Instance() {
  static LogSink& sink = *new LogSink;
  return sink;
}

void LogSink::Open(const std::optional<std::string>& path, bool rawFormat) {
  std::lock_guard lock(mutex_);
  if (sink_) sink_->flush();
  sink_.reset();
  path_ = path.value_or("");
  rawFormat_ = rawFormat;
  if (!path_.empty()) {
    Reopen(false);
    return;
  }
  sink_ = std::make_unique<spdlog::sinks::stderr_sink_st>();
  SetFormat();
}

void LogSink::SetFormat() { sink_->set_pattern(rawFormat_ ? kRawPattern : kDecoratedPattern); }

uint32_t LogSink::Reopen(bool truncate) {
  sink_.reset();
  try {
    sink_ = std::make_unique<DurableFileSink>(path_, truncate);
    SetFormat();
    return 0;
  } catch (const std::exception& error) {
    return PostFailure("Cannot open the log file '" + path_ + "': " + error.what());
  }
}

void LogSink::Write(std::string_view name, int spdlogLevel, std::string_view text, int depth, bool captured) {
  std::lock_guard lock(mutex_);
  if (!sink_ || (captured && path_.empty())) return;
  try {
    const auto level = static_cast<spdlog::level::level_enum>(spdlogLevel);
    if (rawFormat_ || depth <= 0) {
      sink_->log(spdlog::details::log_msg(name, level, text));
      return;
    }
    indented_.assign(static_cast<size_t>(depth) * 2, ' ');
    indented_.append(text);
    sink_->log(spdlog::details::log_msg(name, level, indented_));
  } catch (const std::exception&) {
    // A full disk must not take the caller down; the line is lost.
  }
}

void LogSink::WriteTrace(uint32_t stream, uint32_t level, std::string_view text, int depth, bool captured) {
  Write(Voxtrel_LoggingGetStreamName(stream), SpdlogLevel(level), text, depth, captured);
}

void LogSink::WriteUsage(std::string_view stream, std::string_view event, std::string_view text, bool captured) {
  std::string line = "USAGE ";
  line.append(stream).append(" ").append(event).append(" ").append(text);
  Write(stream, spdlog::level::info, line, 0, captured);
}

uint32_t LogSink::Flush() {
  std::lock_guard lock(mutex_);
  if (!sink_) return 0;
  try {
    sink_->flush();
    return 0;
  } catch (const std::exception& error) {
    return PostFailure("Cannot flush the log file '" + path_ + "': " + error.what());
  }
}

uint32_t LogSink::Clear() {
  std::lock_guard lock(mutex_);
  if (path_.empty()) return 0;
  return Reopen(true);
}

uint32_t LogSink::Archive() {
  std::lock_guard lock(mutex_);
  if (path_.empty()) return 0;
  if (sink_) sink_->flush();
  sink_.reset();  // Closes the file before it is renamed.
  const std::filesystem::path archive = ArchiveName(path_);
  std::error_code error;
  std::filesystem::rename(path_, archive, error);
  // Logging goes on in a fresh file even when the old one could not be moved.
  const uint32_t reopened = Reopen(!error);
  if (error)
    return PostFailure("Cannot archive the log file '" + path_ + "' as '" + archive.string() + "': " +
                       error.message());
  return reopened;
}

}  // namespace voxtrel::platform::logging

namespace voxtrel::platform {

uint32_t FlushLogFile() { return logging::LogSink::Instance().Flush(); }
uint32_t ClearLogFile() { return logging::LogSink::Instance().Clear(); }
uint32_t ArchiveLogFile() { return logging::LogSink::Instance().Archive(); }

}  // namespace voxtrel::platform
