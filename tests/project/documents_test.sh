#!/usr/bin/env bash
# The check of the documents reports every kind of mistake and accepts correct documents.
#
#   documents_test.sh CMAKE DOCUMENTS_SCRIPT
# shellcheck disable=SC2016  # back quotes are literal
set -euo pipefail

readonly cmake=$1 script=$2
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
failures=0
mkdir -p "$tree/examples/one" "$tree/docs"
printf 'int f(int a)\n{\n    return a; // [1]; "two"\n}\nint g();\n' >"$tree/examples/one/one.cpp"
touch "$tree/docs/page.md"

# check EXPECTED WHAT README
check()
{
    local outcome=passes output
    printf '%b' "$3" >"$tree/README.md"
    output=$("$cmake" -D "ROOT=$tree" -P "$script" 2>&1) || outcome=fails
    if [[ $outcome != "$1" ]]; then
        printf '%s: %s, not %s\n%s\n' "$2" "$outcome" "$1" "$output"
        failures=$((failures + 1))
    fi
}

readonly whole='```cpp\nint f(int a)\n{\n    return a; // [1]; "two"\n}\n```\n'
check passes 'a block that an example holds' "$whole"
check passes 'two such blocks' "$whole"'and\n```cpp\nint g();\n```\n'
check passes 'a link to a file' "$whole"'[page](docs/page.md), [part](docs/page.md#part), [top](#top)\n'
check fails 'a block that differs in one word' "${whole/return a/return b}"
check fails 'a second block that no example holds' "$whole"'```cpp\nint h();\n```\n'
check fails 'no block at all' 'text\n'
check fails 'a link to nothing' "$whole"'[gone](docs/gone.md)\n'
check fails 'a second link of a line to nothing' "$whole"'[page](docs/page.md) and ![gone](gone.png)\n'

exit "$((failures != 0))"
