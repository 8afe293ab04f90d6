#include "OperationReceipt/WorkerPool.h"

#include <system_error>
#include <utility>

namespace voxtrel::platform::receipts {

bool WorkerPool::Submit(std::function<void()> job) {
  size_t toStart = 0;
  {
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
    toStart = ReserveWorkers();
  }
  if (!StartWorkers(toStart)) return false;
  jobAdded_.notify_one();
  return true;
}

void WorkerPool::Hold(bool hold) {
  size_t toStart = 0;
  {
    const std::lock_guard lock(mutex_);
    held_ = hold;
    toStart = ReserveWorkers();
  }
  StartWorkers(toStart);
  jobAdded_.notify_all();
}

size_t WorkerPool::ReserveWorkers() {
  if (held_ || jobs_.size() <= idle_) return 0;
  const size_t missing = jobs_.size() - idle_;
  workers_ += missing;
  return missing;
}

bool WorkerPool::StartWorkers(size_t count) {
  for (size_t started = 0; started < count; ++started) {
    try {
      std::thread(&WorkerPool::Work, this).detach();
    } catch (const std::system_error&) {
      // The system has no thread to spare; the workers there are take the
      // jobs in turn.
      const std::lock_guard lock(mutex_);
      workers_ -= count - started;
      return workers_ != 0;
    }
  }
  return true;
}

void WorkerPool::Work() {
  std::unique_lock lock(mutex_);
  const auto hasJob = [this] { return !held_ && !jobs_.empty(); };
  for (;;) {
    ++idle_;
    if (workers_ > keptWorkers_) {
      if (!jobAdded_.wait_for(lock, idleLimit_, hasJob)) {
        --idle_;
        --workers_;
        return;
      }
    } else {
      jobAdded_.wait(lock, hasJob);
    }
    --idle_;
    std::function<void()> job = std::move(jobs_.front());
    jobs_.pop_front();
    lock.unlock();
    job();
    job = nullptr;  // What the job holds is released outside the lock.
    lock.lock();
  }
}

}  // namespace voxtrel::platform::receipts
