# What is different between two captures: "PATH: OLD -> NEW", where "default" stands for what a capture does not
# say. Counters and ages, which never stand still, are left out.
#
#     tarnask changes OLD NEW    two captures, or two folders with a capture of each host
#
# Exit value: 1 when something is different, 0 when nothing is.
include "tarn" {search: "./"};
include "asking" {search: "./"};

def moving($list): {card: ["krt_uptime"], versions: ["word"], acls: ["permitted", "denied", "unmatched"],
    l2: ["now", "flow_entries", "vnic_entries", "aged", "rejected"], tables: ["announced"],
    entries: ["age", "slot"]}[$list] // [];

# What tells the elements of a list apart.
def keys_of($list): {entries: ["mac"], multicast: ["group"], private_vlans: ["ltl", "vlan"],
    bridge_domains: ["index"], tables: ["bridge_domain"], acls: ["id", "name"],
    overrides: ["opcode", "argument", "in", "time"]}[$list] // ["ltl"];

# Of equal names all but the first have their number.
def names($list):
    keys_of($list) as $keys
    | [.[] | [.[$keys[]] | select(. != null) | tostring] | join(" ")]
    | to_entries | group_by(.value)
    | [.[] | to_entries[] | .value + {copy: .key}]
    | sort_by(.key)
    | map(if .copy == 0 and .value != "" then .value else "\(.value)#\(.copy + 1)" end);

# Every value by its path, {path, value}: "ports/22/link" and "\"up\"".
def values($path; $list):
    if type == "object" then
        moving($list) as $moving
        | to_entries[] | select(.key | IN($moving[]) | not)
        | .key as $key | .value | values($path + "/" + $key; $key)
    elif type == "array" and (.[0] | type) == "object" then
        names($list) as $names
        | range(length) as $place | .[$place] | values($path + "/" + $names[$place]; $list)
    else {path: $path[1:], value: tojson} end;

def values:
    del(.capture, .traffic, .drops, .multicast_drops, .flood_drops, .heaps, .memory_pools, .asserts)
    | reduce values(""; "") as $item ({}; .[$item.path] = $item.value);

ask({found: 1, nothing: 0};
    if .[0] == null then "is new"
    elif .[1] == null then "is gone"
    else map(values) as [$old, $new]
        | ($old + $new | keys[]) | select($old[.] != $new[.])
        | "\(text): \($old[.] // "default" | text) -> \($new[.] // "default" | text)"
    end;
    empty)
