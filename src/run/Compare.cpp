#include "Compare.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "../files/Folder.h"
#include "../files/Recogniser.h"
#include "../support/Pattern.h"
#include "../support/Session.h"
#include "../support/Text.h"
#include "DifferenceList.h"
#include "RecordData.h"
#include "RecordPair.h"
#include "RunState.h"

namespace lumbarn {

namespace {

/// Two files of records, compared record by record.
class FilePair {
 public:
  FilePair(const std::string& a, const std::string& b, const Comparison& comparison, Session& session)
      : a_(openRecordFile(a)), b_(openRecordFile(b)), comparison_(comparison), session_(session) {
    a_->attach(session);
    b_->attach(session);
  }

  /// False when something is missing on either side.
  bool compare(DifferenceList& differences) {
    indexB();
    while (next(*a_)) {
      const RecordHeader& header = a_->header();
      if (!wanted(header)) continue;
      const auto other = ofB_.find({header.keyword, a_->occurrence()});
      if (other == ofB_.end()) {
        missing_.add(*a_, header, a_->occurrence());
        continue;
      }
      const RecordHeader found = other->second;
      ofB_.erase(other);
      comparePair(found, differences);
      showProgress(*a_, session_);
    }
    for (const auto& [name, header] : ofB_) missing_.add(*b_, header, name.second);
    for (const Unequal* unequal : {&missing_, &size_}) unequal->tell(session_);
    return missing_.count == 0 && size_.count == 0;
  }

 private:
  /// Records that cannot be compared, reported together: of unequal grids every array would give a report.
  struct Unequal {
    Message message;
    Diagnosis first{.message = message, .path = {}, .problem = {}, .keyword = {}};
    std::int64_t count = 0;

    void add(const RecordCursor& cursor, const RecordHeader& header, std::int64_t occurrence) {
      if (count++ > 0) return;
      first.path = cursor.path();
      first.keyword = header.keyword;
      first.occurrence = occurrence;
      first.offset = header.headerAt;
    }
    void tell(Session& session) const {
      if (count == 0) return;
      Diagnosis told = first;
      if (count > 1) told.action = fmt::format("so are {} other records", count - 1);
      session.diagnose(std::move(told));
    }
  };

  bool wanted(const RecordHeader& header) const {
    return comparison_.keywords.empty() ||
           std::ranges::any_of(comparison_.keywords, [&](const std::string& pattern) {
             return matchesPattern(header.keyword, pattern);
           });
  }
  bool next(RecordCursor& cursor) {
    if (session_.yield()) throw LoadCanceled();
    return nextRecord(
        cursor, [] { return std::string("compared the records before it"); },
        [&](const Diagnosis& damage) { session_.diagnose(damage); });
  }
  void indexB() {
    while (next(*b_)) {
      if (wanted(b_->header())) ofB_.emplace(std::pair(b_->header().keyword, b_->occurrence()), b_->header());
    }
  }
  void comparePair(const RecordHeader& other, DifferenceList& differences) {
    const RecordHeader& header = a_->header();
    if (!sameShape(header, other)) {
      const auto shape = [](const RecordHeader& one) {
        return fmt::format("{} {}", one.count, one.typeWord);
      };
      size_.first.expected = size_.count == 0 ? shape(other) : size_.first.expected;
      size_.first.found = size_.count == 0 ? shape(header) : size_.first.found;
      return size_.add(*a_, header, a_->occurrence());
    }
    b_->setCurrent(other);
    differences.count("record", header.keyword, header.count);
    visitUnequal(*a_, *b_, session_, [&](const ElementPair& pair) {
      differences.take("record", header.keyword, pair, [&] {
        return DifferencePlace{
            .place = fmt::format("occurrence {}, element {}", a_->occurrence(), pair.element + 1)};
      });
    });
  }

  std::unique_ptr<RecordCursor> a_;
  std::unique_ptr<RecordCursor> b_;
  const Comparison& comparison_;
  Session& session_;
  std::map<std::pair<std::string, std::int64_t>, RecordHeader> ofB_;  // not met in a yet
  Unequal missing_{Message::CompareMissing};
  Unequal size_{Message::CompareSize};
};

void requireSameKind(const std::string& a, const std::string& b) {
  const FileKind kinds[] = {recogniseFile(a).kind, recogniseFile(b).kind};
  if (kinds[0] != kinds[1] && kinds[0] != FileKind::Unknown && kinds[1] != FileKind::Unknown)
    throwRefused(b, fmt::format("is of another type than {}: {}, {}", a, nameOf(kinds[1]), nameOf(kinds[0])));
}

}  // namespace

Differences compareFiles(const std::string& a, const std::string& b, const Comparison& comparison,
                         const ReadOptions& options) {
  try {
    StreamContext context(options);
    FilePair files(a, b, comparison, context.session());
    requireSameKind(a, b);
    DifferenceList differences(comparison);
    const bool complete = files.compare(differences);
    if (const auto& damage = context.worst(); damage && !options.keepPartial)
      throw Error(Error::Kind::Damaged, *damage);
    if (differences.nothingCompared() && complete)
      throwNotFound(a, "nothing of it is to be compared", "", {});
    return {differences.overview(), differences.largest(), complete && differences.equal()};
  } catch (...) {
    throw errorInFlight();
  }
}

Differences compare(const std::string& a, const std::string& b, const Comparison& comparison,
                    const ReadOptions& options) {
  const bool ofRuns = !comparison.vectors.empty() || !comparison.time.isAll();
  if (!ofRuns && isFile(a) && isFile(b)) return compareFiles(a, b, comparison, options);
  return compare(Run::open(a), Run::open(b), comparison, options);
}

}  // namespace lumbarn
