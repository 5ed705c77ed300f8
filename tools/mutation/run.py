"""Builds the module once with all its mutants, then runs its tests with a sample of them switched on, one at a time."""

import argparse
import concurrent.futures
import json
import os
import resource
import shutil
import signal
import subprocess
import sys
import time

import schemata
from finder import Finder, compile_arguments

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
FOLDERS = ("module/", "camera/", "geometry/", "control/")
BUILD = os.path.join(ROOT, "build", "linux-mutation")
TREE = os.path.join(BUILD, "source")
OBJECTS = os.path.join(BUILD, "objects")
HOOK = os.path.join(BUILD, "switch.h")
PROGRAMS = (
    "module_tests",
    "module_entry_tests",
    "module_load_tests",
    "frame_cost_tests",
    "control_model_tests",
    "processor_fault_tests",
)

HOOK_TEXT = f"""#pragma once
#include <cstdlib>
#include <type_traits>
namespace karv_mutation
{{
inline const int active = [] {{
    const char* const number = std::getenv("KARV_MUTANT");
    return number == nullptr ? 0 : std::atoi(number);
}}();
}}
#define {schemata.SWITCH}(number) (karv_mutation::active == (number))
"""

# The tests of each source. A source that is not listed has all tests in the folder of the same name.
CONTROL = "tests/control/"
MODULE = ["tests/module/" + name + "_test.cpp" for name in ("entry", "linked_load", "module_load", "process_end")]
SUBJECTS = {
    "module/dll_main.cpp": MODULE,
    "module/entry_point.cpp": MODULE,
    "module/extension_module.cpp": MODULE,
    "module/guard.h": [
        "tests/module/guard_test.cpp", "tests/module/fault_lines_test.cpp",
        "tests/module/processor_faults_test.cpp", CONTROL + "trace_test.cpp"
    ],
    "control/KARVOpenGLControl.cpp": [
        CONTROL + name + "_test.cpp" for name in ("creation", "creation_failure", "defaults", "trace", "probe")
    ],
    "control/gl_context.cpp": [
        CONTROL + name + "_test.cpp" for name in ("creation", "creation_failure", "probe", "picture")
    ],
    "control/pixel_format_probe.cpp": [CONTROL + "probe_test.cpp", CONTROL + "creation_failure_test.cpp"],
    "control/frame_loop.cpp": [
        CONTROL + name + "_test.cpp" for name in ("frame", "redraw", "culling", "settings", "defaults", "picture")
    ],
    "control/geometry_feed.cpp": [CONTROL + name + "_test.cpp" for name in ("geometry_feed", "extents")],
    "control/extents.cpp": [CONTROL + "extents_test.cpp"],
    "control/camera_commands.cpp": [CONTROL + "camera_commands_test.cpp", CONTROL + "trace_test.cpp"],
    "control/mouse_navigation.cpp": [
        CONTROL + name + "_test.cpp" for name in ("mouse_navigation", "navigation_model")
    ],
}

# A mutant that the tests detect for certain. It proves that the switch reaches the module.
KNOWN = ("camera/KARVGLCamera.cpp", "statement removed", 'Guarded<L"KARVGLCamera::SetTarget">')


SURVIVED = "survived"
ELSEWHERE = "detected only elsewhere"


def say(text):
    print(text, flush=True)


def call(*command, **options):
    done = subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False, **options)
    if done.returncode != 0:
        sys.exit(f"{' '.join(command[:4])} ...: status {done.returncode}\n{done.stdout[-6000:]}")
    return done.stdout


def lay_out_tree():
    """Copies the project, so that edits while the mutants run do not affect them."""
    shutil.rmtree(TREE, ignore_errors=True)
    shutil.copytree(ROOT, TREE, symlinks=True, ignore=lambda folder, names: [
        name for name in names if folder == ROOT and (name == "build" or name.startswith("."))])
    with open(HOOK, "w", encoding="ascii") as stream:
        stream.write(HOOK_TEXT)


def configure():
    call("cmake", "-G", "Ninja", "-S", TREE, "-B", OBJECTS, "-DCMAKE_BUILD_TYPE=Debug", "-DKARV_BUILD_TESTS=ON",
         "-DKARV_BUILD_VIEWER=OFF", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON", "-DCMAKE_CXX_FLAGS_DEBUG=-O1",
         f"-DCMAKE_CXX_FLAGS=-w -include {HOOK}")


def compiled_sources():
    with open(os.path.join(OBJECTS, "compile_commands.json"), encoding="utf-8") as stream:
        files = {os.path.normpath(entry["file"]) for entry in json.load(stream)}
    return sorted(file for file in files if os.path.relpath(file, TREE).startswith(FOLDERS))


def find_mutants():
    finder = Finder(TREE, FOLDERS)
    for path in compiled_sources():
        finder.parse(compile_arguments(OBJECTS, path), path)
    return finder


def write_sources(finder, numbered):
    by_file = {}
    for number, mutant in numbered.items():
        by_file.setdefault(mutant.file, []).append((number, mutant))
    for file in {mutant.file for mutant in finder.mutants}:
        text = schemata.rewrite(finder.text(file), schemata.edits_of(by_file.get(file, [])))
        path = os.path.join(TREE, file)
        with open(path, encoding="latin-1", newline="") as stream:
            if stream.read() == text:
                continue
        with open(path, "w", encoding="latin-1", newline="") as stream:
            stream.write(text)


def build(finder, numbered):
    """Builds the mutants. Removes those that do not compile from `numbered` and returns their number."""
    refused = 0
    for _ in range(20):
        write_sources(finder, numbered)
        done = subprocess.run(["ninja", "-C", OBJECTS, "-k", "0", *PROGRAMS], text=True, capture_output=True,
                              check=False)
        if done.returncode == 0:
            return refused
        places = {(os.path.relpath(os.path.join(OBJECTS, file), TREE), line)
                  for file, line in schemata.lines_with_errors(done.stdout)}
        bad = [number for number, mutant in numbered.items() if (mutant.file, mutant.line) in places]
        if not bad:
            break
        for number in bad:
            del numbered[number]
        refused += len(bad)
    sys.exit(f"the mutants do not compile:\n{done.stdout[-6000:]}{done.stderr[-2000:]}")


def limit_child():
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_AS, (8 << 30, 8 << 30))


def run_tests(number, program, tests, time_limit):
    """The outcome of the tests with this mutant on: "passed", "failed", "crashed" or "timed out"."""
    environment = dict(os.environ, KARV_MUTANT=str(number), GTEST_FILTER=tests,
                       TEST_TMPDIR=os.path.join(BUILD, "temporary") + "/")
    with subprocess.Popen([os.path.join(OBJECTS, program), "--gtest_fail_fast", "--gtest_brief=1"], env=environment,
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True,
                          preexec_fn=limit_child) as process:
        try:
            status = process.wait(time_limit)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            return "timed out"
    return "passed" if status == 0 else "failed" if status > 0 else "crashed"


def list_tests(program):
    listing = os.path.join(BUILD, "tests.json")
    call(os.path.join(OBJECTS, program), "--gtest_list_tests", f"--gtest_output=json:{listing}")
    with open(listing, encoding="utf-8") as stream:
        return json.load(stream)


class Tests:
    """The tests of each source by program, and their time limits."""

    def __init__(self, files):
        listings = {program: list_tests(program) for program in PROGRAMS}
        self.runs = {}
        self.limits = {}
        for file in sorted(files):
            patterns = SUBJECTS.get(file, [f"tests/{file.split('/')[0]}/"])
            filters = {program: schemata.test_filter(listings[program], patterns) for program in PROGRAMS}
            self.runs[file] = [(program, tests) for program, tests in filters.items() if tests]
            if not self.runs[file]:
                sys.exit(f"no tests for {file}")
        self.all = [(program, "*") for program in PROGRAMS]
        for run in {run for runs in (*self.runs.values(), self.all) for run in runs}:
            self.limits[run] = self.limit(*run)

    @staticmethod
    def limit(program, tests):
        begin = time.monotonic()
        if run_tests(0, program, tests, 600) != "passed":
            sys.exit(f"{program}: tests fail with no mutant on")
        return 10 + 6 * (time.monotonic() - begin)

    def own(self, number, file):
        return self.first_of(number, self.runs[file])

    def first_of(self, number, runs):
        """The outcome of the first program that did not pass, or "passed"."""
        for run in runs:
            outcome = run_tests(number, *run, self.limits[run])
            if outcome != "passed":
                return outcome
        return "passed"

    def judge(self, number, mutant):
        outcome = self.own(number, mutant.file)
        if outcome != "passed":
            return outcome
        return SURVIVED if self.first_of(number, self.all) == "passed" else ELSEWHERE


def check_switch(tests, numbered):
    """Checks that a number without a mutant changes nothing, and that the known mutant is detected."""
    file, kind, start = KNOWN
    known = [number for number, mutant in numbered.items()
             if (mutant.file, mutant.kind) == (file, kind) and mutant.original.startswith(start)]
    if len(known) != 1:
        sys.exit(f"{len(known)} mutants match the known one")
    if tests.own(max(numbered) + 1, file) != "passed":
        sys.exit("tests fail with a number that has no mutant")
    if tests.own(known[0], file) == "passed":
        sys.exit("the known mutant is not detected: the switch does not reach the module")
    say("The switch works: tests pass with no mutant on, and the known one is detected.")


def run_sample(tests, numbered, chosen, options):
    """{number: outcome} of the mutants that were run within the time."""
    end = time.monotonic() + 60 * options.minutes
    outcomes = {}

    def one(number):
        if time.monotonic() > end:
            return
        outcomes[number] = outcome = tests.judge(number, numbered[number])
        say(f"{len(outcomes):4}/{len(chosen)} {outcome:22} {number}: {numbered[number]}")

    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for _ in pool.map(one, chosen):
            pass
    return outcomes


def count(values):
    counts = {}
    for value in values:
        counts[value] = counts.get(value, 0) + 1
    return ", ".join(f"{number} {value}" for value, number in sorted(counts.items()))


def report(numbered, chosen, outcomes):
    if len(outcomes) < len(chosen):
        say(f"The time ran out: {len(chosen) - len(outcomes)} of the sample were not run.")
    say(f"\nSample: {len(outcomes)} ({count(numbered[number].kind for number in outcomes)})")
    detected = sum(outcome not in (SURVIVED, ELSEWHERE) for outcome in outcomes.values())
    elsewhere = sum(outcome == ELSEWHERE for outcome in outcomes.values())
    say(f"Outcomes: {count(outcomes.values())}")
    say(f"Score: {100 * detected / max(1, len(outcomes)):.1f} % detected by their own tests, "
        f"{100 * (detected + elsewhere) / max(1, len(outcomes)):.1f} % by any")
    for number in sorted(outcomes):
        if outcomes[number] in (SURVIVED, ELSEWHERE):
            say(f"{outcomes[number]}: {number}: {numbered[number]}")


def main():
    parser = argparse.ArgumentParser(prog="tools/mutate", description=__doc__)
    parser.add_argument("--sample", type=int, default=320, help="how many mutants to run (320)")
    parser.add_argument("--seed", type=int, default=1, help="the seed that chooses the sample (1)")
    parser.add_argument("--minutes", type=float, default=45, help="start no mutant after this time (45)")
    parser.add_argument("--jobs", type=int, default=2, help="how many at a time (2)")
    parser.add_argument("--list", action="store_true", help="print all mutants with their numbers, and run none")
    parser.add_argument("numbers", type=int, nargs="*", help="run these mutants instead of a sample")
    options = parser.parse_args()

    os.makedirs(os.path.join(BUILD, "temporary"), exist_ok=True)
    lay_out_tree()
    configure()
    finder = find_mutants()
    numbered = dict(enumerate(sorted(finder.mutants), 1))
    say(f"Found {len(numbered)} mutants ({count(mutant.kind for mutant in numbered.values())})")
    say(f"Left out because they cannot be switched at run time: {count_left_out(finder)}")
    if options.list:
        for number, mutant in numbered.items():
            say(f"{number}: {mutant}")
        return
    refused = build(finder, numbered)
    say(f"Left out because they do not compile: {refused}")
    chosen = options.numbers or schemata.sample(numbered, options.sample, options.seed)
    unknown = [number for number in chosen if number not in numbered]
    if unknown:
        sys.exit(f"no such mutant: {unknown}")
    tests = Tests({KNOWN[0], *(numbered[number].file for number in chosen)})
    check_switch(tests, numbered)
    report(numbered, chosen, run_sample(tests, numbered, chosen, options))


def count_left_out(finder):
    counts = finder.left_out()
    return f"{sum(counts.values())} ({', '.join(f'{number} in {reason}' for reason, number in sorted(counts.items()))})"


if __name__ == "__main__":
    main()
