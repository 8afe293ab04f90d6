#include "OperationReceipt/WorkerPool.h"

#include <utility>

namespace voxtrel::platform::receipts {

void WorkerPool::Submit(std::function<void()> job) {
  bool startWorker = false;
  {
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
    startWorker = jobs_.size() > idle_ && workers_ < maxWorkers_;
    if (startWorker) ++workers_;
  }
  if (startWorker) {
    std::thread(&WorkerPool::Work, this).detach();
  } else {
    jobAdded_.notify_one();
  }
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
