"""Puts changes before the tests: what each test comes by, and which one notices a change."""

import collections
import concurrent.futures
import ctypes
import os
import re
import resource
import signal
import subprocess
import tempfile
import time

from building import AT_ONCE, BUILD

JUDGES_AT_ONCE = 2 * AT_ONCE  # they wait for much of their time
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
    with tempfile.NamedTemporaryFile(prefix="mutants") as file:
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


def judges_of(number, path, tests):
    """The tests that come by a change, by their programs, those that tell soonest first: unit tests in folders that are named
    like one of the source's, other unit tests, component tests."""
    programs = collections.defaultdict(list)
    for test in tests:
        if number in test.reached:
            programs[test.program].append(test)
    return sorted(programs.values(), key=lambda ours: (
        not ours[0].program.startswith("tests/unit/"), not set(ours[0].program.split("/")) & set(path.split("/")[1:-1]),
        sum(test.seconds for test in ours)))


def judge(number, path, tests):
    """What becomes of a change, and who says so."""
    programs = judges_of(number, path, tests)
    for ours in programs:
        names = [test.name for test in sorted(ours, key=lambda test: test.seconds)]
        seconds = 4 + 4 * sum(test.seconds for test in ours)
        passed, said = run(ours[0].program, names, {"MUTANT": str(number)}, seconds, ALONE)
        failed = re.findall(r"^\[  FAILED  \] ([\w/]+\.[\w/]+)", said, re.M)[:1]
        if passed is None or not (passed or run(ours[0].program, failed or names, {"MUTANT": str(number)}, seconds, ALONE)[0]):
            return "killed", f"{ours[0].program} {failed[0] if failed else ''}"
    return ("survived" if programs else "not reached"), ""
