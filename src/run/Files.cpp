#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "../files/Extensions.h"
#include "../files/FileChoice.h"
#include "../files/Folder.h"
#include "../files/Recogniser.h"
#include "../frame/Error.h"
#include "../support/Text.h"
#include "Run.h"
#include "RunState.h"

namespace lumbarn {

namespace {

/// Every kind, by its number.
std::shared_ptr<const std::vector<std::string>> kindNames() {
  std::vector<std::string> names;
  for (int kind = 0; kind <= static_cast<int>(FileKind::UserPlt); ++kind)
    names.emplace_back(nameOf(static_cast<FileKind>(kind)));
  return std::make_shared<const std::vector<std::string>>(std::move(names));
}

Schema fileColumns() {
  return {{.name = "name", .type = Type::Utf8, .nullable = false},
          {.name = "kind", .type = Type::Dictionary, .nullable = false, .dictionary = kindNames()},
          {.name = "form", .type = Type::Utf8, .description = "text, formatted, or marks and byte order"},
          {.name = "bytes", .type = Type::Int64},
          {.name = "first_step", .type = Type::Int32, .description = "first report step of the file"},
          {.name = "last_step", .type = Type::Int32},
          {.name = "in_use", .type = Type::Bool, .description = "false: another file is read in its place"}};
}

/// The report steps that files have, and which files are read where a run has several of a kind.
class FileUse {
 public:
  FileUse(const RunState& run, StreamContext& context) : run_(run) {
    for (const FileKind kind : {FileKind::Summary, FileKind::Restart}) {
      if (!run.family().find(kind)) continue;
      for (const std::string& path : chooseFiles(context.session(), run.family(), kind).files)
        chosen_.insert(path);
    }
    ReadOptions silent = context.options();
    silent.report = nullptr;  // whoever asks for the content of the files hears what is wrong with it
    const auto tryTo = [&](auto read) {
      try {
        StreamContext inner(silent);
        read(inner);
      } catch (...) {
        const Error error = errorInFlight();
        if (error.kind() == Error::Kind::Cancelled || error.kind() == Error::Kind::Memory) throw error;
      }
    };
    if (run.family().find(FileKind::Restart)) tryTo([&](StreamContext& inner) { addRestart(inner); });
    if (run.family().find(FileKind::SummarySpec)) tryTo([&](StreamContext& inner) { addSummary(inner); });
  }

  /// First and last; nothing where that is not known.
  std::optional<std::pair<std::int32_t, std::int32_t>> steps(const RunMember& file) const {
    if (file.multiple()) return std::pair(file.step, file.step);
    const auto known = steps_.find(file.path);
    return known == steps_.end() ? std::nullopt : std::optional(known->second);
  }

  /// Nothing for files that answer no question.
  std::optional<bool> inUse(const RunMember& file) const {
    switch (file.kind) {
      case FileKind::Summary:
      case FileKind::Restart:
        return chosen_.contains(file.path);
      case FileKind::EGrid:
      case FileKind::Grid:
        return &file == run_.gridFile();
      case FileKind::SummarySpec:
      case FileKind::Rsspec:
      case FileKind::Init:
      case FileKind::Inspec:
      case FileKind::Rft:
      case FileKind::Save:
        return &file == run_.family().find(file.kind);
      default:
        return std::nullopt;
    }
  }

 private:
  void add(const std::string& path, std::int32_t step) {
    const auto [place, isNew] = steps_.try_emplace(path, step, step);
    if (!isNew) place->second.second = step;
  }
  void addRestart(StreamContext& context) {
    const auto index = run_.restartIndex(context);
    for (const IndexStep& step : index->steps) add(index->files[step.file], step.number);
  }
  void addSummary(StreamContext& context) {
    const auto summary = run_.summary().run(context, true);
    for (const RowPlace& row : summary->index.rows)
      add(summary->files[static_cast<std::size_t>(row.iFile)], row.iReportStep);
  }

  const RunState& run_;
  std::set<std::string> chosen_;
  std::map<std::string, std::pair<std::int32_t, std::int32_t>> steps_;
};

void addFile(BatchBuilder& rows, const RunMember& file, const FileUse& use) {
  const Recognised content = recogniseFile(file.path);
  const FileKind kind = content.kind == FileKind::Unknown ? file.kind : content.kind;
  rows.set(0, toUtf8(file.path.substr(file.path.find_last_of(folderSeparators()) + 1)));
  rows.set(1, static_cast<std::int32_t>(kind));
  if (content.form) rows.set(2, content.form->description());
  if (!content.form && isText(kind)) rows.set(2, std::string_view("text"));
  if (const auto stamp = stampOf(file.path)) rows.set(3, stamp->size);
  if (const auto steps = use.steps(file)) {
    rows.set(4, steps->first);
    rows.set(5, steps->second);
  }
  if (const auto inUse = use.inUse(file)) rows.set(6, static_cast<std::int32_t>(*inUse));
  rows.endRow();
}

}  // namespace

Stream Run::files(const ReadOptions& options) const {
  try {
    auto context = std::make_shared<StreamContext>(options);
    const auto use = std::make_shared<const FileUse>(*state_, *context);
    return streamOfRows(
        fileColumns(), context,
        [run = state_, use, context = context.get(), next = std::size_t{0}](BatchBuilder& rows) mutable {
          const auto& members = run->family().members;
          for (; next < members.size() && !rows.full(); ++next) {
            if (context->session().cancelled()) throw LoadCanceled();
            addFile(rows, members[next], *use);
          }
          return next < members.size();
        });
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
