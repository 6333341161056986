# What is different in a capture, a line a value. Counters and ages, which never stand still, are left out.
#
#     jq -rn --slurpfile old old/host1.json --slurpfile new new/host1.json -f changes.jq

def standing:
    del(.traffic, .drops, .multicast_drops, .flood_drops, .heaps, .memory_pools, .asserts,
        .card.krt_uptime, .card.versions.word, .acls[]?["permitted", "denied", "unmatched"],
        .l2["now", "flow_entries", "vnic_entries", "aged", "rejected"],
        .l2.tables[]?.announced, .l2.tables[]?.entries[]?["age", "slot"]);

# What tells the elements of a list apart.
def name_of: .ltl // .index // .bridge_domain // .mac // .group // .id // .name // "";

# Every value by its path: {"ports/22/link": "up"}.
def values($path):
    if type == "object" then to_entries[] | .key as $key | .value | values($path + [$key])
    elif type == "array" and (.[0] | type) == "object" then
        .[] | (name_of | tostring) as $name | values($path + [$name])
    else {key: ($path | join("/")), value: tojson} end;
def table: [standing | values([])] | from_entries;

($old[0] | table) as $before
| ($new[0] | table) as $after
| $before + $after | keys[]
| select($before[.] != $after[.])
| "\(.): \($before[.] // "default") -> \($after[.] // "default")"
