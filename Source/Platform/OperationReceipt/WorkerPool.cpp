#include "OperationReceipt/WorkerPool.h"

#include <system_error>
#include <utility>

namespace voxtrel::platform::receipts {

bool WorkerPool::Submit(std::function<void()> job) {
  bool startWorker = false;
  {
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
    startWorker = jobs_.size() > idle_ && workers_ < maxWorkers_;
    if (startWorker) ++workers_;
  }
  if (startWorker) {
    try {
      std::thread(&WorkerPool::Work, this).detach();
      return true;
    } catch (const std::system_error&) {
      // The system has no thread to spare; the workers there are take the
      // job in turn.
      const std::lock_guard lock(mutex_);
      --workers_;
      if (workers_ == 0) return false;
    }
  }
  jobAdded_.notify_one();
  return true;
}

void WorkerPool::Work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    ++idle_;
    jobAdded_.wait(lock, [this] { return !jobs_.empty(); });
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
