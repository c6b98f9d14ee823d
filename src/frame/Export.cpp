#include <atomic>
#include <cerrno>
#include <cstring>
#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "BatchData.h"
#include "Stream.h"
#include "arrow_c.h"

namespace lumbarn {

namespace {

/// What the parts of one exported structure share. A consumer may keep a child and release the rest, so each
/// part has its own reference.
template <class Part>
struct Shared {
  std::atomic<std::size_t> references{0};
  std::deque<Part> parts;  // children, dictionaries: addresses stay
  std::deque<std::vector<Part*>> lists;

  static void release(Part* part) {
    for (std::int64_t i = 0; i < part->n_children; ++i) releaseIfHeld(part->children[i]);
    if (part->dictionary) releaseIfHeld(part->dictionary);
    auto* shared = static_cast<Shared*>(part->private_data);
    part->release = nullptr;
    if (shared->references.fetch_sub(1) == 1) shared->destroy();
  }
  void hold(Part& part) {
    part.release = &Shared::release;
    part.private_data = this;
    ++references;
  }
  Part& add() {
    Part& part = parts.emplace_back();
    hold(part);
    return part;
  }
  void setChildren(Part& part, std::vector<Part*> children) {
    part.n_children = static_cast<std::int64_t>(children.size());
    part.children = lists.emplace_back(std::move(children)).data();
  }
  virtual ~Shared() = default;

 private:
  static void releaseIfHeld(Part* part) {
    if (part->release) part->release(part);
  }
  void destroy() { delete this; }
};

struct SharedSchema final : Shared<ArrowSchema> {
  std::deque<std::string> texts;
  const char* keep(std::string text) { return texts.emplace_back(std::move(text)).c_str(); }
};

struct SharedArray final : Shared<ArrowArray> {
  std::shared_ptr<const BatchData> batch;
  std::deque<std::vector<const void*>> buffers;
  std::deque<std::vector<std::int32_t>> offsets;  // of dictionaries
  std::deque<std::string> texts;
};

std::string formatOf(const Field& field) {
  switch (field.type) {
    case Type::Bool:
      return "b";
    case Type::Int32:
    case Type::Dictionary:
      return "i";
    case Type::Int64:
      return "l";
    case Type::Float32:
      return "f";
    case Type::Float64:
      return "g";
    case Type::Utf8:
      return "u";
    case Type::Timestamp:
      return "tsu:";
    case Type::FixedList:
      return "+w:" + std::to_string(field.listSize);
  }
  return "n";
}

/// Metadata in Arrow's encoding: their number, then length and bytes of each key and value, in this machine's
/// order.
std::string encoded(const Field& field) {
  const auto pairs = allMetadata(field);
  if (pairs.empty()) return {};
  std::string bytes;
  const auto number = [&](std::size_t value) {
    const auto word = static_cast<std::int32_t>(value);
    bytes.append(reinterpret_cast<const char*>(&word), sizeof word);
  };
  number(pairs.size());
  for (const auto& [key, value] : pairs) {
    for (const std::string* text : {&key, &value}) {
      number(text->size());
      bytes += *text;
    }
  }
  return bytes;
}

void describe(SharedSchema& shared, ArrowSchema& out, const Field& field) {
  out.format = shared.keep(formatOf(field));
  out.name = shared.keep(field.name);
  if (auto metadata = encoded(field); !metadata.empty()) out.metadata = shared.keep(std::move(metadata));
  out.flags = field.nullable ? ARROW_FLAG_NULLABLE : 0;
  if (field.type == Type::FixedList) {
    ArrowSchema& item = shared.add();
    item.format = "f";
    item.name = "item";
    shared.setChildren(out, {&item});
  }
  if (field.type == Type::Dictionary) {
    out.dictionary = &shared.add();
    out.dictionary->format = "u";
    out.dictionary->name = "";
  }
}

void exportSchema(const Schema& schema, ArrowSchema* out) {
  auto shared = std::make_unique<SharedSchema>();
  ArrowSchema top{};
  top.format = "+s";
  top.name = "";
  std::vector<ArrowSchema*> children;
  for (const Field& field : schema) {
    children.push_back(&shared->add());
    describe(*shared, *children.back(), field);
  }
  shared->setChildren(top, std::move(children));
  shared->hold(top);
  *out = top;
  shared.release();
}

void setBuffers(SharedArray& shared, ArrowArray& out, std::vector<const void*> buffers) {
  out.n_buffers = static_cast<std::int64_t>(buffers.size());
  out.buffers = shared.buffers.emplace_back(std::move(buffers)).data();
}

ArrowArray& exportDictionary(SharedArray& shared, const std::vector<std::string>& words) {
  ArrowArray& out = shared.add();
  auto& offsets = shared.offsets.emplace_back(1, 0);
  auto& texts = shared.texts.emplace_back();
  for (const std::string& word : words) {
    texts += word;
    offsets.push_back(static_cast<std::int32_t>(texts.size()));
  }
  out.length = static_cast<std::int64_t>(words.size());
  setBuffers(shared, out, {nullptr, offsets.data(), texts.data()});
  return out;
}

void describe(SharedArray& shared, ArrowArray& out, std::size_t column) {
  const Field& field = (*shared.batch->schema)[column];
  const ColumnBuffers& from = shared.batch->columns[column];
  out.length = static_cast<std::int64_t>(shared.batch->rows);
  out.null_count = static_cast<std::int64_t>(from.nulls);
  if (field.type == Type::Utf8) {
    setBuffers(shared, out, {from.validity, from.values, from.texts});
  } else if (field.type == Type::FixedList) {
    ArrowArray& items = shared.add();
    items.length = out.length * field.listSize;
    setBuffers(shared, items, {nullptr, from.values});
    setBuffers(shared, out, {from.validity});
    shared.setChildren(out, {&items});
  } else {
    setBuffers(shared, out, {from.validity, from.values});
    if (field.type == Type::Dictionary) out.dictionary = &exportDictionary(shared, *field.dictionary);
  }
}

void exportArray(const std::shared_ptr<const BatchData>& batch, ArrowArray* out) {
  auto shared = std::make_unique<SharedArray>();
  shared->batch = batch;
  ArrowArray top{};
  top.length = static_cast<std::int64_t>(batch->rows);
  setBuffers(*shared, top, {nullptr});
  std::vector<ArrowArray*> children;
  for (std::size_t i = 0; i < batch->columns.size(); ++i) {
    children.push_back(&shared->add());
    describe(*shared, *children.back(), i);
  }
  shared->setChildren(top, std::move(children));
  shared->hold(top);
  *out = top;
  shared.release();
}

/// The stream behind an exported one.
struct Exported {
  Stream stream;
  std::string lastError;

  template <class Body>
  static int answer(ArrowArrayStream* self, Body body) noexcept {
    auto& exported = *static_cast<Exported*>(self->private_data);
    try {
      exported.lastError.clear();
      body(exported.stream);
      return 0;
    } catch (...) {
      return exported.keep(errorInFlight());
    }
  }

 private:
  int keep(const Error& error) noexcept {
    try {
      lastError = error.what();
    } catch (...) {
      lastError.clear();
    }
    switch (error.kind()) {
      case Error::Kind::Cancelled:
        return ECANCELED;
      case Error::Kind::Memory:
        return ENOMEM;
      case Error::Kind::NotFound:
      case Error::Kind::BadRequest:
        return EINVAL;
      case Error::Kind::Damaged:
      case Error::Kind::System:
        break;
    }
    return EIO;
  }
};

}  // namespace

void Batch::exportTo(ArrowArray* array, ArrowSchema* schema) const {
  if (schema) exportSchema(this->schema(), schema);
  if (!array) return;
  try {
    exportArray(data_, array);
  } catch (...) {
    if (schema) schema->release(schema);
    throw;
  }
}

void Stream::exportTo(ArrowArrayStream* out) && {
  auto exported = std::make_unique<Exported>(Exported{std::move(*this), {}});
  out->get_schema = [](ArrowArrayStream* self, ArrowSchema* schema) {
    return Exported::answer(self, [&](Stream& stream) { exportSchema(stream.schema(), schema); });
  };
  out->get_next = [](ArrowArrayStream* self, ArrowArray* array) {
    return Exported::answer(self, [&](Stream& stream) {
      if (auto batch = stream.next()) {
        batch->exportTo(array, nullptr);
      } else {
        *array = {};  // the end: released already
      }
    });
  };
  out->get_last_error = [](ArrowArrayStream* self) -> const char* {
    const auto& text = static_cast<Exported*>(self->private_data)->lastError;
    return text.empty() ? nullptr : text.c_str();
  };
  out->release = [](ArrowArrayStream* self) {
    delete static_cast<Exported*>(self->private_data);
    self->release = nullptr;
  };
  out->private_data = exported.release();
}

}  // namespace lumbarn
