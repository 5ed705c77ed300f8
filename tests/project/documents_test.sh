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
mkdir -p "$tree/examples/one" "$tree/viewer" "$tree/docs"
readonly example='int f(int a)\n{\n    return a; // [1]; "two"\n}\nint g();\n'
printf '%b' "$example" >"$tree/examples/one/one.cpp"
printf 'int h();\n' >"$tree/viewer/part.h"
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

# check_page EXPECTED WHAT PAGE: the same for another document than README.md.
check_page()
{
    printf '%b' "$3" >"$tree/docs/page.md"
    check "$1" "$2" "$whole"
    : >"$tree/docs/page.md"
}

# So many words, or so many lines.
repeat()
{
    printf "$2%.0s" $(seq "$1")
}

readonly whole='```cpp\nint f(int a)\n{\n    return a; // [1]; "two"\n}\n```\n'
words_of_whole=$(printf '%b' "$whole" | wc -w)
readonly words_of_whole
check passes 'a block that an example holds' "$whole"
check passes 'two such blocks' "$whole"'and\n```cpp\nint g();\n```\n'
check passes 'a link to a file' "$whole"'[page](docs/page.md)\n'
check passes 'a link to a place outside' "$whole"'[page](https://example.org/page.md#part)\n'
check passes 'a link to a heading of its own' "# The top, it's \`one\`\n$whole"'[top](#the-top-its-one)\n'
check fails 'a link to no heading of its own' "# Top\n$whole"'[part](#part)\n'
check fails 'a block that differs in one word' "${whole/return a/return b}"
check fails 'a second block that no example holds' "$whole"'```cpp\nint k();\n```\n'
check fails 'a block from a source that is no example' "$whole"'```cpp\nint h();\n```\n'
check fails 'no block at all' 'text\n'
check fails 'a link to nothing' "$whole"'[gone](docs/gone.md)\n'
check fails 'a second link of a line to nothing' "$whole"'[page](docs/page.md) and ![gone](gone.png)\n'
check fails 'a link to no heading of another document' "$whole"'[part](docs/page.md#part)\n'
check passes 'as many words as allowed' "$whole$(repeat $((900 - words_of_whole)) 'word;[ ')"
check fails 'one word too many' "$whole$(repeat $((901 - words_of_whole)) 'word ')"

check_page passes 'a page without a block' 'text\n'
check_page passes 'a block from any source' '```cpp\nint h();\n```\n'
check_page passes 'a link from a page to a heading' '## Part\n[part](#part), [one](../examples/one/one.cpp)\n'
check_page fails 'a block from no source' '```cpp\nint k();\n```\n'
check_page fails 'a link from a page to nothing' '[page](docs/page.md)\n'

printf '%b' "$example$(repeat 95 '\\n')" >"$tree/examples/one/one.cpp"
check passes 'an example of as many lines as allowed' "$whole"
printf '%b' "$example$(repeat 96 '\\n')" >"$tree/examples/one/one.cpp"
check fails 'an example of one line too many' "$whole"

exit "$((failures != 0))"
