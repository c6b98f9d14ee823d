#include <numeric>

#include <fmt/format.h>

#include "../support/Guarded.h"
#include "QVEclipseRFTtest.h"

namespace lumbarn {

namespace {

constexpr const char* className = "QVEclipseRFTtest";

std::string_view beforeSlash(std::string_view text) { return text.substr(0, text.find('/')); }

}  // namespace

/// A step ends by itself when something is wrong, with its own report, and the later ones still run.
void QVEclipseRFTtest::step(const char* routine, void (QVEclipseRFTtest::*work)(), std::string_view lost) {
  bool qOK = false;
  guarded(*session_, qOK, className, routine, [&] {
    try {
      (this->*work)();
    } catch (const ToldFault&) {
      throw;
    } catch (const Fault& fault) {
      tell(Message::WellTestDerived, {}, beginsAt_,
           fmt::format("test of well {}, {}: {}", zWell_, dateText(), fault.what()), {}, {}, lost);
      throw;
    }
  });
}

/// The order counts: the PLT step writes into the segment table, and the segment step needs the branches.
void QVEclipseRFTtest::processRecords() {
  using Test = QVEclipseRFTtest;
  setPointers();
  step("setUNITS", &Test::setUNITS, "left out the units of gas-oil ratios");
  step("processRFTRecords", &Test::processRFTRecords, "left out oil saturations and completions");
  step("processPLTRecords", &Test::processPLTRecords, "worked out nothing from its PLT");
  step("processBRANCHData", &Test::processBRANCHData, "left out the branches behind the fault");
  step("processSEGMENTData", &Test::processSEGMENTData, "left out the segments behind it, and all devices");
  step("processICDData", &Test::processICDData, "left out the device branches");
}

void QVEclipseRFTtest::setPointers() {
  pltColumns_.set(plt_);
  segColumns_.set(seg_);
  brnColumns_.set(brn_);
}

/// A WELLETC of exactly 8 texts has no gas rate, which is a fault. Deliberate: shorter ones are passed over.
void QVEclipseRFTtest::setUNITS() {
  if (welletc_.size() < welletcLiquidRate) return;
  zGORUnits_ = beforeSlash(welletc_.at(welletcGasRate));
  zGORUnits_.append("/").append(beforeSlash(welletc_.at(welletcLiquidRate)));
}

/// All three go in when any was read. One that was not is a single 0, which fits no table but of one row, and
/// makes one when no other array came before. Deliberate.
void QVEclipseRFTtest::processRFTPLTRecords(TestTable& table) {
  if (!qIndices_) return;
  constexpr std::string_view names[] = {"CONIPOS", "CONJPOS", "CONKPOS"};
  constexpr float notRead = 0;
  for (std::size_t axis = 0; axis < reader_->indices.size(); ++axis) {
    const RecordWalk::IndexArray& array = reader_->indices[axis];
    const auto values =
        array.values.empty() ? std::span<const float>(&notRead, 1) : std::span<const float>(array.values);
    addArray(table, names[axis], values, array.headerAt);
  }
}

void QVEclipseRFTtest::processRFTRecords() {
  processRFTPLTRecords(rft_);
  if (!qRFT_ || nConnections_ == 0 || rft_.find("DEPTH") < 0) return;
  const auto n = static_cast<std::size_t>(nConnections_);
  std::vector<float>& values = reader_->singles;
  values.resize(n);
  if (rft_.find("SOIL") < 0) {
    values.assign(n, 1);
    for (const std::string_view phase : {"SGAS", "SWAT"}) {  // in this order, for the last bit
      const std::int32_t iPhase = rft_.find(phase);
      if (iPhase < 0) continue;
      const auto saturation = rft_.column(iPhase, n);
      for (std::size_t i = 0; i < n; ++i) values[i] -= saturation[i];
    }
    addArray(rft_, "SOIL", values);
  }
  std::iota(values.begin(), values.end(), 1.0F);
  addArray(rft_, "COMPLETION", values);
}

}  // namespace lumbarn
