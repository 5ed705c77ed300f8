"""Tests of tools/mutation/schemata.py: rewriting and sampling. The parser and the builds are not tested.

    mutation_test.py ROOT
"""

import sys
import unittest

sys.path.insert(0, sys.argv.pop(1) + "/tools/mutation")

import schemata  # noqa: E402
from schemata import Edit, Mutant  # noqa: E402


def mutant(start, end, kind, mutated, second=()):
    return Mutant("a.cpp", start, end, kind, mutated, "original", 1, 1, second)


def switched(text, number):
    """The rewritten text with this mutant on: each switch is replaced by True or False."""
    for other in range(1, 20):
        text = text.replace(f"{schemata.SWITCH}({other})", str(other == number))
    return text


class Texts(unittest.TestCase):
    def test_one_line_drops_comments_and_breaks_but_not_from_strings(self):
        self.assertEqual(schemata.one_line("a(1, // why\n  /* and */ 2)"), "a(1, 2)")
        self.assertEqual(schemata.one_line('f("// kept", 4 / 2)'), 'f("// kept", 4 / 2)')

    def test_operator_stands_alone_between_operands(self):
        self.assertEqual(schemata.operator_between(" <= "), "<=")
        self.assertEqual(schemata.operator_between(" &&  // both\n "), "&&")
        self.assertIsNone(schemata.operator_between(" + f "))

    def test_each_comparison_has_its_neighbour_and_its_opposite(self):
        for operator, others in {"<": {"<=", ">="}, "<=": {"<", ">"}, ">": {">=", "<"}, ">=": {">", "<"}}.items():
            self.assertEqual({other for _, other in schemata.operator_changes(operator)}, others)

    def test_pointers_are_not_multiplied(self):
        self.assertEqual(schemata.operator_changes("+", is_pointer=True), [("sign", "-")])
        self.assertEqual(schemata.operator_changes("*", is_pointer=True), [])

    def test_operator_without_mutants_has_none(self):
        self.assertEqual(schemata.operator_changes("="), [])

    def test_literals_keep_their_type(self):
        self.assertEqual(schemata.literal_changes("0"), ["0 + 1"])
        self.assertEqual(schemata.literal_changes("255U"), ["255U + 1", "255U - 1"])
        self.assertEqual(schemata.literal_changes("0xFF"), ["0xFF + 1", "0xFF - 1"])
        self.assertEqual(schemata.literal_changes("0.0F"), ["0.0F + 1"])
        self.assertEqual(schemata.literal_changes("1e-20"), ["1e-20 * 2", "1e-20 * 0"])
        self.assertEqual(schemata.literal_changes("true"), ["false"])
        self.assertEqual(schemata.literal_changes('"text"'), [])

    def test_macro_of_a_zero_becomes_one_and_any_other_zero(self):
        self.assertEqual(schemata.literal_changes("GL_FLAG"), ["GL_FLAG == 0 ? GL_FLAG + 1 : 0"])

    def test_survivor_reads_as_place_and_change(self):
        removed = Mutant("a.cpp", 0, 3, "statement removed", "", "f();", 7, 5)
        self.assertEqual(str(removed), "a.cpp:7:5: statement removed: f();  ->  nothing")
        swapped = Mutant("a.cpp", 0, 3, "order of calls", "g();", "f();", 7, 5, (5, 8))
        self.assertEqual(str(swapped), "a.cpp:7:5: order of calls: f();  ->  g();  before  f();")


class Rewriting(unittest.TestCase):
    def test_source_without_edits_stays(self):
        self.assertEqual(schemata.rewrite("int a;\n", []), "int a;\n")

    def test_nested_expressions_are_switched_one_at_a_time(self):
        source = "a + b * c"
        edits = schemata.edits_of([(1, mutant(0, 9, "sign", "a - b * c")), (2, mutant(4, 9, "sign", "b / c"))])
        text = schemata.rewrite(source, edits)
        switch = schemata.SWITCH
        self.assertEqual(text, f"({switch}(1) ? (a - b * c) : (a + ({switch}(2) ? (b / c) : (b * c))))")

    def test_mutants_of_one_place_share_it(self):
        edits = schemata.edits_of([(1, mutant(0, 1, "constant", "0")), (2, mutant(0, 1, "constant", "2"))])
        text = schemata.rewrite("1", edits)
        self.assertEqual(text, f"({schemata.SWITCH}(1) ? (0) : {schemata.SWITCH}(2) ? (2) : (1))")

    def test_removed_statement_runs_only_while_its_mutant_is_off(self):
        text = schemata.rewrite("f();", schemata.edits_of([(3, mutant(0, 4, "statement removed", ""))]))
        self.assertEqual(switched(text, 3), "{ if (!(True)) { f(); } }")
        self.assertEqual(switched(text, 4), "{ if (!(False)) { f(); } }")

    def test_swapped_statements_each_run_once(self):
        source = "f(); g();"
        edits = schemata.edits_of([(1, mutant(0, 4, "order of calls", "g();", (5, 9)))])
        text = schemata.rewrite(source, edits)
        self.assertEqual(switched(text, 1), "{ if (True) { g(); } f(); } { if (!(True)) { g(); } }")
        self.assertEqual(switched(text, 0), "{ if (False) { g(); } f(); } { if (!(False)) { g(); } }")

    def test_statement_stands_around_an_expression_of_the_same_start(self):
        edits = [Edit(0, 1, choices=((1, "b"),)), Edit(0, 2, unless=(2,), is_statement=True)]
        self.assertEqual(switched(schemata.rewrite("a;", edits), 0), "{ if (!(False)) { (False ? (b) : (a)); } }")

    def test_lines_stay_where_they_are(self):
        source = "f(\n  1);\ng();\n"
        edits = schemata.edits_of([(1, mutant(0, 8, "order of calls", "g();", (9, 13)))])
        self.assertEqual(schemata.rewrite(source, edits).count("\n"), source.count("\n"))

    def test_crossing_edits_are_refused(self):
        with self.assertRaises(ValueError):
            schemata.rewrite("abcd", [Edit(0, 3, choices=((1, "x"),)), Edit(1, 4, choices=((2, "y"),))])


class Choosing(unittest.TestCase):
    MUTANTS = {n: Mutant("few.cpp" if n <= 2 else "many.cpp", n, n, "sign", "-", "+", n, 1) for n in range(1, 101)}

    def test_same_seed_gives_the_same_sample(self):
        self.assertEqual(schemata.sample(self.MUTANTS, 20, 1), schemata.sample(self.MUTANTS, 20, 1))
        self.assertNotEqual(schemata.sample(self.MUTANTS, 20, 1), schemata.sample(self.MUTANTS, 20, 2))

    def test_sample_has_its_size_no_number_twice_and_each_file(self):
        chosen = schemata.sample(self.MUTANTS, 20, 1)
        self.assertEqual(len(set(chosen)), 20)
        self.assertEqual({self.MUTANTS[number].file for number in chosen}, {"few.cpp", "many.cpp"})

    def test_sample_larger_than_all_is_all(self):
        self.assertEqual(schemata.sample(self.MUTANTS, 1000, 1), list(range(1, 101)))

    def test_tests_are_chosen_by_file_and_by_folder(self):
        listing = {"testsuites": [{"name": "S", "testsuite": [
            {"name": "A", "file": "/r/tests/one/a_test.cpp"}, {"name": "B", "file": "/r/tests/one/aa_test.cpp"},
            {"name": "C", "file": "/r/tests/two/a_test.cpp"}]}]}
        self.assertEqual(schemata.test_filter(listing, ["one/a_test.cpp"]), "S.A")
        self.assertEqual(schemata.test_filter(listing, ["tests/one/"]), "S.A:S.B")
        self.assertEqual(schemata.test_filter(listing, ["three/"]), "")

    def test_errors_of_a_compiler_name_their_lines(self):
        output = "a/b.cpp:12:5: error: no\na/b.cpp:13:1: note: why\nc.h:4: error: no\nFAILED: x\n"
        self.assertEqual(schemata.lines_with_errors(output), {("a/b.cpp", 12), ("c.h", 4)})


if __name__ == "__main__":
    unittest.main()
