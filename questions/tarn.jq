# A host file in jq: ports, bridge domains, counters and texts, whatever form the file gives them. All
# questions include this module, and so do scripts of one's own:
#
#     jq -r -L questions 'include "tarn"; port("web-5.eth0") | .vlans' host.json
#
# The input of the functions without arguments is what their comment says, of the others a host file.

# --- Numbers ---

# Numbers below 2^53 are jq's own. jq rounds what is above, so such a counter is a text of its digits:
# tarnask hands it over as one, and these functions compute with both. A pair is [number / 10^9, the rest].
def exact_limit: 9007199254740992;

def pair_of_digits($base):
    reduce (ascii_downcase | explode[]) as $digit ([0, 0];
        (.[1] * $base + (if $digit > 96 then $digit - 87 else $digit - 48 end)) as $low
        | [.[0] * $base + ($low / 1000000000 | floor), $low % 1000000000]);

# REQUIRES: a number, or a text with one in C notation
def pair:
    # The rest of a number beyond 2^53, which jq has rounded, may be too much or too little.
    if type == "number" then (. / 1000000000 | floor) as $high
        | [$high, ([0, . - $high * 1000000000, 999999999] | sort[1])]
    elif test("^0[xX][0-9a-fA-F]{1,16}$") then .[2:] | pair_of_digits(16)
    elif test("^0[0-7]{0,22}$") then pair_of_digits(8)
    elif test("^[0-9]{1,20}$") then pair_of_digits(10)
    else error("no number") end;

def from_pair:
    (.[0] * 1000000000 + .[1]) as $number
    | if $number < exact_limit then $number
      else (.[1] | tostring) as $low | "\(.[0])" + "000000000"[($low | length):] + $low end;

# A number of the host file; 0 for one that is left out.
def number: if type == "number" then . elif . == null then 0 else pair | from_pair end;

def plus($other): (pair as $a | $other | pair as $b | $a[1] + $b[1]) as $low
    | [(pair[0] + ($other | pair[0]) + ($low / 1000000000 | floor)), $low % 1000000000] | from_pair;

def is_below($other): pair < ($other | pair);

# REQUIRES: $other is not above the input
def minus($other): (pair[1] - ($other | pair[1])) as $low
    | (pair[0] - ($other | pair[0])) as $high
    | if $low < 0 then [$high - 1, $low + 1000000000] else [$high, $low] end | from_pair;

# Near enough to compare sizes.
def rounded: pair | .[0] * 1000000000 + .[1];

# A list of numbers, which may be a text such as "1,10-20", in rising order. Where the driver refuses the
# list, null, it is empty: so the displays take it.
def numbers:
    if . == null then []
    elif type == "array" then
        unique | if all(.[0], .[-1]; . == null or type == "number") then . else map(number) | unique end
    else [split(",")[] | split("-") | map(number)
          | if length > 2 or .[-1] - .[0] > 65536 then error("no range") else range(.[0]; .[-1] + 1) end]
         | unique end;

# The other way: "1,10-20".
def range_text:
    reduce .[] as $n ([]; if length > 0 and .[-1][1] + 1 == $n then .[-1][1] = $n else . + [[$n, $n]] end)
    | map(if .[0] == .[1] then "\(.[0])" else "\(.[0])-\(.[1])" end) | join(",");

# --- Texts ---

# A text that can be shown: control characters, characters that turn the direction of what follows, and bytes
# that were no UTF-8 stand as "\x1b" and "\u202e". Names come from the driver, which may say anything.
def text:
    def hex($digits): [range($digits) as $i | . / pow(16; $digits - 1 - $i) | floor % 16]
        | map("0123456789abcdef"[.:. + 1]) | add;
    tostring
    | if test("[\\x00-\\x1f\\x7f-\\x{9f}\\x{ad}\\x{61c}\\x{200b}-\\x{200f}\\x{2028}-\\x{202e}\\x{2060}-\\x{2069}"
        + "\\x{ef80}-\\x{efff}\\x{feff}]") | not
      then .
      else [explode[]
            | if . < 32 or (. >= 127 and . < 160) then "\\x\(hex(2))"
              elif . >= 61312 and . < 61440 then "\\x\(. - 61184 | hex(2))"
              elif . == 173 or . == 1564 or (. >= 8203 and . <= 8207) or (. >= 8232 and . <= 8238)
                  or (. >= 8288 and . <= 8297) or . == 65279 then "\\u\(hex(4))"
              else [.] | implode end] | add end;

# --- What was asked ---

# The keys that a capture was told to ask for; null for all of them, or where the file does not say.
def asked_keys: .capture.keys;

# Whether the file says something of a key. A capture that does not say what it was asked may have left
# out a key that has its default, or was not asked for it: then nothing is known.
def is_known($key):
    if .capture == null then has($key) elif .capture.keys == null then true
    else .capture.keys | index($key) != null end;

# Seconds since 1970 at which the capture began; null where the file does not say.
def capture_time: .capture.time | if . == null then null else fromdateiso8601 end;

# --- Ports ---

# A flag that is set; what a driver said beyond true is its number.
def flag: . == true or (type == "number" and . != 0);

def is_uplink: .ltl >= 18 and .ltl <= 49;
def is_virtual: .ltl >= 50 and .ltl <= 1039;
def is_port_channel: .ltl >= 1040 and .ltl <= 1047;
def is_up: .admin == "up" and .link == "up";

# The keys of a view of a port, each with one type and its default; null for a sub-group that is none.
def view:
    def up_or_down: if . == "up" then "up" else "down" end;
    def sub_group: if . == null or . == "none" then null else number | if rounded <= 31 then . else null end end;
    # One object: jq takes its time over each key that is assigned by itself.
    . + {
        known: (.known != false),
        interface: (.interface_name // .interface // "" | tostring), name: (.name // ""), device: (.device // ""),
        admin: (.admin | up_or_down), link: (.link | up_or_down), forwarding: (.forwarding | flag),
        # A VLAN mode beyond true is none, but makes an entry that is not empty.
        may_be_empty: (.may_be_empty == true and (.vlan_mode | flag | not)), vlan_mode: (.vlan_mode == true),
        mode: (.mode // "none"), error: (.error // "none"),
        has_vlans: (.vlans != null or (has("vlans") | not)),
        vlans: (.vlans | numbers), forwards_on: (.forwards_on | numbers),
        port_channel: (.port_channel | number), segment: (.segment | number),
        sub_group_a: (.sub_group_a | sub_group), sub_group_b: (.sub_group_b | sub_group),
        leaf_sub_group: (.leaf_sub_group | . == true or . == 1),
        vxlan: (.vxlan | flag), vmotion: (.vmotion | flag), l3_service: (.l3_service | flag),
        leaf_block: (.leaf_block // "none"), leaf_wait: (.leaf_wait // "none")
    };

# The ports of a host, in the order of their LTLs, in the HMX's own view. `known` is false for one that this
# view has no record of. `krt` and `system` are what those views have, null where that is nothing of their own.
def ports: [.ports[]? | . + {ltl: (.ltl | number)}] | sort_by(.ltl)[] | view;

# An entry that nothing was ever configured on, which the displays leave out.
def is_empty: .may_be_empty and (.mode != "virtual" or .admin == "up" or .link == "up"
    or .port_channel != 0 or .forwarding or .name != "" | not);

# The ports that "show port" has a row for.
def shown_ports: ports | select(.known and .ltl >= 18 and (is_port_channel or (is_empty | not)));

# The ports of an LTL, an interface or a name: one, but nothing keeps a host from having two of a name.
def port($which):
    (try ($which | number) catch null) as $ltl
    | ports
    | select(.ltl == $ltl or (.name != "" and (.name == $which or (.name | text) == $which))
        or (.interface != "" and (.interface | ascii_downcase) == ($which | tostring | ascii_downcase)));

# How a port is called in an answer: "web-5.eth0 (LTL 64)", and shorter.
def name: if .name != "" then .name elif .interface != "" then .interface else "LTL \(.ltl)" end | text;
def title: if .name == "" and .interface == "" then name else "\(name) (LTL \(.ltl))" end;

# --- Bridge domains ---

def bridge_domain_record:
    . + {
        index: (.index | number), known: (.known != false), name: (.name // ""), vlan: (.vlan | number),
        segment: (if .segment == null then null else .segment | number end),
        kind: (.kind // if .segment != null then "segment" else "vlan" end),
        native: (.native == null or (.native | flag)),
        has_members: (.members != null or (has("members") | not)), members: (.members | numbers)
    };

# The bridge domains, in the order of their indexes. `has_members` is false where the driver refuses them.
def bridge_domains: [.bridge_domains[]?] | map(bridge_domain_record) | sort_by(.index)[];

# A bridge domain by what it has: {vlan: 10}, {segment: 5001}, {index: 2} or {name: "web"}.
def bridge_domain($has):
    bridge_domains | select(.known and [.[$has | keys_unsorted[]]] == [$has[]])
    | select($has.vlan == null or .kind == "vlan");

# Those that a port's VLANs and its segment are. The input is a host, the argument one of its ports.
def bridge_domains_of($port):
    bridge_domains | select(.known)
    | select(if .kind == "segment" then .segment == $port.segment and $port.segment != 0
             else .vlan as $vlan | $port.vlans | index($vlan) != null end);

# How a network is called: "VLAN 10", "segment 5001".
def network: if .kind == "segment" then "segment \(.segment)" elif .vlan != 0 then "VLAN \(.vlan)"
    else "bridge domain \(.index)" end;

# --- Counters ---

def traffic_counters: ["received", "received_bytes", "sent", "sent_bytes", "transmit_floods", "receive_drops",
    "transmit_drops"];

# The traffic of ports, as "show stats" goes through them: {ltl, port, and a number for each counter}. One that the
# driver refuses is left out.
def traffic_of(ports):
    (reduce .traffic[]? as $traffic ({}; .[$traffic.ltl | number | tostring] = $traffic)) as $by_ltl
    | ports | select(.ltl > 0)
    | . as $port | $by_ltl[.ltl | tostring] | select(.known != false)
    | . as $counted
    | reduce traffic_counters[] as $counter ({ltl: $port.ltl, $port}; .[$counter] = ($counted[$counter] | number));
def traffic: traffic_of(ports);

# The stages that are shown, {key, name}: `key` is what the drops at it stand under. A capture that was not asked
# for them has those that drops stand under.
def stages:
    if is_known("stages") | not then
        [(.drops[]?, .multicast_drops, .flood_drops) | objects | keys_unsorted[] | select(test("^[0-9]+$"))]
        | unique_by(tonumber)[] | {key: ., name: "stage \(.)"}
    else [.stages[]?] | to_entries[]
    | select(.key <= 40 and (.value.present == null or (.value.present | flag)))
    | {key: (.key | tostring), name: (.value.name // "")} end;

# What a record of drops counts, [{key, name, count}], the stages at which nothing was dropped too.
def stage_drops($stages):
    . as $drops | [$stages[] | select($drops[.key] != null) | {key, name, count: ($drops[.key] | number)}];

# The drops of ports, {ltl, stages: [{key, name, count}]}.
def drops:
    [stages] as $stages
    | .drops[]? | select(.known != false) | {ltl: (.ltl | number), stages: stage_drops($stages)};
