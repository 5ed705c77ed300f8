#!/usr/bin/env bash
# ./run, ./test and tools/build against build programs of our own: what they start, where, and how they end.
#
#   commands_test.sh ROOT
set -euo pipefail

readonly root=$1
work=$(readlink -f "$(mktemp -d)")
trap 'rm -rf "$work"' EXIT
failures=0

# A project with our commands, whose packages, build and viewer are stand-ins.
mkdir -p "$work/tools" "$work/bin" "$work/build/linux" "$work/build/linux-bench" "$work/elsewhere/deep"
cp "$root/run" "$root/test" "$work"
cp "$root/tools/build" "$work/tools/build"
touch "$work/CMakePresets.json"
ln -s "$work/run" "$work/elsewhere/show"

make_stub()
{
    printf '#!/usr/bin/env bash\n%s\n' "$2" >"$work/$1"
    chmod +x "$work/$1"
}
# shellcheck disable=SC2016  # the stand-ins expand it
{
    make_stub tools/setup 'echo "setup $*" >>"$WORK/calls"; exit "${SETUP_STATUS:-0}"'
    make_stub bin/cmake 'echo "cmake $*" >>"$WORK/calls"; echo "words of cmake"; exit "${CMAKE_STATUS:-0}"'
    make_stub bin/ninja 'echo "${NINJA_SAYS:-[1/2] compiling}"'
    make_stub bin/ctest 'echo "ctest $1 $2 in $PWD" >>"$WORK/calls"; echo summary; exit "${CTEST_STATUS:-0}"'
    make_stub build/linux-bench/karv_bench 'printf "table "; printf "[%s]" "$@"; exit "${BENCH_STATUS:-0}"'
    make_stub build/linux/karv-view 'printf "[%s]" "$PWD" "$@"; exit "${VIEWER_STATUS:-0}"'
}

# call FOLDER COMMAND ARGUMENT...: `status`, `said`, `complained` and `calls` take what came of it.
call()
{
    : >"$work/calls"
    status=0
    said=$(cd "$1" && WORK=$work PATH="$work/bin:$PATH" "${@:2}" 2>"$work/complained") || status=$?
    complained=$(<"$work/complained")
    calls=$(<"$work/calls")
}

# expect CASE ACTUAL PATTERN
expect()
{
    # shellcheck disable=SC2053  # a pattern is meant
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
call "$work" tools/build
expect 'a build without a preset is refused' "$status $complained" '2 usage: *'

call "$work/elsewhere" ../test
expect 'test sets up, builds and tests all' "$calls" "setup build viewer test
cmake --preset linux-sanitize
cmake --build --preset linux-sanitize
ctest --preset linux-sanitize in $work"
expect 'test ends with the summary' "$status $said" '0 summary'
CTEST_STATUS=8 call "$work" ./test linux
expect 'test ends as CTest does' "$status" 8
call "$work" ./test windows
expect 'test refuses a system that it does not know' "$status $complained$calls" '2 usage: *'
call "$work" ./test linux more
expect 'test refuses more arguments' "$status $complained$calls" '2 usage: *'

exit "$((failures != 0))"
