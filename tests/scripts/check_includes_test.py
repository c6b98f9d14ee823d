#!/usr/bin/env python3
"""Feeds scripts/check-includes trees with one fault each, and one tree with all that is allowed."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECK = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "check-includes"

GOOD = {
    "support/Text.h": "#include <string>\n",
    "support/Numbers.h": '#include "Text.h"\n',
    "support/System.cpp": "#include <fcntl.h>\n#include <sys/mman.h>\n#include <fmt/format.h>\n",
    "record/Cursor.h": '#pragma once\n#include "../support/Text.h"\n',
    "record/Cursor.cpp": '#include "Cursor.h"\n#include <fast_float/fast_float.h>\n#include <immintrin.h>\n',
    "restart/Step.h": '#include "../record/Cursor.h"\n',
    "init/Static.cpp": '#include "../restart/Step.h"\n',
    "init/Static.h": "// #include <unistd.h> would not do\n",
    "grid/Grid.h": "",
    "deck/Deck.cpp": '#include "../init/Static.h"\n#include "../grid/Grid.h"\n#include "../restart/Step.h"\n',
    "summary/Table.h": "",
    "reader/qvReader.cpp": '#include "../deck/Deck.h"\n#include "../summary/Table.h"\n',
    "deck/Deck.h": "",
    "index/Steps.h": '#include "../record/Cursor.h"\n',
    "arrays/Cells.h": '#include "../index/Steps.h"\n',
    "grid/Active.cpp": '#include "../arrays/Cells.h"\n#include "../index/Steps.h"\n',
    "../cli/Main.cpp": '#include <fmt/format.h>\n#include "support/Text.h"\n#include "VtkExport.h"\n',
    "../export/VtkExport.h": "#include <string>\n",
    "../tests/support/Builder.h": '#include "record/Cursor.h"\n',
    "../fuzz/fuzz_all.cpp": '#include "support/Builder.h"\n',
    "../cmake/PublicHeaders.cmake": "set(headers\n  record/Cursor.h\n  support/Text.h)\n",
}

# File, its text, and the line and words that must be told.
BAD = [
    ("support/Up.cpp", '#include "Text.h"\n#include "../record/Cursor.h"\n', 2, "support/ may not include from record/"),
    ("grid/Facade.h", '  #  include  "../reader/qvReader.cpp"\n', 1, "grid/ may not include from reader/"),
    ("record/Path.cpp", '#include "support/Text.h"\n', 1, "is not there as seen from this file"),
    ("record/Outside.cpp", '#include "../../outside.h"\n', 1, "is outside of src/"),
    ("record/Os.cpp", "#include <unistd.h>\n", 1, "only support/System.cpp may include it"),
    ("record/Windows.cpp", "#ifdef _WIN32\n#include <windows.h>\n#endif\n", 2, "only support/System.cpp"),
    ("shapes/Public.h", "#include <fmt/core.h>\n", 1, "makes every host need that library"),
    ("shapes/Host.h", "#include <lumbarn/shapes/XYData.h>\n", 1, "is how a host names it"),
    ("record/Macro.cpp", "#include HEADER\n", 1, "cannot be told"),
    ("shortcuts/New.cpp", "", 1, "shortcuts is not one of the layers"),
    ("../cli/System.cpp", "#include <unistd.h>\n", 1, "is not among the libraries of cli/"),
    ("support/Text.h", '#include <string>\n#include "Numbers.h"\n', 2, '"Numbers.h" is not installed'),
    ("../cmake/PublicHeaders.cmake", "set(headers\n  support/Gone.h)\n", 2, "there is no src/support/Gone.h"),
    ("../bench/Far.cpp", '#include "support/Builder.h"\n', 1, "is not in src/, bench/"),
]


def placed(name):
    """Names of the trees above count from src/."""
    return name[3:] if name.startswith("../") else f"src/{name}"


class CheckIncludes(unittest.TestCase):
    def run_on(self, files):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            (root / "outside.h").touch()
            for name, text in files.items():
                file = root / placed(name)
                file.parent.mkdir(parents=True, exist_ok=True)
                file.write_text(text)
            return subprocess.run([CHECK, root], capture_output=True, text=True, check=False)

    def test_what_is_allowed_passes(self):
        result = self.run_on(GOOD)
        self.assertEqual((result.returncode, result.stderr), (0, ""), result.stdout)

    def test_each_fault_is_told_with_its_place(self):
        for name, text, line, words in BAD:
            with self.subTest(name):
                result = self.run_on(GOOD | {name: text})
                told = result.stdout.splitlines()
                self.assertEqual((result.returncode, len(told)), (1, 2), result.stdout + result.stderr)
                self.assertTrue(told[0].startswith(f"{placed(name)}:{line}: "), told[0])
                self.assertIn(words, told[0])

    def test_a_tree_without_sources_is_no_pass(self):
        self.assertEqual(self.run_on({"record/notes.txt": "#include <unistd.h>\n"}).returncode, 2)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], "-v"])
