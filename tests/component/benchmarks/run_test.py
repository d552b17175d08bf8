#!/usr/bin/env python3
"""Whether benchmarks/run judges as it says: run_test.py ROOT. Its programs are scripts here, which tell a row of a ratio that the
test wants, a further one when they are run again, and its page is one that the test writes."""

import contextlib
import importlib.machinery
import importlib.util
import io
import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
LOADER = importlib.machinery.SourceFileLoader("run", str(pathlib.Path(sys.argv.pop()) / "benchmarks/run"))
run = importlib.util.module_from_spec(importlib.util.spec_from_loader("run", LOADER))
LOADER.exec_module(run)

PROGRAM = """#!/bin/sh
echo "something | that is no row |"
ratio=$(head -n 1 {ratios}); sed -i 1d {ratios}
[ -z "$ratio" ] || printf '\\033[m| call | 3 us | 2 us | %s | 1.2 | MISSED |\\n' "$ratio"
exit {status}
"""
PAGE = run.HEADING + "\n\nText.\n\n" + run.HEAD + "\n| call | 1.5 | {bound} |\n\n## Next\n| other | 1 | 1 |\n"


class Judging(unittest.TestCase):
    def judged(self, *ratios, bound="0.25", status=0, form="--short"):
        """The status of a run whose program tells these ratios, one each time that it is started."""
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            (folder / "benchmarks").mkdir()
            program, file = folder / "program", folder / "ratios"
            file.write_text("".join(f"{ratio}\n" for ratio in ratios))
            program.write_text(PROGRAM.format(ratios=file, status=status))
            program.chmod(0o755)
            (folder / "benchmarks/programs").write_text(f"{program}\n")
            run.PAGE = folder / "page.md"
            run.PAGE.write_text(PAGE.format(bound=bound))
            sys.argv = ["run", name, *form.split()]
            self.output = io.StringIO()
            with contextlib.redirect_stdout(self.output):
                return run.main()

    def test_a_ratio_within_its_bound_passes(self):
        self.assertEqual(self.judged("1.75"), 0)
        self.assertNotIn("once more", self.output.getvalue())

    def test_a_ratio_that_is_worse_twice_fails_and_is_named(self):
        self.assertEqual(self.judged("1.76", "1.8"), 1)
        self.assertIn("WORSE than docs/performance.md allows: call: ratio 1.8", self.output.getvalue())

    def test_a_ratio_that_is_worse_once_is_told_and_passes(self):
        self.assertEqual(self.judged("1.76", "1.5"), 0)
        self.assertIn("measured once more: call", self.output.getvalue())

    def test_a_ratio_that_is_not_judged_passes(self):
        self.assertEqual(self.judged("9", bound=run.TOO_WIDE), 0)

    def test_what_the_page_holds_must_be_measured(self):
        self.assertEqual(self.judged(), 1)

    def test_a_program_that_fails_each_time_fails(self):
        self.assertEqual(self.judged("1.5", "1.5", status=1), 1)

    def test_the_whole_form_judges_nothing_and_tells_what_was_missed(self):
        self.assertEqual(self.judged("9", form=""), 0)
        self.assertIn("| call | 3 us | 2 us | 9 | 1.2 | MISSED |", self.output.getvalue())

    def test_noise_is_the_middle_and_half_as_much_again_as_the_worst(self):
        self.judged("2", "2.4", "2.1", form="--noise 3")
        self.assertIn(run.HEAD + "\n| call | 2.1 | 0.53 |", self.output.getvalue())
        self.judged("2", "2.5", "2.1", form="--noise 3")
        self.assertIn("| call | 2.1 | 0.6 |", self.output.getvalue())
        self.judged("1", "9", "1", form="--noise 3")
        self.assertIn(f"| call | 1 | {run.TOO_WIDE} |", self.output.getvalue())


if __name__ == "__main__":
    unittest.main()
