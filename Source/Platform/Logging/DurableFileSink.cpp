#include "Logging/DurableFileSink.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace voxtrel::platform::logging {

DurableFileSink::DurableFileSink(const std::string& path, bool truncate) {
  const int flags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | (truncate ? O_TRUNC : 0);
  fd_ = ::open(path.c_str(), flags, 0644);
  if (fd_ < 0) throw spdlog::spdlog_ex(std::strerror(errno));
}

DurableFileSink::~DurableFileSink() {
  if (fd_ >= 0) ::close(fd_);
}

void DurableFileSink::sink_it_(const spdlog::details::log_msg& message) {
  line_.clear();
  formatter_->format(message, line_);
  const char* next = line_.data();
  size_t left = line_.size();
  // O_APPEND puts the whole line at the end of the file in one step; the loop
  // only finishes a write the kernel cut short (a signal, a full disk).
  while (left > 0) {
    const ssize_t written = ::write(fd_, next, left);
    if (written < 0) {
      if (errno == EINTR) continue;
      throw spdlog::spdlog_ex("cannot write the log file", errno);
    }
    next += written;
    left -= static_cast<size_t>(written);
  }
}

}  // namespace voxtrel::platform::logging
