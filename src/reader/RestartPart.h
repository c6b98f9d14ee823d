#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../index/qvEclipseRSSPEC.h"
#include "../restart/qvEclipseSOLUTION.h"
#include "ReaderPart.h"

namespace lumbarn {

/// The index of a restart set, which a load of restart data by its name reads too.
class RestartIndexPart : public ReaderPart {
 public:
  using ReaderPart::ReaderPart;

  bool held() const override { return index_ != nullptr; }
  void release() override { index_.reset(); }
  bool damaged() const override { return false; }

  /// An index that cannot be read is no reason not to read the files that it is the index of.
  void load();
  const qvEclipseRSSPEC* index() const { return index_.get(); }

 private:
  std::unique_ptr<qvEclipseRSSPEC> index_;
};

/// The steps of a restart set.
class RestartPart : public ReaderPart {
 public:
  RestartPart(const ReaderContext& context, RestartIndexPart& index) : ReaderPart(context), index_(&index) {}

  bool held() const override { return set_ != nullptr; }
  void release() override { set_.reset(); }
  bool damaged() const override { return set_ && set_->qDamaged; }
  std::vector<std::string> unmatched() const override;

  void load();
  /// The set, with the grid of the options chosen.
  qvEclipseSOLUTION& set() const;

  std::vector<RestartStep> steps() const;
  /// Null when there is no such step or grid.
  const RESTARTGRID* grid(std::int32_t iSeqnum, std::int32_t iGrid) const;
  /// Empty when there is no such array or no values are held.
  std::span<const float> values(std::int32_t iSeqnum, std::int32_t iGrid, std::int32_t iVector) const;
  std::span<const float> values(std::int32_t iSeqnum, std::int32_t iGrid, std::string_view zName) const;

 private:
  struct Choice;

  std::unique_ptr<qvEclipseSOLUTION> open(const std::vector<std::string>& files) const;
  void setFiles(qvEclipseSOLUTION& set, std::vector<std::string> files) const;
  void chooseByDialog(const qvEclipseSOLUTION& set, Choice& choice) const;
  void read(Choice& choice);
  void writeIndex() const;

  RestartIndexPart* index_;
  std::unique_ptr<qvEclipseSOLUTION> set_;
};

}  // namespace lumbarn
