#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "../shapes/SourceData.h"
#include "../summary/qvEclipseSUMMARYFile.h"
#include "ReaderPart.h"

namespace lumbarn {

/// The summary of a run, with its restart chain.
class SummaryPart : public ReaderPart {
 public:
  using ReaderPart::ReaderPart;

  bool held() const override { return file_ != nullptr; }
  void release() override;
  bool damaged() const override { return file_ && file_->qDamaged; }
  std::vector<std::string> unmatched() const override;

  void load();
  /// The vectors of the specification that `FileName` leads to; needs no load.
  std::vector<SummaryVector> list() const;

  /// The file, for its one fetch; fails when it was fetched before.
  qvEclipseSUMMARYFile& beginFetch() const;
  SourceData endFetch();
  /// One step, from 1, of the profiles along wells.
  SourceData profile(std::int32_t iStep, bool qInflow, XYData& xyData, ByteTable& bHeaders) const;
  void setKeys() const { file_->SetKeys(); }

  std::int32_t columns() const { return file_ ? file_->columns() : 0; }
  const std::vector<SummaryVector>& vectors() const;
  const std::vector<SummaryRow>& rows() const;
  std::vector<bool> rowsWithValues(std::int32_t iVector) const;
  std::optional<Moment> start() const { return file_ ? file_->start() : std::nullopt; }
  std::vector<Moment> rowDates(const XYData& table) const;
  std::string scratchFile() const { return file_ ? file_->zScratchFile : ""; }

 private:
  struct Choice;

  void chooseSilently(Choice& choice) const;
  void chooseByDialog(Choice& choice) const;
  void setOptions(qvEclipseSUMMARYFile& file) const;
  void read(Choice& choice);
  SourceData source() const;

  std::unique_ptr<qvEclipseSUMMARYFile> file_;
  bool fetched_ = false;
};

}  // namespace lumbarn
