#!/usr/bin/env bash
# tools/setup with stubs of the package programs: the requests to them, the output, and the exit status.
#
#   setup_test.sh ROOT
set -euo pipefail

readonly root=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

mkdir -p "$work/tools" "$work/bin" "$work/empty"
cp "$root/tools/setup" "$work/tools/setup"
cat >"$work/tools/packages" <<'LIST'
# a comment
[first]     # a section
alpha
beta        # why

[second]
gamma
LIST

# The stubs record each call in $work/calls and answer from the files that a case has written.
cat >"$work/bin/dpkg-query" <<'STUB'
#!/usr/bin/env bash
echo "dpkg-query ${*:3}" >>"$WORK/calls"
status=0
for name in "${@:3}"; do
    grep "^$name " "$WORK/installed" || { echo "no packages found matching $name" >&2; status=1; }
done
exit "$status"
STUB
cat >"$work/bin/apt-get" <<'STUB'
#!/usr/bin/env bash
echo "apt-get $*" >>"$WORK/calls"
[[ ${DEBIAN_FRONTEND:-} == noninteractive ]] || echo 'interactive' >>"$WORK/calls"
for action in update install; do
    if [[ " $* " == *" $action "* && -s $WORK/$action.error ]]; then
        echo 'Reading package lists...'
        cat "$WORK/$action.error" >&2
        exit 100
    fi
done
STUB
cat >"$work/bin/id" <<'STUB'
#!/usr/bin/env bash
cat "$WORK/uid"
STUB
cat >"$work/bin/sudo" <<'STUB'
#!/usr/bin/env bash
[[ -e $WORK/sudo_allowed && $1 == -n ]] || { echo 'sudo: a password is required' >&2; exit 1; }
echo "sudo $2" >>"$WORK/calls"
exec "${@:2}"
STUB
chmod +x "$work"/bin/*

# begin NAME: begins a case on a machine where nothing is installed and the caller is root.
begin()
{
    name=$1
    rm -f "$work"/{calls,sudo_allowed,*.error}
    : >"$work/calls"
    : >"$work/installed"
    echo 0 >"$work/uid"
}

# setup SECTION...: runs tools/setup and sets `status` (exit status), `said` (its output) and `calls` (the stubs' record).
setup()
{
    status=0
    said=$(WORK=$work PATH="$work/bin:$PATH" "$BASH" "$work/tools/setup" "$@" 2>&1) || status=$?
    calls=$(<"$work/calls")
}

# expect WHAT ACTUAL PATTERN: fails unless ACTUAL matches PATTERN.
expect()
{
    # shellcheck disable=SC2053  # the pattern is not quoted on purpose
    if [[ $2 != $3 ]]; then
        printf '%s: %s is "%s", not "%s"\n' "$name" "$1" "$2" "$3"
        failures=$((failures + 1))
    fi
}

begin 'nothing is missing'
printf 'alpha installed\nbeta installed\n' >"$work/installed"
setup first
expect status "$status" 0
expect output "$said" ''
expect calls "$calls" 'dpkg-query alpha beta'

begin 'root installs what is missing, and only that'
printf 'alpha installed\n' >"$work/installed"
setup first second
expect status "$status" 0
expect output "$said" 'tools/setup: installing beta gamma'
expect calls "$calls" $'dpkg-query alpha beta gamma\napt-get * update\napt-get * install --no-install-recommends beta gamma'

begin 'a package that was removed, but not its settings, is missing'
printf 'gamma config-files\n' >"$work/installed"
setup second
expect calls "$calls" $'dpkg-query gamma\napt-get * update\napt-get * install --no-install-recommends gamma'

begin 'sudo without a password serves in place of root'
echo 1000 >"$work/uid"
touch "$work/sudo_allowed"
setup second
expect status "$status" 0
expect calls "$calls" $'dpkg-query gamma\nsudo true\nsudo env\napt-get * update\nsudo env\napt-get * install * gamma'

begin 'without root and sudo one line names the packages'
echo 1000 >"$work/uid"
setup first
expect status "$status" 1
expect output "$said" 'tools/setup: cannot install without root or sudo; missing: alpha beta'
expect calls "$calls" 'dpkg-query alpha beta'

begin 'a refusal of the package manager is named with its first reason'
printf 'E: Unable to locate package gamma\nE: another\n' >"$work/install.error"
setup second
expect status "$status" 1
expect output "$said" $'tools/setup: installing gamma\ntools/setup: cannot install gamma: Unable to locate package gamma'

begin 'a refusal without words is named with its status'
echo 'something else' >"$work/install.error"
setup second
expect status "$status" 1
expect output "$said" $'tools/setup: installing gamma\ntools/setup: cannot install gamma: apt-get exited with status 100'

begin 'without a network the failed update is the reason'
echo 'E: Failed to fetch the list' >"$work/update.error"
echo 'E: Unable to locate package gamma' >"$work/install.error"
setup second
expect status "$status" 1
expect output "$said" $'tools/setup: installing gamma\ntools/setup: cannot install gamma: Failed to fetch the list'

begin 'a failed update alone does no harm'
echo 'E: Failed to fetch the list' >"$work/update.error"
setup second
expect status "$status" 0

begin 'an unknown section is refused'
setup first third
expect status "$status" 2
expect output "$said" "tools/setup: no section 'third' in tools/packages"
expect calls "$calls" ''

begin 'no section at all is refused'
setup
expect status "$status" 2
expect output "$said" 'tools/setup: usage: *'

begin 'another system than Debian gets a warning and goes on'
status=0
said=$(PATH="$work/empty" "$BASH" "$work/tools/setup" first 2>&1) || status=$?
expect status "$status" 0
expect output "$said" 'tools/setup: warning: not a Debian system, *: alpha beta'

exit "$((failures != 0))"
