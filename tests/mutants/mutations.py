"""What can be changed in a line of the product."""

import collections
import re

# A change: bytes first to last of a line become text.
Mutant = collections.namedtuple("Mutant", "path number first last text rule")

# What can be done to a line: a name, what is looked for, what takes its place. Each place in a line is a mutant.
RULES = [
    ("less", re.compile(r"(?<=\s)<(?=\s)"), "<="),
    ("at most", re.compile(r"(?<=\s)<=(?=\s)"), "<"),
    ("more", re.compile(r"(?<=\s)>(?=\s)"), ">="),
    ("at least", re.compile(r"(?<=\s)>=(?=\s)"), ">"),
    ("equal", re.compile(r"(?<=\s)==(?=\s)"), "!="),
    ("unequal", re.compile(r"(?<=\s)!=(?=\s)"), "=="),
    ("and", re.compile(r"(?<=\s)&&(?=\s)"), "||"),
    ("or", re.compile(r"(?<=\s)\|\|(?=\s)"), "&&"),
    ("plus", re.compile(r"(?<=[\w)\]] )\+(?= )"), "-"),
    ("minus", re.compile(r"(?<=[\w)\]] )-(?= )"), "+"),
    ("not", re.compile(r"(?<![\w!=])!(?=[\w(*])"), ""),
    ("true", re.compile(r"\btrue\b"), "false"),
    ("false", re.compile(r"\bfalse\b"), "true"),
    ("number", re.compile(r"(?<![\w.'])\d+(?=U?L?L?\b)(?!['.\d])"), lambda match: str(int(match.group()) + 1)),
    ("condition", re.compile(r"(?<=\bif \()(?!.*;)(?!.*[^=!<>]=[^=])(.+)(?=\) \{$)"), None),
    ("condition", re.compile(r"(?<=\bwhile \()(?!.*[^=!<>]=[^=])(.+)(?=\) \{$)"), None),
]
# A statement on a line of its own inside a function: a call, an assignment, a step, a way out.
STATEMENT = re.compile(r"^\s{4,}(?:[\w:.>\-\[\]*()]+(?:\(.*\)| [-+|&]?= .+)|(?:\+\+|--)[\w.>\-]+|return|break|continue);$")
NO_CODE = re.compile(r"\s*(#|template|static_assert|using|namespace|case .*:$)")
BLANKED = re.compile(r'R"\((?:.|\n)*?\)"|"(?:\\.|[^"\\\n])*"|(?<![\da-fA-F])\'(?:\\.|[^\'\\\n])\'|//[^\n]*|/\*(?:.|\n)*?\*/')


def blanked(text):
    """The text with its strings and comments blanked, at the same places; of a string the quotes are left."""
    def blank(match):
        spaces = re.sub(r"[^\n]", " ", match.group())
        return spaces if match.group().startswith("/") else '"' + spaces[2:] + '"'
    return BLANKED.sub(blank, text)


def balanced(text):
    """Whether all brackets of a line are closed in it."""
    return all(text.count(left) == text.count(right) for left, right in ("()", "[]", "{}"))


def changes_of(path, text):
    """All mutants of a source, in the order of its lines."""
    before = ";"
    for number, (line, code) in enumerate(zip(text.splitlines(), blanked(text).splitlines())):
        if NO_CODE.match(code):
            continue
        code = code.rstrip()
        if STATEMENT.match(code) and balanced(code) and before in ";{}:":
            yield Mutant(path, number, len(code) - len(code.lstrip()), len(code), ";", "statement")
        before = code[-1:] or before
        for rule, pattern, replacement in RULES:
            for match in pattern.finditer(code):
                if rule == "condition" and not balanced(match.group()):
                    continue
                first, last = match.span()
                new = "!(" + line[first:last] + ")" if rule == "condition" else replacement if isinstance(
                    replacement, str) else replacement(match)
                yield Mutant(path, number, first, last, new, rule)


def constants(lines):
    """The numbers of the lines on which constants are defined."""
    inside = False
    for number, line in enumerate(lines):
        inside = inside or bool(re.match(r"\s*(?:inline |static )*constexpr [^()]*[={]", line))
        if inside:
            yield number
        inside = inside and not line.endswith(";")


def is_constant(mutant, line):
    """Whether the compiler needs the changed number itself: as the argument of a template, a case, a value of an enumeration."""
    before, after = line[:mutant.first], line[mutant.last:]
    return bool(re.search(r"\w<[^<>;()]*$", before) and re.match(r"[^<>;()]*>", after) or re.match(r"\s*case ", line)
                or re.match(r"\s*\w+ = $", before) and after == ",")


def changed(mutant, line):
    """The line as the mutant has it."""
    return line[:mutant.first] + mutant.text + line[mutant.last:]
