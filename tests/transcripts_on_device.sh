#!/usr/bin/env bash
# Run the transcripts on a program through the real device file.
# Usage: transcripts_on_device.sh UNIT_TESTS TARNLAB TARNCMD
# Exits 77 (skipped) when the device file or the program cannot be had.
set -u
unit_tests=$1 lab=$2 program=$3

if [ ! -x "$program" ]; then
    echo "skipped: $program is not built"
    exit 77
fi
root=$(dirname "$0")/..
if [ -n "$(find "$root"/{frontend,dpa,infra,if_index,handlers} -newer "$program" -name '*.cpp' -print -quit)" ]; then
    echo "skipped: $program is older than its sources"
    exit 77
fi
if ! reason=$("$lab" --device --host "$(dirname "$0")/hosts/empty.json" true 2>&1); then
    echo "skipped: $reason"
    exit 77
fi
echo "transcripts through the device file, on $program"
TARN_COMMAND="$lab --device --host {host} --trace {trace} $program" \
    exec "$unit_tests" --gtest_brief=1 '--gtest_filter=*Transcript*'
