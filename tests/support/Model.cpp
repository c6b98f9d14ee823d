#include <algorithm>
#include <numeric>

#include "ModelRun.h"

namespace lumbarn::test {

using namespace std::chrono;

float modelValue(std::string_view array, std::size_t step, std::int32_t cell) {
  const auto place = static_cast<float>(cell);
  if (array == "SWAT") return static_cast<float>(step) / 16 + place / 256;
  if (array == "SGAS") return 0.25F;
  const int sum = std::accumulate(array.begin(), array.end(), 0);
  return static_cast<float>(1000 * (sum % 89)) + 100 * static_cast<float>(step) + place + 0.25F;
}

sys_seconds Model::start() const {
  return sys_days{year{2015} / January / 1} + hours{writer_->startWords > 3 ? writer_->startHour : 0};
}
std::int32_t Model::firstStep() const { return writer_->earlier == Writer::Earlier::None ? 0 : 2; }
std::vector<std::int32_t> Model::restartSteps() const {
  std::vector<std::int32_t> numbers;
  if (writer_->initialStep) numbers.push_back(0);
  for (std::int32_t step = 1; step <= writer_->steps; ++step) numbers.push_back(firstStep() + step);
  return numbers;
}
double Model::daysAt(std::int32_t step) const { return writer_->firstDay + 10.0 * step; }
sys_seconds Model::dateAt(double days) const {
  return start() + seconds{static_cast<std::int64_t>(days * 86400)};
}

std::array<std::int32_t, 3> Model::dayMonthYear(sys_seconds moment) {
  const year_month_day date{floor<days>(moment)};
  return {static_cast<std::int32_t>(static_cast<unsigned>(date.day())),
          static_cast<std::int32_t>(static_cast<unsigned>(date.month())), static_cast<int>(date.year())};
}

std::vector<std::int32_t> Model::activeCells() const {
  using enum Writer::Activity;
  const auto mask = grid().grids[0].activity;
  const auto isActive = [&](std::int32_t cell) {
    if (writer_->activity == Ones) return cell != 5 && cell != 17;
    const bool matrix = cell < cells / 2;
    return writer_->activity == Absent ||
           (mask[static_cast<std::size_t>(cell % (cells / 2))] & (matrix ? 1 : 2)) != 0;
  };
  std::vector<std::int32_t> active;
  for (std::int32_t cell = 0; cell < cells; ++cell) {
    if (isActive(cell)) active.push_back(cell);
  }
  return active;
}
std::int32_t Model::activeInGrid() const {
  return static_cast<std::int32_t>(activeCells().size()) + (writer_->poreVolumesDecide ? 1 : 0);
}

std::string Model::unit(std::string_view text) const {
  const std::size_t blanks = 8 - text.size();
  if (writer_->padding == Writer::Padding::Left) return std::string(text);
  const std::size_t front = writer_->padding == Writer::Padding::Right ? blanks : (blanks + 1) / 2;
  return std::string(front, ' ') + std::string(text);
}

std::vector<ModelVector> Model::vectors() const {
  constexpr const char* nobody = ":+:+:+:+";
  const std::string producer = writer_->wells[0], injector = writer_->wells[1], node = writer_->node;
  const std::string rate = unit(writer_->units == 2 ? "STB/DAY" : writer_->units == 3 ? "SCC/HR" : "SM3/DAY");
  const std::string pressure = unit(writer_->units == 2 ? "PSIA" : writer_->units == 3 ? "ATMA" : "BARSA");
  const std::string length = writer_->units == 2 ? "FEET" : writer_->units == 3 ? "CM" : "METRES";
  std::vector<ModelVector> all{{"TIME", {"TIME", nobody, 0, unit(writer_->units == 3 ? "HOURS" : "DAYS")}},
                               {"FOPR", {"FOPR", nobody, 0, rate}},
                               {"WOPR:" + producer, {"WOPR", producer, 1, rate}},
                               {"WWIR:" + injector, {"WWIR", injector, 2, rate}},
                               {"WBHP:" + producer, {"WBHP", producer, 1, pressure}},
                               {"GOPR:G1", {"GOPR", "G1", 1, rate}},
                               {"BPR:2,2,1", {"BPR", nobody, 5, pressure}},
                               {"COPR:" + producer + ":2,2,1", {"COPR", producer, 5, rate}},
                               {"RPR:2", {"RPR", nobody, 2, pressure}},
                               {"ROFT:1-2", {"ROFT", nobody, 1 + 32768 * 12, rate}},
                               {"AAQR:1", {"AAQR", nobody, 1, rate}},
                               {"SOFR:" + producer + ":12", {"SOFR", producer, 12, rate}},
                               {"SOFR:" + injector + ":2", {"SOFR", injector, 2, rate}},
                               {"NPR:" + node, {"NPR", node, 0, pressure}}};
  if (writer_->totals) all.push_back({"FOPT", {"FOPT", nobody, 0, unit("SM3")}});
  if (writer_->inventedVectors) {
    for (const auto& well : {producer, injector}) all.push_back({"#WSTATH1:" + well, {"#WSTATH1", well, 0}});
  }
  if (writer_->repeatedVector) all.push_back({"FOPR", {"FOPR", nobody, 0, rate}});
  if (writer_->localGrid) {
    all.push_back({"LWOPR:LGR1:" + producer, {"LWOPR", producer, 1, rate, localGrid, {1, 1, 1}}});
    all.push_back({"LBPR:LGR1:2,1,1", {"LBPR", nobody, 2, pressure, localGrid, {2, 1, 1}}});
  }
  return all;
}

std::vector<float> Model::times() const {
  std::vector<float> all;
  const double perDay = writer_->units == 3 ? 24 : 1;
  for (std::int32_t step = firstStep(); step < firstStep() + writer_->steps; ++step) {
    all.push_back(static_cast<float>((daysAt(step) + 4) * perDay));
    all.push_back(static_cast<float>(daysAt(step + 1) * perDay));
  }
  return all;
}

std::vector<std::vector<float>> Model::summaryRows() const {
  const auto names = vectors();
  std::vector<std::vector<float>> rows;
  for (const float time : times()) {
    auto& row = rows.emplace_back();
    for (std::size_t column = 0; column < names.size(); ++column)
      row.push_back(static_cast<float>(100 * column + rows.size()) + 0.5F);
    row[0] = time;
    if (!writer_->totals) continue;
    const auto* before = rows.size() > 1 ? &rows[rows.size() - 2] : nullptr;
    const auto total =
        static_cast<std::size_t>(std::ranges::find(names, "FOPT", &ModelVector::name) - names.begin());
    row[total] = before ? (*before)[total] + row[1] * (time - (*before)[0]) : 0;
  }
  if (writer_->running) rows.pop_back();
  return rows;
}

std::vector<std::vector<float>> Model::earlierRows() const {
  std::vector<std::vector<float>> rows;
  if (writer_->earlier == Writer::Earlier::None) return rows;
  for (const int step : {1, 2}) {
    auto& row = rows.emplace_back(vectors().size(), 50.0F + static_cast<float>(step));
    row[0] = static_cast<float>(daysAt(step) * (writer_->units == 3 ? 24 : 1));
  }
  return rows;
}

std::vector<std::string> Model::restartArrays() const {
  std::vector<std::string> names{"PRESSURE", "SWAT"};
  if (writer_->gas) names.emplace_back("SGAS");
  return names;
}

std::vector<float> Model::values(std::string_view array, std::size_t step, bool local) const {
  std::vector<float> all;
  if (local) {
    for (std::int32_t cell = 0; cell < localCells; ++cell)
      all.push_back(modelValue(array, step, cell + cellOffset(true)));
  } else {
    for (const std::int32_t cell : activeCells()) all.push_back(modelValue(array, step, cell));
  }
  return all;
}

std::vector<std::array<std::int32_t, 3>> Model::connections(std::size_t well) const {
  const std::int32_t top = writer_->dualPorosity ? 3 : 1;  // wells are connected to the fractures
  if (well == 1) return {{3, 2, top + 1}};
  if (writer_->connectionSlots == 1) return {{1, 1, top}};
  return {{1, 1, top}, {1, 1, top + 1}};
}

std::vector<ModelTable> Model::tables() const {
  const double small = writer_->tinyNumbers ? 0.1234e-101 : 0;
  std::vector<ModelTable> all{
      {"SWFN", {"SW", "KRW", "PCOW"}, {{0.25, small, 4}, {0.5, 0.5, 2}, {1, 1, 0}}},
      {"PVTW", {"PREF", "BW", "CW", "MUW", "CV"}, {{200, 0.5, 0.0078125, 2, 0.00390625}}}};
  if (writer_->gas) {
    all.push_back({"SGFN", {"SG", "KRG", "PCOG"}, {{0, 0, 0}, {0.5, 0.25, 1}, {0.75, 1, 2}}});
    all.push_back({"PVDG", {"P", "BG", "MUG"}, {{1, 0.5, 0.25}, {100, 0.25, 0.5}, {300, 0.125, 1}}});
    all.push_back({"SOF3", {"SO", "KROW", "KROG"}, {{0, 0, 0}, {0.5, 0.25, 0.125}, {0.75, 1, 1}}});
  } else {
    all.push_back({"SOF2", {"SO", "KRO"}, {{0, 0}, {0.5, 0.25}, {0.75, 1}}});
  }
  if (writer_->constantCompressibility)
    all.push_back({"PVCDO", {"PREF", "BO", "CO", "MUO", "CVO"}, {{200, 1.25, 0.0625, 2, 0.5}}});
  else
    all.push_back({"PVDO", {"P", "BO", "MUO"}, {{100, 2, 0.5}, {200, 1, 1}, {300, 0.5, 2}}});
  all.push_back({"DENSITY", {"OIL", "WATER", "GAS"}, {{800, 1000, 1}}});
  all.push_back({"ROCK", {"PREF", "CR"}, {{200, 0.0625}}});
  return all;
}

}  // namespace lumbarn::test
