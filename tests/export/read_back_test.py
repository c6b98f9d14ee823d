#!/usr/bin/python3
"""Reads files that "lumbarn grid --vtk" wrote with VTK's own reader, and compares points, cells, volumes and arrays
with what the other subcommands say and what the simulator wrote.

    read_back_test.py COMMAND SAMPLES

Exits 77, which stands for skipped, when VTK is not there; with LUMBARN_REQUIRE_VTK set, as scripts/test does, that is
a failure.
"""

import csv
import io
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

try:
    from vtkmodules.vtkFiltersVerdict import vtkCellSizeFilter
    from vtkmodules.vtkIOHDF import vtkHDFReader
except ImportError as missing:
    print(f"SKIPPED: python3-vtk9 is not installed ({missing})")
    sys.exit(1 if os.environ.get("LUMBARN_REQUIRE_VTK") else 77)

COMMAND, SAMPLES = sys.argv[1], pathlib.Path(sys.argv[2])
HEXAHEDRON = 12
# Corners of a row in the order of a hexahedron's points; a left-handed cell begins with the other face.
RIGHT = [0, 1, 3, 2, 4, 5, 7, 6]


def lumbarn(*arguments):
    return subprocess.run([COMMAND, *map(str, arguments)], check=True, capture_output=True, text=True).stdout


def corners(run):
    """I, J, K and eight points of each active cell."""
    rows = csv.reader(io.StringIO(lumbarn("grid", "--corners", "--format", "csv", run)))
    next(rows)
    for row in rows:
        numbers = [float(value) for value in row]
        yield tuple(map(int, row[:3])), [tuple(numbers[n : n + 3]) for n in range(3, 27, 3)]


class ReadBack(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.file = pathlib.Path(folder.name) / "run.vtkhdf"

    def export(self, run, *options):
        lumbarn("grid", "--vtk", self.file, *options, run)
        reader = vtkHDFReader()
        reader.SetFileName(str(self.file))
        sizes = vtkCellSizeFilter()
        sizes.SetInputConnection(reader.GetOutputPort())
        sizes.Update()
        grid = sizes.GetOutput()
        data = grid.GetCellData()
        arrays = {data.GetArrayName(n): data.GetArray(n) for n in range(data.GetNumberOfArrays())}
        return grid, {
            name: [array.GetValue(n) for n in range(array.GetNumberOfValues())] for name, array in arrays.items()
        }

    def check_cells(self, grid, arrays, cells, order, z=1):
        self.assertEqual(grid.GetNumberOfCells(), len(cells))
        for n, (place, points) in enumerate(cells):
            cell = grid.GetCell(n)
            self.assertEqual(cell.GetCellType(), HEXAHEDRON)
            self.assertEqual((arrays["I"][n], arrays["J"][n], arrays["K"][n]), place)
            for at, corner in enumerate(order):
                x, y, depth = points[corner]
                # Both are the same single, the one shown in its shortest form.
                for seen, wanted in zip(cell.GetPoints().GetPoint(at), (x, y, z * depth)):
                    self.assertAlmostEqual(seen, wanted, delta=1e-7 * max(1, abs(wanted)))

    def test_cells_points_and_arrays_of_a_faulted_grid(self):
        run = SAMPLES / "HOLLIN"
        cells = list(corners(run))
        grid, arrays = self.export(run, "--array", "PORV,PORO,PERMX", "--array", "PRESSURE", "--step", 13)
        self.check_cells(grid, arrays, cells, RIGHT)
        self.assertLess(grid.GetNumberOfPoints(), 2 * len(cells))
        self.assertEqual(len({grid.GetPoint(n) for n in range(grid.GetNumberOfPoints())}), grid.GetNumberOfPoints())
        self.assertEqual(set(arrays["GRID"]), {1})
        self.assertEqual(arrays["CELL"], [i + 16 * (j - 1 + 12 * (k - 1)) for (i, j, k), _ in cells])
        self.assertAlmostEqual(sum(arrays["PERMX"]), 116220, places=0)
        # PORV is there for all cells; active ones have volume times porosity, as the simulator worked it out
        # from coordinates that had not yet been rounded to half a metre.
        for n, volume in enumerate(arrays["Volume"]):
            self.assertAlmostEqual(volume * arrays["PORO"][n] / arrays["PORV"][n], 1, delta=0.02)
        records = lumbarn("records", "--stats", "--format", "csv", run / "HOLLIN.UNRST").splitlines()
        last = [row.split(",") for row in records if row.startswith("PRESSURE,")][-1]
        self.assertAlmostEqual(min(arrays["PRESSURE"]), float(last[4]), places=3)
        self.assertAlmostEqual(max(arrays["PRESSURE"]), float(last[5]), places=3)

    def test_heights_turn_the_cells_over_so_that_volumes_stay_positive(self):
        run = SAMPLES / "ARBOR"
        grid, arrays = self.export(run, "--z-up")
        self.check_cells(grid, arrays, list(corners(run)), RIGHT[4:] + RIGHT[:4], -1)
        self.assertGreater(min(arrays["Volume"]), 0)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], "-v"])
