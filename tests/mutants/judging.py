"""Puts changes before the tests: what each test comes by, and which one notices a change."""

import collections
import concurrent.futures
import ctypes
import itertools
import os
import re
import resource
import signal
import subprocess
import tempfile
import time

from building import AT_ONCE, BUILD

JUDGES_AT_ONCE = 2 * AT_ONCE  # they wait for much of their time
FAR_SECONDS = 10
PORTION_SECONDS = 3
# What a changed program does to other processes ends with it.
ALONE = ["unshare", *(["--map-root-user"] if os.geteuid() else []), "--pid", "--fork", "--kill-child", "--mount-proc"]

LIBC = ctypes.CDLL(None)
PR_SET_PDEATHSIG = 1

Test = collections.namedtuple("Test", "program name seconds reached")


def run(program, names, variables, seconds, alone=()):
    """Whether the tests of these names pass, None when their time is over, and what they print."""
    def limits():
        resource.setrlimit(resource.RLIMIT_DATA, (4 << 30, 4 << 30))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        LIBC.prctl(PR_SET_PDEATHSIG, signal.SIGKILL)  # when this one is ended, however
    with tempfile.TemporaryDirectory() as folder, tempfile.TemporaryFile() as said, subprocess.Popen(
            [*alone, BUILD / program, "--gtest_brief=1", "--gtest_fail_fast", "--gtest_filter=" + ":".join(names)],
            cwd=(BUILD / program).parent, stdin=subprocess.DEVNULL, stdout=said, stderr=subprocess.STDOUT,
            env={**os.environ, "TMPDIR": folder, **variables}, start_new_session=True, preexec_fn=limits) as process:
        try:
            passed = process.wait(seconds) == 0
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            passed = None
        said.seek(0)
        return passed, said.read(1 << 20).decode(errors="replace")


def tests_in(program):
    """The names of a program's tests."""
    said = subprocess.run([BUILD / program, "--gtest_list_tests"], check=True, capture_output=True, text=True).stdout
    suite = ""
    for line in said.splitlines():
        word = line.split("#")[0].strip()
        if not line.startswith(" "):
            suite = word
        elif not word.startswith("DISABLED_"):
            yield suite + word


def survey(program, name, count):
    """What a test comes by when nothing is changed; None if it fails."""
    # Beside the programs: some tests have a /tmp of their own.
    with tempfile.NamedTemporaryFile(prefix="reached", dir=BUILD) as file:
        file.truncate(count)
        for _ in range(2):
            start = time.monotonic()
            if run(program, [name], {"MUTANTS_REACHED": file.name}, 120)[0]:
                seconds = time.monotonic() - start
                return Test(program, name, seconds, {number for number, byte in enumerate(file.read()) if byte})
    return None


def survey_all(programs, count):
    """All tests that pass."""
    named = [(program, name) for program in programs for name in tests_in(program)]
    with concurrent.futures.ThreadPoolExecutor(JUDGES_AT_ONCE) as pool:
        tests = list(pool.map(lambda test: survey(*test, count), named))
    for (program, name), test in zip(named, tests):
        if test is None:
            print(f"Fails without any change, so it does not judge: {program} {name}", flush=True)
    return [test for test in tests if test]


def portions(tests):
    """Tests of a program in portions of PORTION_SECONDS, so that what never ends costs no more than some of these."""
    begun, sum_of_them = [], 0
    for test in tests:
        if begun and sum_of_them + test.seconds > PORTION_SECONDS:
            yield begun
            begun, sum_of_them = [], 0
        begun.append(test)
        sum_of_them += test.seconds
    if begun:
        yield begun


class Judges:
    """Put a change before the tests."""

    def __init__(self, tests, near):
        """near: for each source, or folder of headers, the programs that test it."""
        self.tests, self.near = {(test.program, test.name): test for test in tests}, near
        self.suspects = collections.defaultdict(list)  # for each source the unit tests that noticed changes of it, the last first

    def programs_for(self, number, path):
        """The tests that come by a change, in portions of a program: unit tests before others, those near to the source before others, and
        the fastest first. Of programs that are not near so many tests judge as took FAR_SECONDS."""
        programs = collections.defaultdict(list)
        for test in self.tests.values():
            if number in test.reached:
                programs[test.program].append(test)
        for ours in programs.values():
            ours.sort(key=lambda test: test.seconds)
        seconds = {program: sum(test.seconds for test in ours) for program, ours in programs.items()}
        near = self.near[path] | self.near[os.path.dirname(path)]
        left = FAR_SECONDS
        for program in sorted(programs, key=lambda name: (not name.startswith("tests/unit/"), name not in near, seconds[name])):
            ours = programs[program]
            if program not in near:
                sums = itertools.accumulate(test.seconds for test in ours)
                ours = [test for test, sum_of_them in zip(ours, sums) if sum_of_them <= left]
                left -= seconds[program]
            yield from portions(ours)

    def judge(self, number, path):
        """What becomes of a change, and who says so."""
        suspects = [[test] for test in self.suspects[path] if number in test.reached][:3]
        programs = list(self.programs_for(number, path))
        for ours in suspects + programs:
            names = [test.name for test in ours]
            seconds = 4 + 4 * sum(test.seconds for test in ours)
            passed, said = run(ours[0].program, names, {"MUTANT": str(number)}, seconds, ALONE)
            failed = re.findall(r"^\[  FAILED  \] ([\w/]+\.[\w/]+)", said, re.M)[:1]
            if passed is None or not (passed or run(ours[0].program, failed or names, {"MUTANT": str(number)}, seconds, ALONE)[0]):
                self.suspect(path, self.tests.get((ours[0].program, (failed or names)[0])))
                return "killed", f"{ours[0].program} {failed[0] if failed else ''}"
        return ("survived" if programs else "not reached"), ""

    def suspect(self, path, test):
        """Lets a unit test that noticed a change be the first that is asked about the source's next ones."""
        if test and test.program.startswith("tests/unit/"):
            self.suspects[path] = [test, *(other for other in self.suspects[path] if other is not test)]
