# What is wrong on this host? Everything that deserves a look, worst first, a line each: WORD: what it is. Or
# "Nothing found".
#
#     tarnask health [OPTION...] [FILE...]
#
# --drops N      packets dropped at a stage for a port: from N on (100)
# --full N       tables, heaps and pools that are nearly full: from N percent on (90)
# --asserts N, --denied N, --rejected N
#                failed asserts, denied allocations, rejected addresses: from N on (1)
# --only WORD,..., --without WORD,...
#                these words only, all but these
#
# Exit value: 1 when something was found, 0 when nothing was.
include "tarn" {search: "./"};
include "findings" {search: "./"};
include "asking" {search: "./"};

(reduce (usual_thresholds | keys[]) as $key (usual_thresholds;
    if $ARGS.named[$key] then .[$key] = ($ARGS.named[$key] | number) else . end)) as $least
| ($ARGS.named.only // (words | join(",")) | split(",")) as $only
| ($ARGS.named.without // "" | split(",")) as $without
| (($only + $without - words)[0] | select(.) | "tarnask: health knows no word \(text)\n" | halt_error(2)),
ask({found: 1, nothing: 0};
    if has("ports") or has("card") or .capture != null then
        asked_text as $asked
        | [host_findings($least) | select(.word | IN($only[]) and (IN($without[]) | not))]
        | if . == [] then nothing($asked) else .[] | finding_line end
    else cannot_answer("it has neither ports nor a card") end;
    empty)
