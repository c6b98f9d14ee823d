#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "../support/Dates.h"

namespace lumbarn {

/// A column of a user's test. Name and units are upper case; units are empty where the file gives none.
struct UserTestColumn {
  std::string name;
  std::string units;
  std::vector<float> values;
};

/// One measured test of a user's file as data; names are whole, also where a header's field cuts them. Texts
/// are empty where the file gives none.
struct UserTest {
  std::int32_t number = 0;        ///< in the file, from 1
  std::int32_t numberInWell = 0;  ///< among the tests of its well, from 1
  std::string well;
  std::string origin;
  std::string grid;
  std::string wellType;
  std::optional<Moment> date;           ///< the day with the time of day of `time`; nothing without a DATE
  double time = 0;                      ///< days
  std::vector<UserTestColumn> columns;  ///< the depth column in front
};

}  // namespace lumbarn
