#!/usr/bin/env bash
# ./run, ./test and the tools that they use, with stubs of the build programs: which programs they start, in which folder,
# and their exit status.
#
#   commands_test.sh ROOT
set -euo pipefail

readonly root=$1
work=$(readlink -f "$(mktemp -d)")
trap 'rm -rf "$work"' EXIT
failures=0
# The times of the stubs are none of this run.
unset KARV_TEST_TIMES

# A project with the real commands and stubs for packages, build and viewer.
mkdir -p "$work/tools" "$work/bin" "$work/elsewhere/deep" "$work/build/"{linux,linux-bench,linux-coverage,linux-fuzz}
cp "$root/run" "$root/test" "$work"
cp "$root/tools/build" "$root/tools/coverage" "$root/tools/fuzz" "$root/tools/mutate" "$work/tools"
touch "$work/CMakePresets.json"
ln -s "$work/run" "$work/elsewhere/show"

make_stub()
{
    printf '#!/usr/bin/env bash\n%s\n' "$2" >"$work/$1"
    chmod +x "$work/$1"
}
# shellcheck disable=SC2016  # the stubs expand it
{
    make_stub tools/setup 'echo "setup $*" >>"$WORK/calls"; exit "${SETUP_STATUS:-0}"'
    make_stub tools/wine-session 'echo session >>"$WORK/calls"; "$@"'
    make_stub bin/cmake 'echo "cmake $*" >>"$WORK/calls"; echo "words of cmake"
        [[ $2 != "${BUILD_FAILS:-}" ]] || exit 1; exit "${CMAKE_STATUS:-0}"'
    make_stub bin/ninja 'echo "${NINJA_SAYS:-[1/2] compiling}"'
    make_stub bin/ctest 'echo "ctest $1 $2 in $PWD" >>"$WORK/calls"; echo summary
        [[ ! -v LOG ]] || { mkdir -p "build/$2/Testing/Temporary"; echo "$LOG" >"build/$2/Testing/Temporary/LastTest.log"; }
        [[ $2 != "${FAILING:-}" ]] || exit 8; exit "${CTEST_STATUS:-0}"'
    make_stub build/linux-bench/karv_bench 'printf "table "; printf "[%s]" "$@"; exit "${BENCH_STATUS:-0}"'
    for program in frame_cost_tests module_tests; do
        make_stub "build/linux-coverage/$program" \
            'echo "${0##*/} $1 on ${KARV_TEST_BACKEND:-any}" >>"$WORK/calls"; exit "${TESTS_STATUS:-0}"'
    done
    make_stub build/linux-fuzz/karv_make_seeds 'echo "seeds $*" >>"$WORK/calls"'
    for program in fuzz_model_stream fuzz_body_builder; do
        make_stub "build/linux-fuzz/$program" 'echo "${0##*/} $1" >>"$WORK/calls"; exit "${FUZZ_STATUS:-0}"'
    done
    make_stub bin/gcovr 'echo table; [[ $* != *--cobertura* ]] || cp "$WORK/counts.xml" build/linux-coverage/report.xml
        [[ $* != *--txt\ build* ]] || echo "table" >build/linux-coverage/report.txt'
    make_stub bin/nice 'echo "nice $*" >>"$WORK/calls"'
    make_stub build/linux/karv-view 'printf "[%s]" "$PWD" "$@"; exit "${VIEWER_STATUS:-0}"'
}

# call FOLDER COMMAND ARGUMENT...: sets `status` (exit status), `said` (standard output), `complained` (standard error) and
# `calls` (the stubs' record).
call()
{
    : >"$work/calls"
    status=0
    said=$(cd "$1" && WORK=$work PATH="$work/bin:$PATH" "${@:2}" 2>"$work/complained") || status=$?
    complained=$(<"$work/complained")
    calls=$(<"$work/calls")
}

# expect CASE ACTUAL PATTERN: fails unless ACTUAL matches PATTERN.
expect()
{
    # shellcheck disable=SC2053  # the pattern is not quoted on purpose
    if [[ $2 != $3 ]]; then
        printf '%s: "%s", not "%s"\n' "$1" "$2" "$3"
        failures=$((failures + 1))
    fi
}

call "$work/elsewhere/deep" ../../run 'a model.stl' --flag '*'
expect 'run shows the models of the caller'"'"'s folder' "$said" "\[$work/elsewhere/deep\]\[a model.stl\]\[--flag\]\[\*\]"
expect 'run sets up what the viewer needs, and builds it' "$calls" \
    $'setup build viewer\ncmake --preset linux\ncmake --build --preset linux'
expect 'run keeps the words of the build apart' "$complained" 'words of cmake'
call "$work" elsewhere/show
expect 'run is found through a link' "$said" "\[$work\]"
VIEWER_STATUS=3 call "$work" ./run
expect 'run ends as the viewer does' "$status" 3
SETUP_STATUS=1 call "$work" ./run
expect 'run stops where packages are missing' "$status $calls" '1 setup build viewer'
CMAKE_STATUS=1 call "$work" ./run
expect 'run stops where the build cannot be configured' "$status $said" '1 '
expect 'run shows why' "$complained" 'words of cmake'

call "$work/elsewhere" ../run bench --quick 'a filter'
expect 'run bench measures' "$said" 'table \[--quick\]\[a filter\]'
expect 'run bench sets up what the benchmarks need, and builds them' "$calls" \
    $'setup build bench\ncmake --preset linux-bench\ncmake --build --preset linux-bench'
BENCH_STATUS=3 call "$work" ./run bench
expect 'run bench ends as the benchmarks do' "$status" 3
call "$work" ./run ./bench
expect 'a model can still be called bench' "$said" "\[$work\]\[./bench\]"

touch -d '1 hour ago' "$work/CMakePresets.json"
touch "$work/build/linux/build.ninja"
NINJA_SAYS='ninja: no work to do.' call "$work" ./run
expect 'nothing is built when all is up to date' "$calls" 'setup build viewer'
expect 'and nothing is said' "$complained" ''
call "$work" tools/build linux
expect 'a changed source is built without a new configuration' "$calls" 'cmake --build --preset linux'
touch -d 'now + 1 hour' "$work/CMakePresets.json"
call "$work" tools/build linux
expect 'changed presets are configured anew' "$calls" $'cmake --preset linux\ncmake --build --preset linux'
call "$work" tools/build linux karv-view
expect 'one target is built alone' "$calls" $'cmake --preset linux\ncmake --build --preset linux --target karv-view'
call "$work" tools/build linux karv-view more
expect 'a build of two targets is refused' "$status $complained" '2 usage: *'
call "$work" tools/build
expect 'a build without a preset is refused' "$status $complained" '2 usage: *'

readonly build_linux='cmake --preset linux-sanitize
cmake --build --preset linux-sanitize
cmake --preset linux-fuzz
cmake --build --preset linux-fuzz --target karv_fuzzers'
readonly build_windows='cmake --preset linux-sanitize
cmake --build --preset linux-sanitize --target control_pictures
cmake --preset windows-test
cmake --build --preset windows-test'
readonly test_linux="ctest --preset linux-sanitize in $work
ctest --preset linux-fuzz in $work"
readonly test_windows="session
ctest --preset windows-test in $work"
call "$work/elsewhere" ../test linux
expect 'test of one system leaves the other alone' "$calls" "setup build viewer test bench fuzz
$build_linux
$test_linux"
expect 'test ends with the summaries' "$status $said" $'0 summary\nsummary'
call "$work/elsewhere" ../test windows
expect 'test of Windows needs the pictures of the build system' "$calls" "setup build viewer test bench windows wine
$build_windows
$test_windows"
call "$work/elsewhere" ../test
expect 'test sets up and builds all for both systems' "$calls" "setup build viewer test bench fuzz windows wine
$build_linux
$build_windows
*"
# Both at a time.
expect 'test tests both systems' "$(grep -c ^ctest <<<"$calls") $calls" "3 *ctest --preset windows-test in $work*"
expect 'test ends with the summaries of both systems' "$status $said" $'0 summary\nsummary\nsummary'
expect 'test tells how long each step took' "$complained" $'*[0-9] s  tools/build windows-test\n*'
CTEST_STATUS=8 call "$work" ./test linux
expect 'test ends as CTest does' "$status" 8
expect 'the fuzzers run however the tests end' "$calls" "*$test_linux"
FAILING=windows-test call "$work" ./test
expect 'test ends as a failing CTest of Windows does' "$status $(grep -c ^ctest <<<"$calls")" '8 3'
FAILING=linux-sanitize call "$work" ./test
expect 'test ends as a failing CTest of Linux does' "$status $(grep -c ^ctest <<<"$calls")" '8 3'
FAILING=linux-fuzz call "$work" ./test
expect 'test ends as a failing fuzzer does' "$status $(grep -c ^ctest <<<"$calls")" '8 3'
BUILD_FAILS=linux-fuzz call "$work" ./test
expect 'test goes on with the second system where the first cannot be built' "$status $calls" "1 *$test_windows"
BUILD_FAILS=windows-test call "$work" ./test
expect 'test runs the tests of the first system where the second cannot be built' "$status $calls" "1 *$test_linux"
BUILD_FAILS=linux-sanitize call "$work" ./test windows
expect 'test of Windows ends where the pictures of the build system cannot be built' "$status $calls" \
    '1 *--preset linux-sanitize'
SETUP_STATUS=1 call "$work" ./test windows
expect 'test stops where packages are missing' "$status $calls" '1 setup build viewer test bench windows wine'
LOG='[==========] 12 tests from 3 test suites ran. (5 ms total)
[  SKIPPED ] 2 tests, listed below:
[==========] 1 test from 1 test suite ran. (1 ms total)
[==========] Running 7 tests from 1 test suite.' call "$work" ./test linux
expect 'test counts the cases that ran' "$said" 'summary
linux-sanitize: 13 test cases, 2 of them skipped
summary
*'

call "$work/elsewhere" ../test fuzz 7
expect 'test fuzz sets up, builds, and runs each fuzzer as long as it is asked' "$calls" "setup build test fuzz
cmake --preset linux-fuzz
cmake --build --preset linux-fuzz --target karv_fuzzers
seeds seeds
fuzz_model_stream -max_total_time=7
fuzz_body_builder -max_total_time=7"
call "$work" ./test fuzz
expect 'a fuzzer runs for ten minutes by default' "$calls" $'*fuzz_model_stream -max_total_time=600\n*'
FUZZ_STATUS=77 call "$work" ./test fuzz 7
expect 'test fuzz ends with the first fuzzer that breaks something' "$status $calls" \
    $'77 *fuzz_model_stream -max_total_time=7'

mkdir -p "$work/camera"
printf 'int F(int a)\n{\n    return a ? 1 : 0;\n    done();\n}\n' >"$work/camera/a.cpp"
cat >"$work/counts.xml" <<'COUNTS'
<class name="a_cpp" filename="camera/a.cpp" line-rate="0.5">
  <methods/>
  <lines>
    <line number="1" hits="7" branch="false"/>
    <line number="3" hits="7" branch="true" condition-coverage="50% (1/2)">
    <line number="4" hits="0" branch="false"/>
    <line number="5" hits="7" branch="true" condition-coverage="100% (2/2)">
COUNTS
touch "$work/build/linux-coverage/old.gcda"
call "$work/elsewhere" ../test coverage
expect 'test coverage sets up, builds, and runs the tests of the module' "$calls" "setup build test coverage
cmake --preset linux-coverage
cmake --build --preset linux-coverage
frame_cost_tests --gtest_brief=1 on any
module_tests --gtest_brief=1 on any
module_tests --gtest_brief=1 on x11"
expect 'coverage ends with the lines and branches that were not reached' "$status $said" '0 table
*Not reached:
camera/a.cpp:3: 50% (1/2) of the branches: return a ? 1 : 0;
camera/a.cpp:4: not reached: done();'
expect 'coverage forgets what earlier runs have counted' "$(find "$work/build" -name '*.gcda')" ''
TESTS_STATUS=1 call "$work" ./test coverage
expect 'coverage ends where a test fails' "$status $said" '1 '

call "$work/elsewhere" ../tools/mutate --sample 5
expect 'mutate sets up, and passes its arguments on' "$calls" \
    $'setup build test mutation\nnice /usr/bin/python3 -B tools/mutation/run.py --sample 5'

call "$work" ./test solaris
expect 'test refuses a system that it does not know' "$status $complained$calls" '2 usage: *'
for seconds in 0 -1 x 7x ''; do
    call "$work" ./test fuzz "$seconds"
    expect "test refuses '$seconds' as seconds" "$status $complained$calls" '2 usage: *'
done
call "$work" ./test linux more
expect 'test refuses more arguments' "$status $complained$calls" '2 usage: *'

exit "$((failures != 0))"
