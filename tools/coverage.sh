#!/bin/bash
# Which lines of src/ the tests run: builds with gcov, runs all tests, prints a table for the forms and
# one for everything else. The exit code is not 0 when a table is below what is asked.
#
#   tools/coverage.sh              everything
#   tools/coverage.sh --report     only the tables, of what was run before
set -eu
cd "$(dirname "$0")/.."
. tools/packages.sh
jobs=${TARVELO_JOBS:-$(nproc)}
build=build/coverage

install_packages "${PACKAGES_BUILD[@]}" "${PACKAGES_DEMO[@]}" "${PACKAGES_TEST[@]}" "${PACKAGES_COVERAGE[@]}"
if [ "${1:-}" != --report ]; then
    tests/servers/setup.sh
    cmake --preset coverage
    cmake --build --preset coverage --parallel "$jobs"
    find "$build" -name '*.gcda' -delete
    ctest --test-dir "$build" --parallel "$jobs" --output-on-failure
fi

tools/coroutinelines.py "$build/src"
gcovr -j "$jobs" --root . --filter src/ --json "$build/lines.json" "$build/src"

# table AT_LEAST OPTIONS..
table()
{
    local least=$1
    shift
    gcovr --root . --add-tracefile "$build/lines.json" --fail-under-line "$least" "$@" || failed=1
}

failed=0
echo "== Forms"
table 85 --filter 'src/.*/frm[^/]*$'
echo "== Everything else"
table 95 --exclude '.*/frm[^/]*$'
exit $failed
