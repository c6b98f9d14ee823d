#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <string_view>
#include <typeindex>
#include <unordered_map>

#include "Diagnosis.h"
#include "Export.h"

namespace lumbarn {

class ByteSource;

/// The host's progress display, handed in through `Container`. All calls come on the loading thread.
class LUMBARN_API Progress {
 public:
  virtual ~Progress();
  /// A set of `count` files will be read; `fileDone` is called after each.
  virtual void files(int count) { (void)count; }
  virtual void fileDone() {}
  /// Share of a single file that has been read, 0 to 1.
  virtual void fraction(double share) { (void)share; }
};

/// Thrown by a long loop of the record layer when the load is canceled; `guarded` ends the operation quietly.
struct LUMBARN_API LoadCanceled : std::exception {
  const char* what() const noexcept override;
};

/// All state that outlives a routine: what the system calls process-wide or module-wide. `process()` is the
/// session that reader objects use unless they are given another. Two sessions share nothing mutable, so a
/// host may load in parallel with one session per thread; one session serves one load at a time.
class LUMBARN_API Session {
 public:
  using Clock = std::chrono::system_clock;

  Session() = default;
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// The default session of the process.
  static Session& process();

  std::int32_t IOMethod = 1;       ///< carried into every file descriptor; has no effect on this build
  double NullValue = -999;         ///< stands for "no value" in results
  std::int32_t UseNullValue = 1;   ///< told to the host in the source data
  std::atomic<bool> CancelLoad{};  ///< polled by every long loop; may be set from a signal or another thread
  const std::atomic<bool>* hostCancel =
      nullptr;                    ///< a flag of the host's that has the same effect; not owned
  Progress* Container = nullptr;  ///< not owned
  std::size_t memoryLimit = 0;    ///< bytes that one result array may take; 0: no limit but the machine's

  std::function<void()> hostYield;                       ///< the host's message loop
  std::function<void(std::string_view)> faultReporter;   ///< takes the text of each fault report
  std::function<void(const Diagnosis&)> diagnosisSink;   ///< is told of each diagnosis as it is made
  std::function<Clock::time_point()> now = &Clock::now;  ///< tests fix it

  /// Replaces every file that is opened for reading by another source of bytes, in all sessions. Only that of
  /// `process()` is used. Lets tests and audits run complete loads on sources that fail.
  std::function<std::unique_ptr<const ByteSource>(std::unique_ptr<const ByteSource>)> wrapSource;

  /// Gives the host its turn. True when the load is to stop.
  bool yield() {
    if (hostYield) hostYield();
    return cancelled();
  }
  bool cancelled() const {
    return CancelLoad.load(std::memory_order_relaxed) ||
           (hostCancel != nullptr && hostCancel->load(std::memory_order_relaxed));
  }

  /// Counts a fault and passes its text to the reporter. Nothing is shown when the host gave none.
  void reportFault(std::string_view text) {
    countFault();
    if (faultReporter) faultReporter(text);
  }
  void countFault() noexcept { ++faults_; }
  /// Faults reported so far. An operation during which it rises has failed, whatever it returned.
  std::int64_t faults() const { return faults_; }

  /// Keeps a diagnosis, the most recent `keptDiagnoses` of them, and tells the sink.
  void diagnose(Diagnosis diagnosis);
  const std::deque<Diagnosis>& diagnoses() const { return diagnoses_; }
  void clearDiagnoses() { diagnoses_.clear(); }
  static constexpr std::size_t keptDiagnoses = 1000;

  /// Throws Fault 7 when an array of that many bytes is beyond `memoryLimit`.
  void checkMemory(std::size_t bytes) const;

  /// The session's one object of type T, made on first use: state of a higher layer that lives as long as the
  /// session without this layer knowing of it.
  template <class T>
  T& part() {
    auto& slot = parts_[std::type_index(typeid(T))];
    if (!slot) slot = std::make_shared<T>();
    return *static_cast<T*>(slot.get());
  }
  /// Lets the session's object of type T go; the next `part` makes it new.
  template <class T>
  void release() {
    parts_.erase(std::type_index(typeid(T)));
  }

 private:
  std::int64_t faults_ = 0;
  std::deque<Diagnosis> diagnoses_;
  std::unordered_map<std::type_index, std::shared_ptr<void>> parts_;
};

}  // namespace lumbarn
