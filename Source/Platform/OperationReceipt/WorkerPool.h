// The threads that run the works of receipts.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace voxtrel::platform::receipts {

// Runs jobs in the order submitted. A worker is started whenever a job
// finds none idle, however many are busy: a work may wait long (for a lock,
// without a timeout), and any fixed number of such works would otherwise
// hold up every later one, past its own deadline. When the rush is over,
// `keptWorkers` stay and the others leave after `idleLimit` without a job.
// Workers are detached and the pool is never destroyed, so that nothing has
// to be joined at exit behind a work that does not stop.
class WorkerPool {
 public:
  WorkerPool(size_t keptWorkers, std::chrono::milliseconds idleLimit)
      : keptWorkers_(keptWorkers), idleLimit_(idleLimit) {}
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  // False when no worker is there to run the job and none could be
  // started; the job then stays queued for a worker started later.
  bool Submit(std::function<void()> job);

  // While held, no worker takes a job: they stay queued, in order.
  void Hold(bool hold);

 private:
  // Counts the workers the queued jobs lack as started and returns their
  // number. Under the lock.
  size_t ReserveWorkers();
  // False when none could be started and no worker is left.
  bool StartWorkers(size_t count);
  void Work();

  const size_t keptWorkers_;
  const std::chrono::milliseconds idleLimit_;
  std::mutex mutex_;
  std::condition_variable jobAdded_;
  std::deque<std::function<void()>> jobs_;
  size_t workers_ = 0;
  size_t idle_ = 0;
  bool held_ = false;
};

}  // namespace voxtrel::platform::receipts
