#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "../welltests/WellTest.h"
#include "../welltests/qvEclipseRFT.h"
#include "../welltests/qvUserRFT.h"
#include "ReaderPart.h"

namespace lumbarn {

/// The tests of a simulator's RFT file.
class WellTestPart : public ReaderPart {
 public:
  using ReaderPart::ReaderPart;

  bool held() const override { return file_ != nullptr; }
  void release() override { file_.reset(); }
  bool damaged() const override { return file_ && file_->qDamaged; }

  void load();
  qvEclipseRFT& file() const { return *file_; }
  std::int32_t nTests() const { return file_ ? file_->NumTests() : 0; }
  /// The tests as data; needs no load. Fails without one.
  std::vector<WellTest> list() const;

 private:
  std::unique_ptr<qvEclipseRFT> file_;
};

/// The tests of a text file that a user wrote, RFT or PLT.
class UserTestPart : public ReaderPart {
 public:
  using ReaderPart::ReaderPart;

  bool held() const override { return file_ != nullptr; }
  void release() override { file_.reset(); }
  bool damaged() const override { return file_ && file_->qDamaged; }

  void load(UserTestKind kind);
  qvUserRFT& file() const { return *file_; }
  std::int32_t nTests() const { return file_ ? file_->NumTests() : 0; }
  std::vector<UserTest> tests() const { return file_ ? file_->tests(kind_) : std::vector<UserTest>(); }

 private:
  std::unique_ptr<qvUserRFT> file_;
  UserTestKind kind_ = UserTestKind::Rft;
};

}  // namespace lumbarn
