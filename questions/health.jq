# What is wrong on this host? Everything that deserves a look, worst first, a line each: WORD: what it is. Or
# "Nothing found".
#
#     tarnask health [--drops N] [--full PERCENT] [--asserts N] [--denied N] [--rejected N] [--without WORD,...] [FILE...]
#
# --drops N      packets dropped at a stage for a port: from N on (100)
# --full N       tables, heaps and pools that are nearly full: from N percent on (90)
# --asserts N, --denied N, --rejected N
#                failed asserts, denied allocations, rejected addresses: from N on (1)
# --without W,.. leave these words out
#
# Exit value: 1 when something was found, 0 when nothing was.
include "tarn" {search: "./"};
include "findings" {search: "./"};
include "asking" {search: "./"};

(reduce (usual_thresholds | keys[]) as $key (usual_thresholds;
    if $ARGS.named[$key] then .[$key] = ($ARGS.named[$key] | number) else . end)) as $least
| ($ARGS.named.without // "" | split(",")) as $without
| ask({found: 1, nothing: 0};
    if has("ports") or has("card") or .capture != null then
        [host_findings($least) | select(.word | IN($without[]) | not)]
        | if . == [] then nothing else .[] | finding_line end
    else cannot_answer("has neither ports nor a card") end;
    empty)
