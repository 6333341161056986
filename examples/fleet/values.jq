# Every value of a capture by its path, a line each: "ports/22/link TAB "up"". Counters and ages, which never
# stand still, are left out.
#
#     jq -r -f values.jq captures/host1.json

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

def lines($path; $list):
    if type == "object" then
        moving($list) as $moving
        | to_entries[] | select(.key | IN($moving[]) | not)
        | .key as $key | .value | lines($path + "/" + $key; $key)
    elif type == "array" and (.[0] | type) == "object" then
        names($list) as $names
        | range(length) as $place | .[$place] | lines($path + "/" + $names[$place]; $list)
    else "\($path[1:] | gsub("[\t\n]"; " "))\t\(tojson)" end;

del(.traffic, .drops, .multicast_drops, .flood_drops, .heaps, .memory_pools, .asserts)
| lines(""; "")
