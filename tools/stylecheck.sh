#!/bin/bash
# Checks what a compiler does not see. Run by ctest as "style".
#
#   tools/stylecheck.sh            everything but the formatting
#   tools/stylecheck.sh --format   the formatting (clang-format 16); nothing is changed
#   tools/stylecheck.sh --report   the longest files and functions' files, for the eye
#
# Every finding is one line "file:line: what"; the exit code is 1 when there is any.
set -u
cd "$(dirname "$0")/.." || exit 2

files()
{
    # Not in a clone (or in one that belongs to somebody else): all files but the built ones.
    if ! git ls-files --cached --others --exclude-standard -- "$@" 2>/dev/null; then
        find . -path ./build -prune -o -type f -print | sed 's|^\./||' | grep -E "$(
            printf '%s\n' "$@" | sed -e 's|\.|\\.|g' -e 's|\*|.*|g' -e 's|^|^|' -e 's|$|$|' | paste -sd'|')"
    fi
}

mapfile -t cpp < <(files '*.cpp' '*.h')
mapfile -t text < <(files '*.cpp' '*.h' '*.sh' '*.py' '*.cmake' '*CMakeLists.txt' '*.md' '.ci/run')
[ ${#cpp[@]} -gt 0 ] || { echo "no files found"; exit 2; }

findings=$(mktemp)
trap 'rm -f "$findings"' EXIT

# look WHAT PATTERN FILE..: every line that matches is a finding.
look()
{
    local what=$1 pattern=$2
    shift 2
    [ $# -gt 0 ] || return 0
    grep -nHP -- "$pattern" "$@" | WHAT=$what awk -F: '{ print $1 ":" $2 ": " ENVIRON["WHAT"] }' \
        >> "$findings"
}

if [ "${1:-}" = --format ]; then
    command -v clang-format-16 >/dev/null || {
        echo "clang-format-16 is not installed (package clang-format-16)"
        exit 1
    }
    clang-format-16 --dry-run --Werror "${cpp[@]}"
    exit
fi

if [ "${1:-}" = --report ]; then
    wc -l "${cpp[@]}" | sort -rn | sed -n '2,25p'
    exit
fi

look "blank at the end of the line" '[ \t]+\r?$' "${text[@]}"
look "carriage return" '\r' "${text[@]}"
look "tab" '\t' "${cpp[@]}"
for file in "${text[@]}"; do
    [ ! -s "$file" ] || [ -z "$(tail -c1 "$file")" ] || echo "$file:1: no line end at the end" >> "$findings"
done

mapfile -t tests < <(printf '%s\n' "${cpp[@]}" | grep '^tests/')
look "fixed sleep in a test; wait for a condition" \
    '\b(sleep_for|sleep_until|usleep|nanosleep|qSleep)\b|QThread::\w*sleep|\bqWait *\(|(^|[^\w.:])sleep *\(' "${tests[@]}"
look "skipped test; only for the reason that servers::canRun gives" \
    'GTEST_SKIP\(\)(?! << why;)|QSKIP|\bDISABLED_' "${tests[@]}"

# A file that its room's list forgets is a test that never runs.
for file in "${tests[@]}"; do
    case $file in *_test.cpp) ;; *) continue ;; esac
    grep -qw -- "${file##*/}" "${file%/*}/CMakeLists.txt" \
        || echo "$file:1: not in ${file%/*}/CMakeLists.txt" >> "$findings"
done

# Words that have no place in the source; each line of the list is one pattern.
while IFS= read -r word; do
    case $word in '' | '#'*) continue ;; esac
    look "unwanted: $word" "$word" "${text[@]}"
done < tools/unwanted.txt

# Rooms. Arrows run one way, from a higher rank to a lower one. Features know each other by plain
# headers only: never a form, never a header that declares a widget. Both panes share one view
# and one base class.
widget='^class .*public Q\w*(Widget|Dialog|View|Box|Bar|Button|Edit|Label|Window)\b'
foreign_includes() # ROOM: lines "file:line include"
{
    mapfile -t sources < <(printf '%s\n' "${cpp[@]}" | grep "^src/$1/")
    [ ${#sources[@]} -gt 0 ] || return 0
    grep -nHoP '^#include "\K[^"]+' "${sources[@]}" | awk -F: -v room="$1/" \
        'index($3, room) != 1 && $3 ~ /\// { print $1 ":" $2 " " $3 }'
}
for room in common ftp; do
    foreign_includes "$room" | awk -v room="$room" \
        '{ print $1 ": room " room " must not include " $2 }' >> "$findings"
done
declare -A rank=([remote]=1 [dialogs]=1 [local]=2 [connections]=2 [fileops]=2 [transfer]=3)
for room in "${!rank[@]}"; do
    while read -r place header; do
        if [ "${rank[${header%%/*}]:-0}" -ge "${rank[$room]}" ]; then
            echo "$place: room $room must not include $header, the arrow runs back" >> "$findings"
        fi
        case $header in
            common/* | ftp/* | remote/paneview.h | remote/filepane.h) ;;
            app/*) echo "$place: room $room must not include $header" >> "$findings" ;;
            */frm*) echo "$place: room $room must not include the form $header" >> "$findings" ;;
            *)
                if [ ! -e "src/$header" ]; then
                    echo "$place: no src/$header" >> "$findings"
                elif grep -qP "$widget" "src/$header"; then
                    echo "$place: room $room must not include the widget $header" >> "$findings"
                fi
                ;;
        esac
    done < <(foreign_includes "$room")
done
# Files ftp*.* are the facade.
mapfile -t engine < <(printf '%s\n' "${cpp[@]}" | grep '^src/ftp/' | grep -v '^src/ftp/ftp')
look "the engine must not use Qt" '#include <Q' "${engine[@]}"
mapfile -t common < <(printf '%s\n' "${cpp[@]}" | grep '^src/common/')
look "common uses Qt Core only" \
    '#include <(QtWidgets|QtGui|QWidget|QApplication|QGuiApplication|QMessageBox|QIcon|QColor|QClipboard)' "${common[@]}"

# The main window builds and forwards; it is the file that grows when nobody looks.
for file in src/app/frm_tarvelo.cpp src/app/frm_tarvelo.h; do
    [ ! -e "$file" ] || [ "$(wc -l < "$file")" -lt 1000 ] || echo "$file:1: 1,000 lines or more" >> "$findings"
done

if [ -s "$findings" ]; then
    sort -u "$findings"
    echo "$(sort -u "$findings" | wc -l) findings"
    exit 1
fi
echo "style: ${#text[@]} files are in order"
