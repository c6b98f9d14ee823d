#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <utility>
#include <vector>

#include "../support/Export.h"
#include "BatchBuilder.h"
#include "Column.h"
#include "Error.h"

struct ArrowArrayStream;

namespace lumbarn {

class Session;
class Progress;

/// How a question is answered.
struct ReadOptions {
  std::stop_token stop{};  ///< ends the stream with Error Cancelled; may be requested from any thread
  /// The same for a flag that a signal handler sets. Not owned; null: none.
  const std::atomic<bool>* stopFlag = nullptr;
  /// Called with each diagnosis as it is made, on the thread that reads.
  std::function<void(const Diagnosis&)> report{};
  Progress* progress =
      nullptr;  ///< shows how far the read has come; called on the thread that reads; not owned
  BatchLimits limits{};
  /// Damage ends the stream like its last row; `Stream::incomplete` has the reason.
  bool keepPartial = false;
};

/// Produces the batches of a stream.
class LUMBARN_API BatchSource {
 public:
  virtual ~BatchSource();
  /// The next batch, or nothing after the last one. Throws if reading fails, and is not called again.
  virtual std::optional<Batch> next() = 0;
};

/// The session of a stream and what was reported in it. Sources refer to it, so it lives as long as they do.
class LUMBARN_API StreamContext {
 public:
  explicit StreamContext(ReadOptions options = {});
  ~StreamContext();
  StreamContext(const StreamContext&) = delete;
  StreamContext& operator=(const StreamContext&) = delete;

  Session& session() { return *session_; }
  const ReadOptions& options() const { return options_; }
  const std::vector<Diagnosis>& remarks() const { return remarks_; }
  /// The first diagnosis of the worst severity, of those that mean that data are missing.
  const std::optional<Diagnosis>& worst() const { return worst_; }
  void note(const Diagnosis& diagnosis);
  /// Does some work, and adds what is reported during it to `reports`.
  template <class Work>
  auto recorded(std::vector<Diagnosis>& reports, Work&& work) {
    struct Recording {
      std::vector<Diagnosis>*& record;
      std::vector<Diagnosis>* outer;
      ~Recording() { record = outer; }
    } recording{record_, std::exchange(record_, &reports)};
    return std::forward<Work>(work)();
  }

 private:
  ReadOptions options_;
  std::vector<Diagnosis>* record_ = nullptr;
  std::unique_ptr<Session> session_;
  std::optional<std::stop_callback<std::function<void()>>> stop_;
  std::vector<Diagnosis> remarks_;
  std::optional<Diagnosis> worst_;
};

/// Rows of a table, batch after batch. Movable, read once, by one thread at a time. Owns its session and,
/// through its source, its files.
class LUMBARN_API Stream {
 public:
  Stream(std::shared_ptr<const Schema> schema, std::shared_ptr<StreamContext> context,
         std::unique_ptr<BatchSource> source);
  Stream(Stream&&) noexcept;
  Stream& operator=(Stream&&) noexcept;
  ~Stream();

  const Schema& schema() const { return *schema_; }
  const std::shared_ptr<const Schema>& sharedSchema() const { return schema_; }
  const std::shared_ptr<StreamContext>& context() const { return context_; }

  /// The next batch, which has rows; nothing at the end. Where data are missing, all good rows come first and
  /// then the Error, once; with `keepPartial` the end, and `incomplete` has the reason.
  std::optional<Batch> next();
  /// What is missing, after the end of a stream with `keepPartial`.
  const std::optional<Diagnosis>& incomplete() const { return incomplete_; }
  /// What was reported so far that is no fault: choices and assumptions.
  std::span<const Diagnosis> remarks() const { return context_->remarks(); }

  /// All remaining rows as one batch. Throws Error Memory if there is not enough.
  Batch collect() &&;

  /// Hands the stream to a consumer of Arrow's C stream interface; this one is empty afterwards. get_next
  /// returns EIO, ENOMEM or ECANCELED, get_last_error the text of the diagnosis.
  void exportTo(ArrowArrayStream* out) &&;

 private:
  bool keeps(const Error& error) const;
  std::optional<Batch> fail(Error error);

  std::shared_ptr<const Schema> schema_;
  std::shared_ptr<StreamContext> context_;  // before the source, which refers to it
  std::unique_ptr<BatchSource> source_;     // null: at the end
  std::optional<Diagnosis> incomplete_;
};

/// Makes a stream of rows. `fill` adds rows to a builder until that is full, and is called again for more; it
/// returns false when there are none. When it throws, the rows that it ended are delivered first.
LUMBARN_API Stream streamOfRows(Schema schema, std::shared_ptr<StreamContext> context,
                                std::function<bool(BatchBuilder&)> fill);

/// A stream of one batch.
LUMBARN_API Stream streamOf(Batch batch,
                            std::shared_ptr<StreamContext> context = std::make_shared<StreamContext>());

}  // namespace lumbarn
