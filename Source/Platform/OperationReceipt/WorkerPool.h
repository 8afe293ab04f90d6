// The threads that run the works of receipts.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace voxtrel::platform::receipts {

// Runs jobs in the order submitted. A worker is started whenever a job
// finds none idle, up to `maxWorkers`; works that wait long (a lock's
// timeout, say) therefore do not hold up the others until that many wait.
// Workers live as long as the process: the pool is never destroyed, so that
// nothing has to be joined at exit behind a work that does not stop.
class WorkerPool {
 public:
  explicit WorkerPool(size_t maxWorkers) : maxWorkers_(maxWorkers) {}
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  // False when no worker is there to run the job and none could be
  // started; the job then stays queued for a worker started later.
  bool Submit(std::function<void()> job);

 private:
  void Work();

  const size_t maxWorkers_;
  std::mutex mutex_;
  std::condition_variable jobAdded_;
  std::deque<std::function<void()>> jobs_;
  size_t workers_ = 0;
  size_t idle_ = 0;
};

}  // namespace voxtrel::platform::receipts
