# For the tests in bash: `failures` is how many checks did not hold.
failures=0

check() { # WHAT EXPECTED SEEN
    [ "$2" = "$3" ] && return
    printf 'FAILED: %s\n expected: %s\n seen:     %s\n' "$1" "$2" "$3"
    failures=$((failures + 1))
}
