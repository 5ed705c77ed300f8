"""Finds the mutants of C++ sources with the compiler's own parser."""

import os
import re

from clang.cindex import CompilationDatabase, Config, Cursor, CursorKind, Index, StorageClass, TranslationUnit, TypeKind

import schemata
from schemata import Mutant

Config.set_library_file("libclang-16.so.1")

FLOATING = (TypeKind.FLOAT, TypeKind.DOUBLE, TypeKind.LONGDOUBLE)
CALLABLE = (CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR, CursorKind.FUNCTION_TEMPLATE,
            CursorKind.CONVERSION_FUNCTION)
BODIES = (CursorKind.IF_STMT, CursorKind.FOR_STMT, CursorKind.WHILE_STMT, CursorKind.CXX_FOR_RANGE_STMT,
          CursorKind.DO_STMT)


def extent(cursor):
    return cursor.extent.start.offset, cursor.extent.end.offset


def bare(cursor):
    """The cursor without the implicit conversions around it."""
    while cursor.kind == CursorKind.UNEXPOSED_EXPR:
        children = list(cursor.get_children())
        if len(children) != 1:
            break
        cursor = children[0]
    return cursor


class Finder:
    """Collects the mutants of all parsed sources: those that can be switched at run time, and the numbers of the others
    by reason."""

    def __init__(self, root, folders):
        self.root = root
        self.folders = tuple(folders)
        self.mutants = set()
        self._left_out = {}
        self._texts = {}

    def left_out(self):
        counts = {}
        for mutant, reason in self._left_out.items():
            if mutant not in self.mutants:
                counts[reason] = counts.get(reason, 0) + 1
        return counts

    def text(self, file):
        if file not in self._texts:
            # One character per byte, because the parser's offsets are bytes.
            with open(os.path.join(self.root, file), encoding="latin-1", newline="") as stream:
                self._texts[file] = stream.read()
        return self._texts[file]

    def parse(self, arguments, path):
        unit = Index.create().parse(path, args=arguments, options=TranslationUnit.PARSE_NONE)
        errors = [str(note) for note in unit.diagnostics if note.severity >= 3]
        if errors:
            raise RuntimeError("\n".join(errors))
        for cursor in unit.cursor.get_children():
            if cursor.location.file is None:
                continue
            file = os.path.relpath(cursor.location.file.name, self.root)
            if file.startswith(self.folders):
                _Walk(self, file).visit(cursor, None)

    def add(self, mutant, reason):
        if reason is None:
            self.mutants.add(mutant)
        else:
            self._left_out[mutant] = reason


class _Walk:
    """Walks down a declaration. `reason` is why the code under a cursor cannot be switched at run time, or None."""

    def __init__(self, finder, file):
        self.finder = finder
        self.file = file
        self.text = finder.text(file)

    def raw(self, start, end):
        return schemata.one_line(self.text[start:end])

    def add(self, place, kind, mutated, reason, second=()):
        original = self.raw(*place)
        if schemata.one_line(mutated) != original:
            line = self.text.count("\n", 0, place[0]) + 1
            column = place[0] - self.text.rfind("\n", 0, place[0])
            self.finder.add(Mutant(self.file, *place, kind, mutated, original, line, column, second), reason)

    def visit(self, cursor: Cursor, reason):
        if cursor.location.file is None or not cursor.location.file.name.endswith(self.file):
            return
        reason = reason or self.why_not(cursor)
        self.find(cursor, reason)
        children = list(cursor.get_children())
        for position, child in enumerate(children):
            self.visit(child, reason or self.why_not_child(cursor, child, position))

    def head(self, cursor):
        """The text before the name, or before the body."""
        start = cursor.extent.start.offset
        return self.text[start:max(start, cursor.location.offset)]

    def why_not(self, cursor):
        if cursor.kind == CursorKind.STATIC_ASSERT:
            return "a constant expression"
        if cursor.kind == CursorKind.VAR_DECL:
            if re.search(r"\bconstexpr\b", self.head(cursor)):
                return "a constant expression"
            parent = cursor.semantic_parent.kind
            if cursor.storage_class == StorageClass.STATIC or parent in (CursorKind.NAMESPACE,
                                                                         CursorKind.TRANSLATION_UNIT):
                return "a static initialiser"
        if cursor.kind in CALLABLE and re.search(r"\bconste(xpr|val)\b", self.head(cursor)):
            return "a constant expression"
        if cursor.kind == CursorKind.FIELD_DECL and any(
                sibling.kind == CursorKind.CONSTRUCTOR and re.search(r"\bconstexpr\b", self.head(sibling))
                for sibling in cursor.semantic_parent.get_children()):
            return "a constant expression"
        if cursor.kind == CursorKind.ENUM_CONSTANT_DECL:
            return "a constant expression"
        return None

    def why_not_child(self, cursor, child, position):
        named = (CursorKind.VAR_DECL, CursorKind.FIELD_DECL, CursorKind.PARM_DECL, *CALLABLE)
        if cursor.kind in named and child.kind.is_expression() and (
                child.extent.start.offset < cursor.location.offset or
                (cursor.type.kind == TypeKind.CONSTANTARRAY and child.kind == CursorKind.INTEGER_LITERAL)):
            return "part of a type"
        if cursor.kind == CursorKind.CASE_STMT and position == 0:
            return "a constant expression"
        if cursor.kind == CursorKind.IF_STMT and position == 0 and re.match(r"if\s+constexpr\b",
                                                                            self.text[cursor.extent.start.offset:]):
            return "a constant expression"
        return None

    def find(self, cursor, reason):
        kind = cursor.kind
        if kind in (CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR):
            self.find_binary(cursor, reason)
        elif kind == CursorKind.UNARY_OPERATOR:
            self.find_unary(cursor, reason)
        elif kind in (CursorKind.INTEGER_LITERAL, CursorKind.FLOATING_LITERAL, CursorKind.CXX_BOOL_LITERAL_EXPR):
            for mutated in schemata.literal_changes(self.raw(*extent(cursor))):
                self.add(extent(cursor), "constant", mutated, reason)
        elif kind == CursorKind.DECL_REF_EXPR:
            self.find_constant(cursor, reason)
        elif kind == CursorKind.CALL_EXPR:
            self.find_overloaded(cursor, reason)
        elif kind in (CursorKind.IF_STMT, CursorKind.WHILE_STMT, CursorKind.CONDITIONAL_OPERATOR):
            self.find_condition(cursor, reason)
        if kind == CursorKind.COMPOUND_STMT:
            self.find_statements(list(cursor.get_children()), reason)
        elif kind in BODIES:
            for child in list(cursor.get_children())[1:]:
                self.find_statements([child], reason)

    def find_binary(self, cursor, reason):
        operands = list(cursor.get_children())
        if len(operands) != 2:
            return
        (start, left_end), (right_start, end) = extent(operands[0]), extent(operands[1])
        operator = schemata.operator_between(self.text[left_end:right_start])
        if operator is None:
            return
        is_pointer = cursor.type.get_canonical().kind == TypeKind.POINTER
        # Parentheses around an operand belong to its extent, so only the operator is between the operands.
        at = left_end + self.text[left_end:right_start].index(operator)
        for kind, other in schemata.operator_changes(operator, is_pointer):
            mutated = f"{self.raw(start, at)} {other} {self.raw(at + len(operator), end)}"
            self.add((start, end), kind, mutated, reason)

    def find_unary(self, cursor, reason):
        start, end = extent(cursor)
        text = self.raw(start, end)
        if text.startswith(("++", "--")):
            self.add((start, end), "sign", schemata.STEPS[text[:2]] + text[2:], reason)
        elif text.endswith(("++", "--")):
            self.add((start, end), "sign", text[:-2] + schemata.STEPS[text[-2:]], reason)
        elif text.startswith("-"):
            self.add((start, end), "sign", text[1:], reason)
        elif text.startswith("!"):
            self.add((start, end), "condition", f"!!({text[1:]})", reason)

    def find_overloaded(self, cursor, reason):
        """Finds signs of vectors and points, whose operators are functions."""
        if cursor.spelling != "operator-":
            return
        start, end = extent(cursor)
        operands = [operand for operand in cursor.get_children() if bare(operand).spelling != "operator-" or
                    bare(operand).kind == CursorKind.CALL_EXPR]
        if len(operands) == 1:
            self.add((start, end), "sign", self.raw(start, end).lstrip("-"), reason)
        elif len(operands) == 2:
            left, right = self.raw(*extent(operands[0])), self.raw(*extent(operands[1]))
            self.add((start, end), "sign", f"({right}) - ({left})", reason)

    def find_constant(self, cursor, reason):
        place = extent(cursor)
        name = self.raw(*place)
        declaration = cursor.referenced
        if declaration is None or declaration.kind != CursorKind.VAR_DECL or not re.fullmatch(r"k[A-Z]\w*", name):
            return
        kind = declaration.type.get_canonical().kind
        if kind in FLOATING or TypeKind.BOOL.value <= kind.value <= TypeKind.LONGLONG.value:
            for mutated in schemata.constant_changes(name, kind in FLOATING):
                self.add(place, "constant", mutated, reason)

    def find_condition(self, cursor, reason):
        children = list(cursor.get_children())
        if children and children[0].kind.is_expression():
            why = reason or self.why_not_child(cursor, children[0], 0)
            place = extent(children[0])
            text = self.raw(*place)
            # The negation of a single equality is already among the comparisons.
            if not re.fullmatch(r"[^=!<>&|?]*[=!]=[^=!<>&|?]*", text):
                self.add(place, "condition", f"!({text})", why)

    def find_statements(self, children, reason):
        """Finds removals of statements, and swaps of each call with the next one."""
        previous = None
        for child in children:
            place = self.statement_place(child)
            if place is None:
                previous = None
                continue
            self.add(place, "statement removed", "", reason)
            called = bare(child)
            if called.kind != CursorKind.CALL_EXPR or called.spelling.startswith("operator"):
                previous = None
                continue
            if previous is not None and self.raw(*previous) != self.raw(*place):
                self.add(previous, "order of calls", self.raw(*place), reason, second=place)
            previous = place

    def statement_place(self, cursor):
        """The extent of a statement that may be removed, with its semicolon, or None."""
        is_jump = cursor.kind in (CursorKind.RETURN_STMT, CursorKind.CONTINUE_STMT) and not list(cursor.get_children())
        if not is_jump and not cursor.kind.is_expression():
            return None
        start, end = extent(cursor)
        semicolon = re.match(r"\s*;", self.text[end:])
        return (start, end + semicolon.end()) if semicolon else None


def compile_arguments(database_folder, path):
    """The arguments of the source's compile command that the parser needs."""
    command = CompilationDatabase.fromDirectory(database_folder).getCompileCommands(path)[0]
    kept, takes_value = [], False
    for argument in list(command.arguments)[1:]:
        if takes_value or re.match(r"-(D|I|isystem|include|std=|fPIC)", argument):
            kept.append(argument)
        takes_value = not takes_value and argument in ("-isystem", "-I", "-D", "-include")
    return kept
