"""Defines mutants and writes the source that contains them all. Works on text only, without a parser or a build.

A mutant is a small change of a source that its tests should detect. The rewritten source contains the original and
every mutant, and checks at run time which one is on, so that one build is enough.
"""

import dataclasses
import random
import re

# The macro of the rewritten sources: whether the mutant with this number is on.
SWITCH = "KARV_MUTANT_ON"

COMPARISONS = {"<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<"], ">=": [">", "<"], "==": ["!="], "!=": ["=="]}
SIGNS = {"+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"]}
COMPOUND = {"+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="]}
LOGIC = {"&&": ["||"], "||": ["&&"]}
STEPS = {"++": "--", "--": "++"}

KINDS = ("comparison", "constant", "sign", "condition", "order of calls", "statement removed")


@dataclasses.dataclass(frozen=True, order=True)
class Mutant:
    """A change of source[start:end], whose text is `original`. `line` and `column` count from 1.

    A removed statement has an empty `mutated` text. For a swap, the extent is that of the first statement, `mutated` is
    the text of the second one, and `second` is its extent.
    """

    file: str
    start: int
    end: int
    kind: str
    mutated: str
    original: str
    line: int
    column: int
    second: tuple = ()

    def __str__(self):
        change = f"{self.mutated}  before  {self.original}" if self.second else self.mutated or "nothing"
        return f"{self.file}:{self.line}:{self.column}: {self.kind}: {self.original}  ->  {change}"


def one_line(text):
    """The text without comments and line breaks, so that it fits on the line of the original."""
    parts = re.findall(r'"(?:\\.|[^"\\])*"|//[^\n]*|/\*.*?\*/|[^"/]+|.', text, re.DOTALL)
    kept = (" " if part.startswith(("//", "/*")) else part for part in parts)
    return re.sub(r"\s+", " ", "".join(kept)).strip()


def operator_between(text):
    """The operator in the text between two operands, or None if the text contains more than an operator."""
    text = one_line(text).replace("(", "").replace(")", "").strip()
    return text if re.fullmatch(r"[-+*/%<>=!&|^]+", text) else None


def operator_changes(operator, is_pointer=False):
    """(kind, operator) for each operator with which a mutant replaces this one."""
    changes = []
    for kind, table in (("comparison", COMPARISONS), ("sign", SIGNS), ("sign", COMPOUND), ("condition", LOGIC)):
        changes += [(kind, other) for other in table.get(operator, [])]
    return [change for change in changes if not is_pointer or change[1] not in ("*", "/")]


def literal_changes(literal):
    """The literals, or expressions of the same type, with which mutants replace this one."""
    if literal in ("true", "false"):
        return ["false" if literal == "true" else "true"]
    if re.fullmatch(r"[A-Za-z_]\w*", literal):
        return [f"{literal} == 0 ? {literal} + 1 : 0"]
    if not re.match(r"[.\d]", literal):
        return []
    if re.search(r"[.]", literal) or (re.search(r"e", literal, re.I) and not literal.lower().startswith("0x")):
        return [f"{literal} + 1"] if float(literal.rstrip("fFlL").replace("'", "")) == 0.0 else [
            f"{literal} * 2", f"{literal} * 0"]
    value = int(re.sub(r"[uUlLzZ']", "", literal), 0)
    return [f"{literal} + 1"] if value == 0 else [f"{literal} + 1", f"{literal} - 1"]


def constant_changes(name, is_floating):
    """The expressions with which mutants replace a named constant of the project, whose value is not known here."""
    kept = f"static_cast<std::remove_cvref_t<decltype({name})>>"
    return [f"{kept}({name} * 2)", f"{kept}({name} + 1)"] if is_floating else [f"{kept}({name} + 1)"]


@dataclasses.dataclass(frozen=True)
class Edit:
    """A replacement of source[start:end] that contains the original. Numbers are those of mutants."""

    start: int
    end: int
    choices: tuple = ()  # expression: (number, text) instead of the original
    before: tuple = ()  # statement: (number, text) before it
    unless: tuple = ()  # statement: numbers that skip it
    is_statement: bool = False

    def wrap(self, original):
        if not self.is_statement:
            return "(" + "".join(f"{SWITCH}({n}) ? ({text}) : " for n, text in self.choices) + f"({original}))"
        before = "".join(f"if ({SWITCH}({n})) {{ {text} }} " for n, text in self.before)
        if not self.unless:
            return f"{{ {before}{original} }}"
        off = " || ".join(f"{SWITCH}({n})" for n in self.unless)
        return f"{{ {before}if (!({off})) {{ {original} }} }}"


def edits_of(numbered):
    """The edits that contain these mutants of one source, given as (number, mutant)."""
    choices, before, unless = {}, {}, {}
    for number, mutant in numbered:
        place = (mutant.start, mutant.end)
        if mutant.second:
            before.setdefault(place, []).append((number, mutant.mutated))
            unless.setdefault(mutant.second, []).append(number)
        elif mutant.mutated:
            choices.setdefault(place, []).append((number, mutant.mutated))
        else:
            unless.setdefault(place, []).append(number)
    edits = [Edit(*place, choices=tuple(texts)) for place, texts in choices.items()]
    for place in sorted(before.keys() | unless.keys()):
        edits.append(
            Edit(*place, before=tuple(before.get(place, ())), unless=tuple(unless.get(place, ())), is_statement=True))
    return edits


def rewrite(source, edits):
    """The source with its edits, which may nest. No line moves."""
    ordered = sorted(edits, key=lambda edit: (edit.start, -edit.end, not edit.is_statement))

    def text_of(start, end, index):
        parts, position = [], start
        while index < len(ordered) and ordered[index].start < end:
            edit = ordered[index]
            if edit.start < position or edit.end > end:
                raise ValueError(f"edits overlap at {edit.start}")
            inner, index = text_of(edit.start, edit.end, index + 1)
            parts += [source[position:edit.start], edit.wrap(inner)]
            position = edit.end
        return "".join(parts) + source[position:end], index

    return text_of(0, len(source), 0)[0]


def lines_with_errors(output):
    """(file, line) of each error in a compiler's output."""
    return {(file, int(line)) for file, line in re.findall(r"^([^\s:]+):(\d+):(?:\d+:)? error:", output, re.MULTILINE)}


def sample(mutants, count, seed):
    """The numbers of `count` mutants of {number: mutant}, in order. The same seed gives the same ones. They are spread
    over the files in proportion, with at least one of each file."""
    chooser = random.Random(seed)
    by_file = {}
    for number, mutant in sorted(mutants.items()):
        by_file.setdefault(mutant.file, []).append(number)
    chosen, spare = [], []
    for file in sorted(by_file):
        numbers = by_file[file]
        chooser.shuffle(numbers)
        share = min(len(numbers), max(1, count * len(numbers) // len(mutants)))
        chosen += numbers[:share]
        spare += numbers[share:]
    chooser.shuffle(spare)
    return sorted((chosen + spare)[:count])


def test_filter(listing, patterns):
    """The GoogleTest filter of all tests in files whose path ends with one of the patterns. A pattern that ends with /
    is a folder. `listing` is GoogleTest's listing in JSON."""
    names = []
    for suite in listing["testsuites"]:
        for case in suite["testsuite"]:
            path = case["file"] + "\n"
            if any("/" + (pattern if pattern.endswith("/") else pattern + "\n") in path for pattern in patterns):
                names.append(f"{suite['name']}.{case['name']}")
    return ":".join(names)
