# What is wrong on a host, as `why` and `health` tell it: a stream of
#
#     {word, ltl, text, count, command}
#
# `word` is one of `words`. `ltl` is the port that it is about, null for none. `text` says it in the words of an
# operator, without a number that changes from host to host or from hour to hour: that one is in `count`, null
# where there is none. `command` are the words of tarncmd that show it, null for what the capture says of itself.
include "tarn" {search: "./"};

# Worst first.
def words: [
    "capture-cut", "version-mismatch", "datapath-down", "agent-down", "no-heartbeat", "upgrade-aborted",
    "asserts", "heap-pointers", "heap-denied",
    "port-channel-down", "uplink-down", "uplink-missing", "vlan-not-on-uplink", "vtep-down",
    "err-disabled", "leaf-blocked", "leaf-wait", "not-forwarding",
    "no-vlan", "vlan-missing", "no-bridge-domain", "vlan-blocked", "not-member",
    "mac-on-two-ports", "address-dropped", "member-differs", "lacp-down", "krt-differs",
    "table-full", "table-nearly-full", "heap-nearly-full", "pool-nearly-full",
    "drops", "link-down", "admin-down", "no-address", "unknown"];

def set: reduce .[] as $key ({}; .[$key | tostring] = true);
def only($set): map(select($set[tostring]));
def without($set): map(select($set[tostring] | not));

# --- The host as the findings need it: things by their number, sets as objects ---

# The sub-group that a virtual port is pinned to, null for none.
def pinned_to($leaf): if .mode == "virtual" and (($leaf | not) or .leaf_sub_group) then .sub_group_b else null end;

# The VLANs of a port on which it forwards and on which it is blocked, as "show port vlans" has them. $by_vlan
# are the bridge domains by VLAN, null where they are not known.
def with_forwarding($leaf; $by_vlan):
    (if .vlan_mode | not then if .forwarding then .vlans else [] end
     elif $leaf and (.mode == "uplink" or .mode == "leaf") then .vlans
     elif $by_vlan then .forwards_on | only($by_vlan) else .forwards_on end) as $forwards
    | (if .vlans == $forwards then [] else ($forwards | set) as $set | .vlans | without($set) end) as $blocked
    | . + {$forwards, $blocked, does_forward: ($forwards != [] or ($blocked == [] and .forwarding))};

def indexed:
    (.card.leaf_mode | flag) as $leaf
    | [bridge_domains | select(.known) | .has_member = (.members | set)] as $domains
    # No segment that VXLAN carries: "show port vlans" does not look at it either.
    | (reduce ($domains[] | select(.kind != "segment" or .native)) as $domain
        ({}; .[$domain.vlan | tostring] //= $domain)) as $by_vlan
    | [ports | with_forwarding($leaf; if is_known("bridge_domains") then $by_vlan else null end)] as $ports
    | {
        leaf: $leaf, by_vlan: $by_vlan,
        knows_domains: is_known("bridge_domains"),
        knows_vlans: (is_known("vlans") and ((has("vlans") | not) or .vlans != null)),
        knows_addresses: is_known("l2"),
        vlans: (.vlans | numbers | set),
        by_segment: (reduce ($domains[] | select(.kind == "segment")) as $domain
            ({}; .[$domain.segment | tostring] //= $domain)),
        by_index: (reduce $domains[] as $domain ({}; .[$domain.index | tostring] = $domain)),
        ports: (reduce $ports[] as $port ({}; .[$port.ltl | tostring] = $port)),
        # As "show pc" lists them; where that was not asked for, as the ports say.
        members: (reduce (if is_known("port_channels") then .port_channels[]? | {channel: .ltl, ltl: .members[]?.ltl}
                          else $ports[] | select(.port_channel != 0) | {channel: .port_channel, ltl} end) as $member
            ({}; .[$member.channel | number | tostring] += [$member.ltl | number])),
        lacp: (if .port_channel_mode | . == "lacp-active" or . == "lacp-passive" then .lacp else null end),
        pinned: (reduce ($ports[] | select(.known) | pinned_to($leaf) | select(. != null)) as $group
            ({}; .[$group | tostring] += 1)),
        # Of each port, [{ltl, mac, drop, domain}].
        addresses: ([.l2.tables[]? | (.bridge_domain | number) as $domain | .entries[]? | {ltl: (.ltl | number), mac, drop, $domain}]
            | group_by(.ltl) | map({(.[0].ltl | tostring): .}) | add // {}),
        drops: (reduce drops as $drops ({}; .[$drops.ltl | tostring] = $drops.stages)),
        traffic: (reduce traffic_of($ports[]) as $traffic ({}; .[$traffic.ltl | tostring] = $traffic))
      }
    | .member_of = (reduce (.members | to_entries[] | {key, ltl: .value[]}) as $member ({}; .[$member.ltl | tostring] = $member.key))
    # What a port can go out through.
    | . as $host
    | [$ports[] | select(.known and (is_empty | not) and (is_uplink or (is_port_channel and ($host.members[.ltl | tostring] // []) != [])))
        | .has_vlan = (.vlans | set) | .forwards_vlan = (.forwards | set)] as $ways
    | .ways = $ways | .uplinks = [$ways[] | select(is_uplink)];

def port_of($h; $ltl): $h.ports[$ltl | tostring] // {ltl: $ltl, name: "", interface: "", known: false, vlans: []};

# The command that shows the addresses of a bridge domain.
def address_command: if .kind == "segment" then "show l2 segment \(.segment)"
    elif .vlan != 0 then "show l2 \(.vlan)" else "show l2 all" end;

# "VLAN 10", "VLANs 10,20-29", at most so many characters of them.
def vlans_text:
    range_text as $text
    | "VLAN\(if length == 1 then "" else "s" end) "
    + if ($text | length) <= 60 then $text else ($text[:60] | sub(",[^,]*$"; "")) + ",... (\(length))" end;

def finding($word; $text; $count; $command): {word: $word, ltl, text: "\(title) \($text)", count: $count, command: $command};
def finding($word; $text; $command): finding($word; $text; null; $command);

# --- One port ---

# Why "show port" says BLK; null where it says something else or gives no cause.
def error_cause($leaf): if .forwarding or .vlan_mode or $leaf or .error == "none" then null else .error end;

# The same of a port in leaf mode.
def leaf_cause:
    if .forwarding or .vlan_mode then null
    elif .leaf_block == "bpdu" or .leaf_block == "zero-mac" then .leaf_block
    elif .leaf_wait == "ack" or .leaf_wait == "policy" then .leaf_wait
    else null end;

# And in the words of an operator.
def leaf_state:
    {bpdu: ["leaf-blocked", "is blocked, since a BPDU came in"], "zero-mac": ["leaf-blocked", "is blocked, since its MAC address is zero"],
     ack: ["leaf-wait", "waits for an acknowledgement"], policy: ["leaf-wait", "waits for the policy of its endpoint group"]}[leaf_cause // "none"]
    // ["not-forwarding", "does not forward"];

# Whether it works at all: the first obstacle alone, since the others follow from it. $usable are those of its
# VLANs that the host has bridge domains for.
def state_findings($h; $usable):
    if .known | not then finding("unknown"; "has no record in the HMX"; "show port")
    elif is_up | not then
        (if is_uplink and .mode == "uplink" and $h.pinned[.sub_group_a | tostring] then
            $h.pinned[.sub_group_a | tostring] | "\(.) port\(if . == 1 then " is" else "s are" end) pinned to it" else null end) as $pinned
        | (if is_port_channel then "port-channel-down"
           elif is_uplink and (.admin == "up" or .port_channel != 0 or $pinned) then "uplink-down"
           elif .admin != "up" then "admin-down" else "link-down" end) as $word
        | finding($word; if .admin != "up" then "is disabled" else "has no link" end; $pinned; "show port")
    elif .does_forward then empty
    elif error_cause($h.leaf) then finding("err-disabled"; "is err-disabled by \(.error | text)"; "show port")
    elif .vlan_mode then
        if .vlans != [] and $usable == [] then empty # told as what its VLANs lack
        else finding("not-forwarding"; "forwards on no VLAN\(if .error == "none" then "" else " (its record says: \(.error | text))" end)"; "show port vlans") end
    elif $h.leaf then leaf_state as [$word, $text] | finding($word; $text; "show port")
    elif .vlans != [] and $usable == [] then empty
    else finding("not-forwarding"; "does not forward"; "show port") end;

def vlan_findings($h; $usable):
    (if $h.knows_vlans then .vlans | without($h.vlans) else [] end) as $missing
    | (if ($missing + $usable | length) == (.vlans | length) then []
       else (if $missing == [] then .vlans else .vlans | only($h.vlans) end) | without($h.by_vlan) end) as $alone
    | ($usable | set) as $usable
    | (if .does_forward then .blocked | only($usable) else [] end) as $blocked
    | (.ltl | tostring) as $ltl
    | [.forwards | only($usable)[] | $h.by_vlan[tostring] | select(.has_members and (.has_member[$ltl] | not)) | .vlan] as $outside
    | (if $missing == [] then empty else finding("vlan-missing"; "has \($missing | vlans_text), which the host does not have"; "show vlan") end),
      (if $alone == [] then empty else finding("no-bridge-domain"; "has \($alone | vlans_text) without a bridge domain"; "show bd") end),
      (if .segment == 0 or ($h.knows_domains | not) or $h.by_segment[.segment | tostring] then empty
       else finding("no-bridge-domain"; "has segment \(.segment) without a bridge domain"; "show segment") end),
      (if .vlans == [] and .has_vlans and .segment == 0 and ($h.leaf | not)
       then finding("no-vlan"; "has neither a VLAN nor a segment"; "show port vlans") else empty end),
      (if $blocked == [] then empty else finding("vlan-blocked"; "is blocked on \($blocked | vlans_text)"; "show port vlans") end),
      (if $outside == [] then empty
       else finding("not-member"; "is not among the ports of \($outside | vlans_text)"; "show vlan \($outside[0])") end);

# A port channel without a member that is up.
def channel_findings($h):
    [$h.members[.ltl | tostring][]? | port_of($h; .)] as $members
    | if any($members[]; is_up) or ($members == [] and (.known and is_up | not)) then empty
      else finding("port-channel-down"; "has no member that is up"; "show pc") end;

# How a member of a port channel differs from what the channel is.
def member_findings($h; $channel):
    if .known | not then finding("member-differs"; "is a member of \($channel | title), but no port"; "show pc")
    elif .port_channel != $channel.ltl then
        finding("member-differs"; "is a member of \($channel | title), but not by its own record"; "show pc")
    elif ($channel.known | not) or .vlans == $channel.vlans then empty
    else
        (.vlans | set) as $here | ($channel.vlans | set) as $there
        | ([(.vlans | without($there) | select(. != []) | "besides has \(vlans_text)"),
            ($channel.vlans | without($here) | select(. != []) | "lacks \(vlans_text)")] | join(" and ")) as $difference
        | finding("member-differs"; "\($difference), unlike \($channel | title)"; "show port vlans")
    end;

# A member that LACP has not brought up. Collecting and distributing are the bits 0x10 and 0x20 of a state, in
# sync is 0x08.
def lacp_findings($h):
    . as $port
    | $h.lacp.uplinks[]? | select((.ltl | number) == $port.ltl)
    | if $h.lacp.offload == true then
        ((.state // "initialized") | select(. != "channeling") | "is \(text) in LACP")
      else .pdus.krt_actor | select(. != null) | .state | number | select((. / 8 | floor) % 8 != 7)
        | "is not in sync, collecting and distributing in LACP" end
    | . as $text | $port | finding("lacp-down"; $text; "show lacp \(.ltl)");

def address_findings($h):
    $h.addresses[.ltl | tostring] as $addresses
    | (if $addresses == null and $h.knows_addresses and is_up and .port_channel == 0 and $h.member_of[.ltl | tostring] == null
           and (.forwards != [] or .segment != 0 and .forwarding)
       then ([$h.by_vlan[.forwards[0] | tostring], $h.by_segment[.segment | tostring] | select(.)][0]
            | if . then address_command else "show l2 all" end) as $command
            | finding("no-address"; "has no address behind it"; $command)
       else empty end),
      (. as $port | [$addresses[]? | select(.drop == true)]
       | if . == [] then empty
         else ($h.by_index[.[0].domain | tostring] | if . then address_command else "show l2 all" end) as $command
            | (map(.mac | text) | join(", ")) as $macs | $port | finding("address-dropped"; "sends from \($macs), which is dropped"; $command) end);

def drop_findings($h; $least):
    ($h.drops[.ltl | tostring] // []) as $stages
    | ($h.traffic[.ltl | tostring] // {receive_drops: 0, transmit_drops: 0}) as $traffic
    | def many: is_below($least) | not;
      ($stages[] as $stage | select($stage.count | many)
        | finding("drops"; "drops packets at \($stage.name | text)"; $stage.count; "show port-drops ltl \(.ltl)")),
      (if all($stages[]; .count == 0) then
        (select($traffic.receive_drops | many) | finding("drops"; "drops packets that it receives"; $traffic.receive_drops; "show stats")),
        (select($traffic.transmit_drops | many) | finding("drops"; "drops packets instead of sending them"; $traffic.transmit_drops; "show stats"))
       else empty end);

# What of the KRT's view is not so in the HMX.
def krt_findings:
    . as $port
    | select(.krt != null) | ($port + .krt | view) as $krt
    | if $krt.known | not then finding("krt-differs"; "has no record in the KRT"; "show port krt")
      else ["admin", "link", "forwarding", "vlan_mode", "vlans", "forwards_on", "port_channel"]
        | map(select($port[.] != $krt[.])) | select(. != [])
        | (map(if . == "admin" or . == "link" then "\(.) \($krt[.])" else sub("_"; " ") end) | join(", ")) as $keys
        | $port | finding("krt-differs"; "differs in the KRT's view: \($keys)"; "show port krt") end;

# The way out of a virtual port: the uplinks of the sub-group that it is pinned to, else all uplinks and port channels
# that have one of its VLANs. Beside the rest of a finding, `group` and `vlans` are what `health` folds those of all
# ports by; without a group it is told of an uplink already.
def way_findings($h; $usable):
    def works: is_up and (is_uplink or any($h.members[.ltl | tostring][] | port_of($h; .); is_up));
    def titles: map(title) | join(", ");
    def with($group; $vlans): . + {group: $group, vlans: $vlans};
    pinned_to($h.leaf) as $pinned
    | [$h.ways[] | select(if $pinned != null then .mode == "uplink" and .sub_group_a == $pinned else .port_channel == 0 end)] as $all
    | [$all[] | select($pinned != null or (.has_vlan as $vlans | any($usable[]; $vlans[tostring])))] as $fit
    | (if $fit == [] then $all else $fit end) as $ways
    | [$ways[] | select(works)] as $up
    | [$usable[] | select(tostring as $vlan | any($up[]; .has_vlan[$vlan]) | not)] as $absent
    | [$usable[] | select(tostring as $vlan | any($up[]; .has_vlan[$vlan]) and (any($up[]; .forwards_vlan[$vlan]) | not))] as $blocked
    | def goes: "\(if $pinned != null then "is pinned to" else "goes out through" end) \(if $up == [] then $ways else $up end | titles)";
      if $ways == [] then
        (if $pinned == null then "no uplink is there" else "no uplink has sub-group \($pinned)" end) as $text
        | finding("uplink-missing"; "has no way out: \($text)"; "show port") | with($text; [])
      elif $up == [] then finding("uplink-down"; "\(goes), which \(if $ways | length == 1 then "is" else "are all" end) down"; "show port")
        | with(null; [])
      else
        (if $absent == [] then empty
         else finding("vlan-not-on-uplink"; "\(goes), without \($absent | vlans_text)"; "show port vlans") | with(if $pinned == null then "no uplink has" else "\($up | titles) without" end; $absent) end),
        (if $blocked == [] then empty
         else finding("vlan-not-on-uplink"; "\(goes), blocked there on \($blocked | vlans_text)"; "show port vlans") | with(if $pinned == null then "no uplink forwards on" else "\($up | titles) blocked on" end; $blocked) end)
      end,
      ([$ways[] | if is_port_channel then .ltl else .port_channel end | select(. != 0)] | unique[]
        | port_of($h; .) | channel_findings($h)),
      (if .segment != 0 and ($h.by_segment[.segment | tostring] | . != null and (.native | not))
            and (any($h.ports[]; .known and .vxlan and is_up) | not)
       then finding("vtep-down"; "is in segment \(.segment), and no VXLAN port is up"; "show port") | with("segments are carried in VXLAN, and no VXLAN port is up"; [])
       else empty end);

# All about a port, from itself outwards. $drops is the least number of drops that is told.
def port_findings($h; $drops):
    (if $h.knows_domains then .vlans | only($h.by_vlan) else .vlans end
     | if $h.knows_vlans then only($h.vlans) else . end) as $usable
    | state_findings($h; $usable),
      (if .known and (is_uplink or is_port_channel or .ltl < 18 | not) then
        vlan_findings($h; $usable), way_findings($h; $usable) else empty end),
      (if is_port_channel and .known then channel_findings($h),
        (. as $channel | $h.members[.ltl | tostring][]? | port_of($h; .) | member_findings($h; $channel), lacp_findings($h))
       elif .port_channel == 0 or (.known | not) then empty
       else port_of($h; .port_channel) as $channel | ($channel | channel_findings($h)), member_findings($h; $channel), lacp_findings($h) end),
      (if .known and .ltl >= 18 then address_findings($h) else empty end),
      drop_findings($h; $drops),
      (if .known then krt_findings else empty end);

# --- The host ---

def host_finding($word; $text; $count; $command): {word: $word, ltl: null, text: $text, count: $count, command: $command};

def card_findings:
    # null is what the driver refused: then nothing is known.
    def is($key; $default): if has($key) then .[$key] else $default end;
    (if is("version_mismatch"; false) | flag
     then host_finding("version-mismatch"; "the HMX refuses tools of this version"; null; "show version") else empty end),
    (select(.leaf_mode | flag | not) | .versions | select(type == "object" and (.hmx // "") != "" and (.krt // "") != "" and .hmx != .krt)
     | host_finding("version-mismatch"; "the HMX has version \(.hmx | text), the KRT \(.krt | text)"; null; "show version")),
    (if is("datapath_initialized"; false) == false
     then host_finding("datapath-down"; "the data path is not initialized"; null; "show card") else empty end),
    (if is("dpa_up"; false) | . == false or . == 0
     then host_finding("agent-down"; "the user-space agent is down"; null; "show card") else empty end),
    (if is("heartbeat"; 0) | . != null and number != 1
     then host_finding("no-heartbeat"; "the KRT sends no heartbeat"; null; "show card") else empty end),
    (if .upgrade == "aborted" then host_finding("upgrade-aborted"; "an upgrade was aborted"; null; "show card") else empty end);

def memory_findings($least):
    def is_full($used; $room): ($room | rounded) > 0 and ($used | rounded) * 100 >= ($room | rounded) * $least.full;
    def many($threshold): is_below($threshold) | not;
    (.asserts | number | select(many($least.asserts)) | host_finding("asserts"; "asserts failed in the DPA"; .; "show assert")),
    (.heaps[]?
     | "heap \(.name | text)" as $heap
     | (reduce (.null_pointers, .bad_magics, .bad_redzones, .wrong_heaps) as $count (0; plus($count | number))
        | select(. != 0) | host_finding("heap-pointers"; "\($heap) was given bad pointers"; .; "show heap")),
       (.denied | number | select(many($least.denied)) | host_finding("heap-denied"; "\($heap) denied allocations"; .; "show heap")),
       (select(is_full(.bytes | number; .maximum | number))
        | host_finding("heap-nearly-full"; "\($heap) is nearly full"; "\(.bytes | number) of \(.maximum | number) bytes"; "show heap"))),
    (.memory_pools[]?
     | ((.total | number | rounded) - (.available | number | rounded)) as $used
     | select(is_full($used; .maximum | number))
     | host_finding("pool-nearly-full"; "memory pool \(.name | text) is nearly full"; "\($used) of \(.maximum | number) objects"; "show mempool"));

# Each L2 table by the entries that it holds of those that it may.
def table_findings($h; $least):
    (.l2.tables[]?
     | (if has("limit") then .limit else 1024 end) as $limit
     | (.entries | length) as $count
     | select($limit != null and ($limit | number) > 0 and $count * 100 >= ($limit | number) * $least.full)
     | ($h.by_index[.bridge_domain | number | tostring] // {index: .bridge_domain, vlan: 0})
     | host_finding("table-nearly-full"; "the L2 table of \(network) is nearly full"; "\($count) of \($limit | number)"; address_command)),
    (.l2.rejected | number | select(. >= $least.rejected)
     | host_finding("table-full"; "addresses found no room in the L2 tables"; .; "show l2-num-entries"));

# An address that two ports have, as their own or behind them: two virtual ports, or one and an uplink.
def address_on_two_findings($h):
    [($h.ports[] | select(.known and .ltl >= 18 and (is_port_channel | not) and (.mac // "00:00:00:00:00:00") != "00:00:00:00:00:00")
      | {mac, ltl, own: true}),
     ($h.addresses[][] | {mac, ltl})]
    | group_by(.mac)[] | select(length > 1)
    | .[0].mac as $mac | any(.[]; .own) as $own
    | (map(.ltl) | unique) as $ltls
    | select($ltls | length > 1)
    | [$ltls[] | port_of($h; .)] as $ports
    | [$ports[] | select(is_virtual)] as $virtual
    | select(($virtual | length) > 1 or (($virtual | length) == 1 and $own))
    | host_finding("mac-on-two-ports"; "\($mac | text) is on \($ports | map(title) | join(" and "))"; null; "show l2 all") + {ltl: $virtual[0].ltl};

# Of all ports, what they lack in uplinks: once for the uplinks, however many ports there are.
def folded_way_findings:
    map(select(.group != null)) | group_by([.word, .group])[]
    | (map(.vlans[]) | unique) as $vlans
    | .[0] + {ltl: null, count: "\(length) port\(if length == 1 then "" else "s" end)",
        text: "\(.[0].group)\(if $vlans == [] then "" else " \($vlans | vlans_text)" end)"};

# The least numbers that are told, and the percents from which something is nearly full.
def usual_thresholds: {drops: 100, full: 90, asserts: 1, denied: 1, rejected: 1};

# All about a host, worst first.
def host_findings($least):
    . as $host
    | indexed as $h
    | [(.capture | select(. != null and .whole == false)
          | host_finding("capture-cut"; "the capture is not whole: \([.cut[]? | text] | join("; "))"; null; null)),
       (if is_known("card") then .card | select(. != null) | card_findings else empty end),
       memory_findings($least), table_findings($h; $least),
       address_on_two_findings($h)] as $of_host
    | [$h.ports[] | select(.known and .ltl >= 18 and (is_empty | not)) | port_findings($h; $least.drops)] as $of_ports
    | ($of_host + [$of_ports[] | select(has("group") | not)] + [$of_ports | folded_way_findings]
       + [$h.members | keys[] | port_of($h; tonumber) | channel_findings($h)])
    | unique_by([.word, .ltl, .text])
    | (words | to_entries | map({(.value): .key}) | add) as $rank
    | sort_by([$rank[.word], .ltl // -1, .text])[];
