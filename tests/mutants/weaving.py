"""Weaves changes into a source so that one build has all of them, and the environment says which one is on.

A statement becomes "if (chosen(7)) ; else statement;", and an expression "(chosen(8) ? (changed) : (original))", as far as
it goes between the brackets, commas and assignments around it. What the compiler does not take so is taken back.
"""

import bisect
import re

from mutations import blanked

HEAD = '#include "{}/tests/mutants/chosen.h"\n'
ENDS = re.compile(r"[()\[\]{},;?]|(?<!:):(?!:)|(?<![=!<>])=(?!=)|\b(?:return|throw|else|do)\b")
TRUTHS = ("condition", "not", "and", "or", "less", "at most", "more", "at least", "equal", "unequal")
SKIPPED = {")": "(", "]": "[", "}": "{"}


def expression_around(code, first, last):
    """Where the expression around a place begins and ends, in a text without strings and comments."""
    depth = 0
    begin = 0
    for found in reversed(list(ENDS.finditer(code, code.rfind(";", 0, max(0, first - 3000)) + 1, first))):
        word = found.group()
        if word in SKIPPED and not (word == "}" and depth == 0 and code[found.end():found.end() + 1] == "\n"):
            depth += 1
        elif word in SKIPPED.values() and depth > 0:
            depth -= 1
        elif depth == 0:
            begin = found.end()
            break
    end = len(code)
    for found in ENDS.finditer(code, last):
        word = found.group()
        if word in SKIPPED.values():
            depth += 1
        elif word in SKIPPED and depth > 0:
            depth -= 1
        elif depth == 0:
            end = found.start()
            break
    while begin < first and code[begin].isspace():
        begin += 1
    while end > last and code[end - 1].isspace():
        end -= 1
    return begin, end


def place_of(code, mutant, start):
    """The part of the text that is there twice, by offsets."""
    first, last = start + mutant.first, start + mutant.last
    if mutant.rule in ("statement", "condition"):
        return first, last
    if mutant.rule in ("true", "false"):
        return first, last
    if mutant.rule == "number":
        return first, last + len(re.match(r"[UL]*", code[last:]).group())
    return expression_around(code, first, last)


class Woven:
    """A source with changes woven into it: text, and the mutants of each line of it."""

    def __init__(self, text, mutants, constant, without, root, header):
        """mutants by their numbers; constant: those that leave the original to the compiler where it needs a constant; without: the
        ones that are left out."""
        self.constant = constant
        self.starts = [0]
        for line in text.splitlines(keepends=True):
            self.starts.append(self.starts[-1] + len(line))
        self.text, self.code = text, blanked(text)
        places = {}
        for number, mutant in mutants.items():
            if number not in without:
                place = place_of(self.code, mutant, self.starts[mutant.number])
                places.setdefault(place, []).append((number, mutant))
        self.kept, self.crossing = [], []
        for place in sorted(places, key=lambda place: (place[0] - place[1], place[0])):  # the longest first
            crosses = any(place[0] < other[0] < place[1] < other[1] or other[0] < place[0] < other[1] < place[1]
                          for other, _ in self.kept)
            (self.crossing if crosses else self.kept).append((place, places[place]))
        self.pieces, self.owners = [], []
        self.emit("#pragma GCC system_header\n" if header else "", ())  # no warnings
        self.emit(HEAD.format(root), ())
        self.weave(0, len(text), sorted(self.kept, key=lambda kept: (kept[0][0], -kept[0][1])), ())
        self.result = "".join(self.pieces)
        self.by_line, self.lone = [set()], [False]  # lone: nothing but a changed expression
        for piece, owners in zip(self.pieces, self.owners):
            for part in re.split(r"(\n)", piece):
                if part == "\n":
                    self.by_line.append(set())
                    self.lone.append(False)
                elif part.strip():
                    self.by_line[-1].update(owners)
                    self.lone[-1] = owners[-1:] == (-1,)
        for numbers in self.by_line:
            numbers.discard(-1)

    def emit(self, text, owners):
        self.pieces.append(text)
        self.owners.append(owners)

    def weave(self, first, last, kept, owners):
        """The text from first to last, with the places in it."""
        at = first
        while kept:
            (begin, end), mutants = kept[0]
            inner = [other for other in kept[1:] if other[0][0] < end]
            kept = kept[1 + len(inner):]
            self.emit(self.text[at:begin], owners)
            self.weave_place(begin, end, mutants, inner, owners)
            at = end
        self.emit(self.text[at:last], owners)

    def weave_place(self, begin, end, mutants, inner, owners):
        """One place: each of its mutants on a line of its own, and the original."""
        statement = mutants[0][1].rule == "statement"
        opening = "static_cast<bool>(" if any(mutant.rule in TRUTHS for _, mutant in mutants) else "("
        ours = owners + tuple(number for number, _ in mutants)
        self.emit("" if statement else "(", ours)
        for number, mutant in mutants:
            chosen = f"::mutants::chosen_later<{number}>()" if number in self.constant else f"::mutants::chosen({number})"
            if statement:
                self.emit(f"if ({chosen}) ; else ", ours)
                continue
            start = self.starts[mutant.number]
            new = self.flat(begin, start + mutant.first) + mutant.text + self.flat(start + mutant.last, end)
            self.emit(chosen + " ?\n", ours)
            self.emit(f"{opening}{new})", (number, -1))
            self.emit("\n: ", ours)
        self.emit("" if statement else opening, ours)
        self.weave(begin, end, inner, ours)
        self.emit("" if statement else "))", ours)

    def flat(self, first, last):
        """A piece of the original on one line, without its comments."""
        return "".join(" " if self.code[i] in " \n" and (self.text[i] == "\n" or self.in_comment(i)) else self.text[i]
                       for i in range(first, last))

    def in_comment(self, at):
        """Whether a comment is there; blanks in strings are no comments."""
        if not hasattr(self, "comments"):
            self.comments = [match.span() for match in re.finditer(
                r'"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])\'|(//[^\n]*)', self.text) if match.group(1)]
        index = bisect.bisect(self.comments, (at, len(self.text))) - 1
        return index >= 0 and at < self.comments[index][1]
