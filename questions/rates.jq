# What is this host doing? Packets, bytes and drops a second between two captures of it, in the columns of
# "show stats", top talkers first; then the drops by stage. Ports on which nothing moved are left out.
#
#     tarnask rates [--seconds N] [--total] OLD NEW
#
# --seconds N    the time between the captures, where they do not say when they were made
# --total        what was counted in between instead of a second, to the digit
#
# A port one of whose counters went back has no rate, but a line that says so.
# Exit value: 0.
include "tarn" {search: "./"};
include "asking" {search: "./"};

# Filled up with blanks before it, or after it.
def blanks($count): if $count > 0 then " " * $count else "" end;
def left($width): blanks($width - length) + .;
def right($width): . + blanks($width - length);

# REQUIRES: less than 100 days of seconds, so that a rest times 10^9 is exact
def a_second($seconds):
    pair as [$high, $rest]
    | ($high % $seconds * 1000000000 + $rest) as $low
    | ([($high / $seconds | floor), ($low / $seconds | floor)] | from_pair) as $whole
    | ($low % $seconds / $seconds) as $rest
    | ($whole | rounded + $rest) as $rate
    | if $rate >= 100 then $whole | plus(if $rest >= 0.5 then 1 else 0 end) | tostring
      elif $rate > 0 and $rate < 0.001 then "<0.001"
      else (if $rate >= 10 then 10 elif $rate >= 1 then 100 else 1000 end) as $precision
        | $rate * $precision | round / $precision | tostring end;

def seconds($old; $new):
    if $ARGS.named.seconds then $ARGS.named.seconds | number
    elif ($old | capture_time) and ($new | capture_time) then
        ($new | capture_time) - ($old | capture_time)
        | if . > 0 then . else cannot_answer("NEW is not later than OLD") end
    elif $ARGS.named.total then null
    else cannot_answer("the captures do not say when they were made; give --seconds N") end
    | if . != null and . >= 8640000 then cannot_answer("100 days or more are between the captures") else . end;

# The counters of two times: {difference}, or {reset} with one that went back.
def compared($old; $new):
    [$new | keys_unsorted[] | select(. as $key | $new[$key] | is_below($old[$key] // 0))][0] as $back
    | if $back then {reset: "its counters were reset: \($back | gsub("_"; " ")) \($old[$back]), then \($new[$back])"}
      else {difference: ($new | with_entries(.key as $key | .value |= minus($old[$key] // 0)))} end;

def by_ltl(f): reduce f as $item ({}; .[$item.ltl | tostring] = $item);
def counters: . as $traffic | reduce traffic_counters[] as $key ({}; .[$key] = $traffic[$key]);

# Whether the drops were asked for. A host that dropped nothing has none, but it has stages.
def knows_drops: is_known("drops") or .capture == null and has("stages");

# The drops of the ports, and of what belongs to none: {ltl, counts: {STAGE: number}}.
def all_drops:
    [stages] as $stages
    | (drops, ({Mcast: .multicast_drops, Flood: .flood_drops} | to_entries[] | select(.value != null)
               | {ltl: .key, stages: (.value | stage_drops($stages))}))
    | {ltl, counts: (reduce .stages[] as $stage ({}; .[$stage.name] |= ((. // 0) | plus($stage.count))))};

ask({found: 0, nothing: 0};
    . as [$old, $new]
    | (if any(.[]; is_known("traffic") | not) then cannot_answer("a capture has no traffic; was it asked for it?")
       elif any(.[]; is_known("ports") | not) then cannot_answer("a capture has no ports; was it asked for them?")
       elif [.[].card.uuid? // "" | select(. != "")] | unique | length > 1 then cannot_answer("these are two hosts")
       else seconds($old; $new) end) as $seconds
    | def shown: if $ARGS.named.total then tostring else a_second($seconds) end;
      ($old | by_ltl(traffic)) as $before
    | ($old | by_ltl(ports)) as $ports_before
    | ($old | by_ltl(all_drops)) as $drops_before
    # Of what was refused before, or not asked for, nothing can be said here, either.
    | (if $old | knows_drops then [$old.drops[]? | select(.known == false) | .ltl | number | tostring] else null end)
      as $refused
    | ($new | by_ltl(ports)) as $ports
    # A port that is new has counted from 0; of one whose counters were refused before nothing can be said.
    | [$new | traffic
       | select($before[.ltl | tostring] or ($ports_before[.ltl | tostring] | not))
       | ($before[.ltl | tostring] // {port}) as $earlier
       | {ltl, port} + if ($earlier.port | title) == (.port | title) then compared($earlier; counters)
                       else {reset: "another port before, \($earlier.port | title)"} end] as $rows
    | (reduce $rows[] as $row ({}; .[$row.ltl | tostring] = $row.reset)) as $is_reset
    | [$new | all_drops | (.ltl | tostring) as $ltl
       | select($drops_before[$ltl] or $ports[$ltl] and $refused and ($refused | index($ltl) == null))
       | select($ports[$ltl] and ($is_reset[$ltl] | not) or ($ltl | test("^[MF]")))
       | {ltl, name: ($ports[$ltl] | if . then .name | text else "" end)}
         + compared($drops_before[$ltl].counts // {}; .counts)] as $drops
    | [$drops[] | select(.difference) | . as $row | .difference | to_entries[] | select(.value != 0)
       | {count: .value, ltl: $row.ltl, stage: .key, name: $row.name}] as $drops_by_stage
    | if $ARGS.named.total then "In all\(if $seconds then ", in \($seconds) seconds" else "" end):"
      else "A second, over \($seconds) seconds:" end,
      "  LTL  Received        Bytes      Sent        Bytes   Txflood    Rxdrop    Txdrop  Name",
      ([$rows[] | select(.difference | . != null and any(.[]; . != 0))]
       | sort_by(-(.difference.received_bytes | rounded) - (.difference.sent_bytes | rounded), .ltl)[]
       | . as $row
       | [[.ltl, 5], (["received", 9], ["received_bytes", 12], ["sent", 9], ["sent_bytes", 12], ["transmit_floods", 9],
                      ["receive_drops", 9], ["transmit_drops", 9] | .[0] |= ($row.difference[.] | shown))]
       | map(.[1] as $width | .[0] | tostring | left($width)) | join(" ") + "  \($row.port.name | text)"),
      if $drops_by_stage == [] then empty else "", "  LTL     Drops  Stage                 Name" end,
      ($drops_by_stage | sort_by(-(.count | rounded))[]
       | "\(.ltl | tostring | left(5)) \(.count | shown | left(9))  \(.stage | text | right(21)) \(.name)"
       | sub(" +$"; "")),
      (($rows, $drops)[] | select(.reset)
       | (if .port then .port elif .ltl | type == "number" then $ports[.ltl | tostring] else null end) as $port
       | "\(if $port then $port | title else .ltl end): \(.reset | text)");
    empty)
