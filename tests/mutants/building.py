"""A copy of the project whose product is woven: makes it, and builds the test programs in it."""

import collections
import os
import pathlib
import re
import shutil
import subprocess
import sys

from mutations import blanked, constants, is_constant
from weaving import Woven

ROOT = pathlib.Path(__file__).resolve().parents[2]
COPY = ROOT / "build/mutants/source"
BUILD = COPY / "build/release"
LOG = ROOT / "build/mutants/log"
PRODUCT = ("base", "interfaces", "platform", "services", "src", "tools")
AT_ONCE = len(os.sched_getaffinity(0))


def make_copy():
    """A copy of what git knows or would take but the product's sources, which are woven: their texts."""
    listed = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "-z"], cwd=ROOT, check=True,
                            capture_output=True, text=True).stdout
    files = {name for name in listed.split("\0") if name and (ROOT / name).exists()}
    texts = {name: (ROOT / name).read_text(encoding="utf-8") for name in sorted(files)
             if name.startswith(tuple(folder + "/" for folder in PRODUCT)) and name.endswith((".h", ".cpp"))}
    for name in files - texts.keys():
        target = COPY / name
        if (ROOT / name).is_symlink():
            target.parent.mkdir(parents=True, exist_ok=True)
            target.unlink(missing_ok=True)
            target.symlink_to(os.readlink(ROOT / name))
        elif not target.exists() or target.read_bytes() != (ROOT / name).read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, target)  # with a time of its own, so that it is newer than what is built
    for old in [path for path in COPY.rglob("*") if path.is_file() and BUILD.parent not in path.parents]:
        if os.path.relpath(old, COPY) not in files:
            old.unlink()
    return texts


def write(name, text):
    """Writes a source of the copy if it is another one than before."""
    path = COPY / name
    if not path.exists() or path.read_text(encoding="utf-8") != text:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")


def build(targets):
    """What the compiler says, None when all targets are built."""
    process = subprocess.run(["ninja", f"-j{AT_ONCE}", "-k0", *targets], cwd=BUILD, stdin=subprocess.DEVNULL,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace", check=False)
    with open(LOG, "a", encoding="utf-8") as log:
        log.write(process.stdout)
    return None if process.returncode == 0 else process.stdout


def blamed(said, woven):
    """The places that the compiler's errors name in woven sources: source and line, of the first of an error and its notes."""
    for error in re.split(r"^(?=\S+:\d+:\d+: (?:fatal )?error: )", said, flags=re.M)[1:]:
        for path, line in re.findall(r"^(\S+):(\d+):\d+: (?:error|note): ", error, re.M):
            name = os.path.relpath(os.path.realpath(BUILD / path), COPY)
            if name in woven and woven[name].by_line[int(line) - 1]:
                yield name, int(line) - 1
                break


class Graph:
    """What ninja makes of what."""

    def __init__(self, text):
        self.rules, self.needs, self.after = {}, {}, {}
        for outputs, rule, rest in re.findall(r"^build (.+?): (\S+)(.*)$", text, re.M):
            needed, _, after = rest.partition(" || ")
            for output in outputs.split():
                self.rules[output], self.needs[output], self.after[output] = rule, needed.split(), after.split()

    def all_of(self, target):
        """What is linked into a program and into those that it starts: what they are made of."""
        started = [name for name in self.after.get(target, ()) if self.rules.get(name, "").startswith("CXX_EXECUTABLE")]
        found, left = set(), [target, *started]
        while left:
            name = left.pop()
            if name not in found:
                found.add(name)
                left += self.needs.get(name, ())
        return found


Programs = collections.namedtuple("Programs", "all near objects")


def programs_with(sources):
    """The test programs that judge these sources; for each source (of a header: for its folder) those that test it, because they
    name its component or stand in a folder that is named like one of its own, and where none does, all that link it; and the
    objects that are made of the sources."""
    subprocess.run(["cmake", "--preset", "release", "-DSTATEMANAGER_BENCHMARKS=OFF",
                    f"-DCMAKE_PROJECT_TOP_LEVEL_INCLUDES={COPY}/tests/mutants/options.cmake"],
                   cwd=COPY, check=True, stdout=subprocess.DEVNULL)
    text = (BUILD / "build.ninja").read_text(encoding="utf-8")
    graph = Graph(text)
    wanted = sources | {os.path.dirname(name) for name in sources if name.endswith(".h")}
    tests = {component: {word for word in line.split() if "/CMakeFiles/" not in word}
             for component, line in re.findall(r"^build tests/tests_of_(\w+): phony (.*)$", text, re.M)}
    every = set().union(*tests.values())
    linked, near, objects = collections.defaultdict(set), collections.defaultdict(set), set()
    for program in every:
        for made in (name for name in graph.all_of(program) if name.endswith(".o")):
            for name in (os.path.relpath(BUILD / path, COPY) for path in graph.needs[made] if path.endswith(".cpp")):
                for source in {name, os.path.dirname(name)} & wanted:
                    linked[source].add(program)
                    objects.add(made)
                    near[source] |= tests.get(re.search(r"/(\w+)\.dir/", made).group(1), set())
    for source, programs in linked.items():
        folders = (os.path.dirname(source) if source.endswith(".cpp") else source).split("/")[1:]
        near[source] |= {program for program in programs if set(folders) & set(program.split("/")[2:-1])}
    chosen = (near[source] or programs for source, programs in linked.items())
    return Programs(sorted(set().union(*chosen)), near, sorted(objects))


def weave(texts, drawn, programs):
    """Builds the programs with all that can be woven into them; what can't, and why: a dictionary."""
    lines = {name: blanked(text).splitlines() for name, text in texts.items()}
    fixed = {name: set(constants(lines[name])) for name in texts}
    without = {number: "not judged" for number, mutant in drawn.items() if mutant.number in fixed[mutant.path]
               or is_constant(mutant, lines[mutant.path][mutant.number])}
    constant = set()
    while True:
        woven = {}
        for name, text in texts.items():
            ours = {number: mutant for number, mutant in drawn.items() if mutant.path == name}
            if ours.keys() - without.keys():
                woven[name] = Woven(text, ours, constant, without, COPY, name.endswith(".h"))
                for _, mutants in woven[name].crossing:
                    without.update({number: "not judged" for number, _ in mutants})
            write(name, woven[name].result if name in woven else text)
        said = build(programs.objects) or build(programs.all)  # what is woven first, until it compiles
        if said is None:
            return without
        before = len(constant) + len(without)
        for name, line in set(blamed(said, woven)):
            numbers = woven[name].by_line[line]
            changing = {number for number in numbers if drawn[number].rule != "statement"}
            if len(numbers) == 1 and woven[name].lone[line]:
                without.update({number: "does not compile" for number in numbers})
            elif numbers - constant:
                constant |= numbers
            else:
                without.update({number: "not judged" for number in changing or numbers})
        print(f"{len(without)} changes can't be woven, {len(constant)} leave constants alone", flush=True)
        if len(constant) + len(without) == before:
            sys.exit(f"The copy does not compile: {LOG}")
