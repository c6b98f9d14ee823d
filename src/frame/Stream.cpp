#include "Stream.h"

#include <exception>
#include <utility>

#include "../support/Session.h"
#include "BatchCopy.h"

namespace lumbarn {

StreamContext::StreamContext(ReadOptions options)
    : options_(std::move(options)), session_(std::make_unique<Session>()) {
  session_->diagnosisSink = [this](const Diagnosis& diagnosis) { note(diagnosis); };
  session_->faultReporter = [this](std::string_view text) {
    note({.message = Message::SystemFault, .problem = std::string(text)});
  };
  session_->Container = options_.progress;
  session_->hostCancel = options_.stopFlag;
  if (options_.stop.stop_possible()) {
    stop_.emplace(options_.stop, [session = session_.get()] { session->CancelLoad = true; });
  }
}
StreamContext::~StreamContext() = default;

void StreamContext::note(const Diagnosis& diagnosis) {
  if (options_.report) options_.report(diagnosis);
  if (record_ != nullptr) record_->push_back(diagnosis);
  if (diagnosis.severity() == Severity::Remark) {
    remarks_.push_back(diagnosis);
  } else if (!worst_ || worst_->severity() < diagnosis.severity()) {
    worst_ = diagnosis;
  }
}

Stream::Stream(std::shared_ptr<const Schema> schema, std::shared_ptr<StreamContext> context,
               std::unique_ptr<BatchSource> source)
    : schema_(std::move(schema)), context_(std::move(context)), source_(std::move(source)) {}
Stream::Stream(Stream&&) noexcept = default;
Stream& Stream::operator=(Stream&& other) noexcept {
  source_ = std::exchange(other.source_, nullptr);  // the old one while its context still lives
  schema_ = other.schema_;
  context_ = other.context_;
  incomplete_ = std::move(other.incomplete_);
  return *this;
}
Stream::~Stream() = default;

std::optional<Batch> Stream::next() {
  if (!source_) return std::nullopt;
  try {
    if (context_->session().cancelled()) throw LoadCanceled();
    while (auto batch = source_->next()) {
      if (batch->rows() > 0) return batch;
      if (context_->session().cancelled()) throw LoadCanceled();
    }
    if (context_->session().cancelled()) throw LoadCanceled();
  } catch (...) {
    auto error = errorInFlight();
    if (keeps(error)) context_->note(error.diagnosis());
    return fail(std::move(error));
  }
  if (const auto& worst = context_->worst()) return fail(Error(Error::Kind::Damaged, *worst));
  source_.reset();
  return std::nullopt;
}

/// Whether the stream ends by the error like any other, as the host keeps what there is.
bool Stream::keeps(const Error& error) const {
  return context_->options().keepPartial &&
         (error.kind() == Error::Kind::Damaged || error.kind() == Error::Kind::System);
}

std::optional<Batch> Stream::fail(Error error) {
  source_.reset();
  if (!keeps(error)) throw error;
  incomplete_ = error.diagnosis();
  return std::nullopt;
}

namespace {

class FilledRows final : public BatchSource {
 public:
  FilledRows(std::shared_ptr<const Schema> schema, const BatchLimits& limits,
             std::function<bool(BatchBuilder&)> fill)
      : rows_(std::move(schema), limits), fill_(std::move(fill)) {}

  std::optional<Batch> next() override {
    if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
    if (ended_) return std::nullopt;
    try {
      ended_ = !fill_(rows_);
    } catch (...) {
      rows_.dropRow();
      if (rows_.rows() == 0) throw;
      failure_ = std::current_exception();
    }
    return rows_.finish();
  }

 private:
  BatchBuilder rows_;
  std::function<bool(BatchBuilder&)> fill_;
  std::exception_ptr failure_;
  bool ended_ = false;
};

class OneBatch final : public BatchSource {
 public:
  explicit OneBatch(Batch batch) : batch_(std::move(batch)) {}
  std::optional<Batch> next() override { return std::exchange(batch_, std::nullopt); }

 private:
  std::optional<Batch> batch_;
};

}  // namespace

BatchSource::~BatchSource() = default;

Batch Stream::collect() && {
  std::vector<BatchRows> all;
  while (auto batch = next()) all.push_back({*batch, 0, batch->rows()});
  if (all.size() == 1) return all.front().batch;
  try {
    return copied(schema_, all);
  } catch (...) {
    throw errorInFlight();
  }
}

Stream streamOfRows(Schema schema, std::shared_ptr<StreamContext> context,
                    std::function<bool(BatchBuilder&)> fill) {
  auto shared = std::make_shared<const Schema>(std::move(schema));
  auto source = std::make_unique<FilledRows>(shared, context->options().limits, std::move(fill));
  return {std::move(shared), std::move(context), std::move(source)};
}

Stream streamOf(Batch batch, std::shared_ptr<StreamContext> context) {
  auto schema = batch.data()->schema;
  return {std::move(schema), std::move(context), std::make_unique<OneBatch>(std::move(batch))};
}

}  // namespace lumbarn
