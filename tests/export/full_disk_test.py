#!/usr/bin/python3
"""Runs "lumbarn grid --vtk" with a limit on the size of files, as on a disk that becomes full, and expects that
it fails, reports the system's reason and leaves the folder unchanged.

    full_disk_test.py COMMAND SAMPLES
"""

import pathlib
import resource
import subprocess
import sys
import tempfile
import unittest

COMMAND, SAMPLES = sys.argv[1], pathlib.Path(sys.argv[2])


def export(target, limit):
    return subprocess.run(
        [COMMAND, "grid", "--vtk", target, "--array", "PORO,PRESSURE", SAMPLES / "HOLLIN"],
        capture_output=True,
        text=True,
        restore_signals=False,  # SIGXFSZ stays ignored, so that a write beyond the limit fails
        preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)),
    )


class FullDisk(unittest.TestCase):
    def test_a_write_that_fails_anywhere_is_reported_and_replaces_nothing(self):
        with tempfile.TemporaryDirectory() as folder:
            target = pathlib.Path(folder) / "run.vtkhdf"
            self.assertEqual(export(target, resource.RLIM_INFINITY).returncode, 0)
            good = target.read_bytes()
            for limit in [0, 1, 100, 2048, 4096, *range(10000, len(good), len(good) // 12), len(good) - 1]:
                run = export(target, limit)
                self.assertEqual(run.returncode, 1, f"limit {limit}: {run.stderr}")
                self.assertIn("cannot be written: File too large", run.stderr)
                self.assertNotIn("HDF5", run.stderr)
                self.assertEqual(list(pathlib.Path(folder).iterdir()), [target])
                self.assertEqual(target.read_bytes(), good)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]])
