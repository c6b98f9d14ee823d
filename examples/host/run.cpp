// Asks a run what an engineer wants to know of it.
//
//   run PATH      any file of a run, its root name or its folder; writes rates.csv

#include <algorithm>
#include <cstdio>
#include <lumbarn/Frame.h>
#include <lumbarn/Run.h>

int main(int argc, char** argv) {
  try {
    const auto run = lumbarn::Run::open(argc > 1 ? argv[1] : ".");
    const auto steps = run.steps();
    for (const auto& step : steps) std::printf("step %d, %.2f days\n", step.number, step.days);

    lumbarn::write(run.summary({.vectors = {"FOPR", "FPR", "WBHP:P1"}, .dates = true}), "rates.csv");

    const auto cell = run.cells({.arrays = {"PRESSURE"}, .cells = {{{2, 1, 1}, {2, 1, 1}}}}).collect();
    std::printf("pressure of cell 2,1,1:");
    for (const float pressure : cell["PRESSURE"].values<float>()) std::printf(" %.1f", pressure);

    const auto grid = run.grids("ROOT").collect();
    const lumbarn::CellBox layer{
        {1, 1, 1}, {grid["nx"].values<std::int32_t>()[0], grid["ny"].values<std::int32_t>()[0], 1}};
    const auto top = run.cellArray("PRESSURE", steps.back().number, layer);
    const auto* values = static_cast<const float*>(top.data.get());
    std::printf("\nlargest pressure of the top layer: %.1f %s\n",
                *std::max_element(values, values + top.cells()), top.unit.c_str());
  } catch (const lumbarn::Error& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
