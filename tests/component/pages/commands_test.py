#!/usr/bin/env python3
"""Whether there is what the pages tell their readers to call: subcommands and options of ap_statectl, options of ./run
and ./test, presets, targets and programs of the build.

    commands_test.py ROOT BUILD_DIRECTORY STATECTL

Looked at is what stands in backquotes or is indented by four columns, in README.md, CONTRIBUTING.md and docs/*.md."""

import functools
import json
import pathlib
import re
import subprocess
import sys

ROOT, BUILD = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
OPTION = re.compile(r"(?<![\w-])--?[a-z][a-z-]*")
wrong = []


@functools.lru_cache(maxsize=None)
def help_of(subcommands):
    return subprocess.run([sys.argv[3], *subcommands, "--help"], capture_output=True, text=True, check=True).stdout


def subcommands_of(subcommands):
    return re.findall(r"^  ([\w-]+)\s", help_of(subcommands).partition("Subcommands:")[2], re.M)


def options_of(subcommands):
    """Also those that have to stand behind a further word, which a page may leave out."""
    further = [help_of((*subcommands, word)) for word in (subcommands_of(subcommands) if subcommands else ())]
    return set(OPTION.findall(" ".join([help_of(subcommands), *further])))


def require(condition, page, command, what):
    if not condition:
        wrong.append(f"{page}: {what} of: {command}")


def check_statectl(page, command, words):
    subcommands = ()
    for word in words:
        if word not in subcommands_of(subcommands):
            break
        subcommands += (word,)
    require(subcommands or not words or not words[0][0].isalpha(), page, command, f"no subcommand {words[:1]}")
    options = " ".join(words).split(" -- ")[0]
    for option in OPTION.findall(options):
        require(option in options_of(subcommands), page, command, f"no option {option}")


def check_script(page, command, script, words):
    text = (ROOT / script).read_text()
    for option in [word for word in words if word.startswith("--")]:
        require(option in OPTION.findall(text), page, command, f"no option {option}")


@functools.lru_cache(maxsize=None)
def presets():
    listed = json.loads((ROOT / "CMakePresets.json").read_text())["configurePresets"]
    return [preset["name"] for preset in listed if not preset.get("hidden")]


@functools.lru_cache(maxsize=None)
def targets():
    command = ["ninja", "-C", str(BUILD), "-t", "targets", "all"]  # which builds and makes nothing
    listed = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    return set(re.findall(r"^([\w/.-]+):", listed, re.M))


def check_cmake(page, command, words):
    for option, word in zip(words, words[1:]):
        if option == "--preset":
            require(word in presets(), page, command, f"no preset {word}")
        if option == "--target" and f"build/{BUILD.name}" in words and word[-1].islower() and word != "help":
            require(word in targets(), page, command, f"no target {word}")


def check_program(page, command, program):
    require(program.rpartition("/")[2] in targets(), page, command, f"no program {program}")


def commands_in(text):
    for block in re.findall(r"^```.*?\n(.*?)^```|((?:^    .*\n)+)", text, re.M | re.S):
        yield from "".join(block).replace("\\\n", " ").split("\n")
    for paragraph in re.split(r"\n\s*\n", re.sub(r"^```.*?^```", "", text, flags=re.M | re.S)):
        if not paragraph.startswith("    "):
            yield from re.findall(r"`([^`]+)`", paragraph)


def simple_commands(line):
    """A quoted command is one by itself."""
    for command in re.split(r"&&|\|\||[;|()']", re.sub(r"(^|\s)#.*", "", line)):
        yield command.split()


looked_at = 0
for path in [ROOT / "README.md", ROOT / "CONTRIBUTING.md", *sorted((ROOT / "docs").glob("*.md"))]:
    page = path.relative_to(ROOT)
    for line in commands_in(path.read_text()):
        for words in simple_commands(line):
            while words and (words[0] == "$" or "=" in words[0] or words[0] in ("sudo", "nice")):
                words = words[1:]
            if not words:
                continue
            program, rest = words[0], words[1:]
            looked_at += 1
            if program == "ap_statectl":
                check_statectl(page, line, rest)
            elif program in ("./run", "./test"):
                check_script(page, line, program, rest)
            elif program == "cmake":
                check_cmake(page, line, rest)
            elif re.fullmatch(f"build/{BUILD.name}/[/\\w]+", program) and not (ROOT / program).is_dir():
                check_program(page, line, program)
            else:
                looked_at -= 1

print(*wrong, f"{looked_at} commands looked at", sep="\n")
sys.exit(1 if wrong or looked_at < 100 else 0)
