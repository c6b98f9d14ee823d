#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace lumbarn {

/// The schedule item that a summary variable feeds. Both numbers are -1 for a variable that feeds none.
struct ScheduleCode {
  std::int32_t iCode = -1;
  std::int32_t iPhase = -1;  ///< 1 for production, 2 for injection, -1 where that has no meaning
};
ScheduleCode scheduleCode(std::string_view zVariable);
/// Calling form of the same. A variable that feeds none is no failure: qOK is True.
void scheduleVector(std::string_view zVariable, std::int32_t& iCode, std::int32_t& iPhase, bool& qOK);

/// The same from a whole mnemonic, and its class slot (for a vector of a local grid that of the class within
/// the grid). Only wells and the field have schedule items; for other classes iCode, iPhase and iNumber are
/// -1. iNumber is the number behind an underscore, -1 when there is none or it is no 32-bit integer. zVector
/// goes in as a mnemonic; when a number was taken from it, only its variable comes out.
void scheduleVectorInfo(std::string& zVector, std::int32_t& iClass, std::int32_t& iCode, std::int32_t& iPhase,
                        std::int32_t& iNumber, bool& qOK);

}  // namespace lumbarn
