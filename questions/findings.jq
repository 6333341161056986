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
        lacp: (if .port_channel_mode | IN("lacp-active", "lacp-passive") then .lacp else null end),
        pinned: (reduce ($ports[] | select(.known) | pinned_to($leaf) | select(. != null)) as $group
            ({}; .[$group | tostring] += 1)),
        # Of each port, [{ltl, mac, drop, domain}].
        addresses: ([.l2.tables[]? | (.bridge_domain | number) as $domain | .entries[]?
                     | {ltl: (.ltl | number), mac, drop, $domain}]
            | group_by(.ltl) | map({(.[0].ltl | tostring): .}) | add // {}),
        drops: (reduce drops as $drops ({}; .[$drops.ltl | tostring] = $drops.stages)),
        traffic: (reduce traffic_of($ports[]) as $traffic ({}; .[$traffic.ltl | tostring] = $traffic))
      }
    | .is_member = (.members | map(.[]) | set)
    # What a port can go out through.
    | .members as $members
    | .ways = [$ports[]
        | select(.known and (is_empty | not) and (is_uplink or is_port_channel and $members[.ltl | tostring]))
        | . + {has_vlan: (.vlans | set), forwards_vlan: (.forwards | set)}]
    | .uplinks = [.ways[] | select(is_uplink)];

def port_of($h; $ltl): $h.ports[$ltl | tostring] // {ltl: $ltl, name: "", interface: "", known: false, vlans: []};

# The command that shows the addresses of bridge domains.
def address_command: if length != 1 then "show l2 all" else .[0]
    | if .kind == "segment" then "show l2 segment \(.segment)"
      elif (.vlan // 0) != 0 then "show l2 \(.vlan)" else "show l2 all" end end;

# "VLAN 10", "VLANs 10,20-29", at most so many characters of them.
def vlans_text:
    range_text as $text
    | "VLAN\(if length == 1 then "" else "s" end) "
    + if ($text | length) <= 60 then $text else ($text[:60] | sub(",[^,]*$"; "")) + ",... (\(length))" end;

# What is found of a port, the input.
def found($word; $text; $count; $command): {$word, ltl, text: "\(title) \($text)", $count, $command};
def found($word; $text; $command): found($word; $text; null; $command);

# --- One port ---

# What "show port" says BLK for; null where it says something else or gives no cause.
def cause($leaf):
    if .forwarding or .vlan_mode then null
    elif $leaf then first((.leaf_block, .leaf_wait) | select(IN("bpdu", "zero-mac", "ack", "policy"))) // null
    elif .error == "none" then null else .error end;

# Those of its VLANs that the host has, with a bridge domain: $usable below.
def usable($h): (if $h.knows_domains then only($h.by_vlan) else . end)
    | (if $h.knows_vlans then only($h.vlans) else . end);

# Whether it works at all: the first obstacle alone, since the others follow from it.
def state_findings($h; $usable):
    if .known | not then found("unknown"; "has no record in the HMX"; "show port")
    elif is_up | not then
        (if is_uplink and .mode == "uplink" then $h.pinned[.sub_group_a | tostring] else null end) as $pinned
        | found(
            if is_port_channel then "port-channel-down"
            elif is_uplink and (.admin == "up" or .port_channel != 0 or $pinned) then "uplink-down"
            elif .admin != "up" then "admin-down" else "link-down" end;
            if .admin != "up" then "is disabled" else "has no link" end;
            if $pinned then "\($pinned) port\(if $pinned == 1 then " is" else "s are" end) pinned to it" else null end;
            "show port")
    elif .does_forward then empty
    elif cause($h.leaf) then
        cause($h.leaf) as $cause
        | found(
            if $h.leaf | not then "err-disabled"
            elif $cause == "bpdu" or $cause == "zero-mac" then "leaf-blocked" else "leaf-wait" end;
            if $h.leaf | not then "is err-disabled by \($cause | text)"
            else {bpdu: "is blocked, since a BPDU came in", "zero-mac": "is blocked, since its MAC address is zero",
                  ack: "waits for an acknowledgement", policy: "waits for the policy of its group"}[$cause] end;
            "show port")
    elif .vlans != [] and $usable == [] and ($h.leaf and (.vlan_mode | not) | not) then empty # told of its VLANs
    elif .vlan_mode then
        found("not-forwarding";
            "forwards on no VLAN\(if .error == "none" then "" else " (its record says: \(.error | text))" end)";
            "show port vlans")
    else found("not-forwarding"; "does not forward"; "show port") end;

def vlan_findings($h; $usable):
    . as $port
    | def of_port($word; $text; $command): . as $vlans | $port | found($word; $text; $command);
      (if $h.knows_vlans then .vlans | without($h.vlans) else [] end) as $missing
    | ($usable | set) as $is_usable
    | ((.ltl | tostring) as $ltl | [.forwards | only($is_usable)[] | $h.by_vlan[tostring]
        | select(.has_members and (.has_member[$ltl] | not)) | .vlan]) as $outside
    | ($missing | select(. != [])
        | of_port("vlan-missing"; "has \(vlans_text), which the host does not have"; "show vlan")),
      (if ($missing + $usable | length) == (.vlans | length) then []
       else .vlans | (if $missing == [] then . else only($h.vlans) end) | without($h.by_vlan) end
       | select(. != []) | of_port("no-bridge-domain"; "has \(vlans_text) without a bridge domain"; "show bd")),
      (select(.segment != 0 and $h.knows_domains and ($h.by_segment[.segment | tostring] | not))
        | found("no-bridge-domain"; "has segment \(.segment) without a bridge domain"; "show segment")),
      (select(.vlans == [] and .has_vlans and .segment == 0 and ($h.leaf | not))
        | found("no-vlan"; "has neither a VLAN nor a segment"; "show port vlans")),
      (select(.does_forward) | .blocked | only($is_usable) | select(. != [])
        | of_port("vlan-blocked"; "is blocked on \(vlans_text)"; "show port vlans")),
      ($outside | select(. != [])
        | of_port("not-member"; "is not among the ports of \(vlans_text)"; "show vlan \(.[0])")),
      (select(.segment != 0 and .forwarding) | .ltl as $ltl | $h.by_segment[.segment | tostring]
        | select(. != null and .has_members and (.has_member[$ltl | tostring] | not)) | .segment as $segment
        | $port | found("not-member"; "is not among the ports of segment \($segment)"; "show segment \($segment)"));

# A port channel without a member that is up.
def channel_findings($h):
    [$h.members[.ltl | tostring][]? | port_of($h; .)] as $members
    | select(any($members[]; is_up) or $members == [] and (.known and is_up | not) | not)
    | found("port-channel-down"; "has no member that is up"; "show pc");

# How a member of a port channel differs from what the channel is.
def member_findings($h; $channel):
    .ltl as $ltl
    | if .known | not then found("member-differs"; "is a member of \($channel | title), but no port"; "show pc")
    elif .port_channel != $channel.ltl then
        found("member-differs"; "is a member of \($channel | title), but not by its own record"; "show pc")
    elif $h.members[$channel.ltl | tostring] // [] | index($ltl) == null then
        found("member-differs"; "is a member of \($channel | title) by its own record only"; "show pc")
    elif $channel.known and .vlans != $channel.vlans then
        (.vlans | set) as $here | ($channel.vlans | set) as $there
        | [(.vlans | without($there) | select(. != []) | "has \(vlans_text)"),
           ($channel.vlans | without($here) | select(. != []) | "lacks \(vlans_text)")] as $differences
        | found("member-differs"; "\($differences | join(" and ")), unlike \($channel | title)"; "show port vlans")
    else empty end;

# A member that LACP has not brought up. In the state of a PDU 0x08 is in sync, 0x10 collecting, 0x20 distributing.
def lacp_findings($h):
    . as $port
    | ($h.lacp.uplinks[]? | select((.ltl | number) == $port.ltl)
       | if $h.lacp.offload == true then .state // "initialized" | select(. != "channeling") | "is \(text) in LACP"
         else .pdus.krt_actor | select(. != null) | .state | number | select((. / 8 | floor) % 8 != 7)
            | "is not in sync, collecting and distributing in LACP" end) as $text
    | found("lacp-down"; $text; "show lacp \(.ltl)");

def address_findings($h):
    ($h.addresses[.ltl | tostring] // []) as $addresses
    | (select($addresses == [] and $h.knows_addresses and is_up
            and .port_channel == 0 and ($h.is_member[.ltl | tostring] | not)
            and (.forwards != [] or .segment != 0 and .forwarding))
       | [$h.by_vlan[.forwards[] | tostring], $h.by_segment[.segment | tostring] // empty] as $domains
       | found("no-address"; "has no address behind it"; $domains | address_command)),
      ([$addresses[] | select(.drop == true)] as $dropped
       | select($dropped != [])
       | found("address-dropped"; "sends from \([$dropped[].mac | text] | join(", ")), which is dropped";
           [$h.by_index[$dropped[].domain | tostring]] | unique | address_command));

def drop_findings($h; $least):
    def many: . != 0 and (is_below($least) | not);
    ($h.drops[.ltl | tostring] // []) as $stages
    | ($stages[] as $stage | select($stage.count | many)
        | found("drops"; "drops packets at \($stage.name | text)"; $stage.count; "show port-drops ltl \(.ltl)")),
      # Where no stage says where, "show stats" says in which direction.
      (select(all($stages[]; .count == 0))
       | $h.traffic[.ltl | tostring] as $traffic | select($traffic)
       | (select($traffic.receive_drops | many)
            | found("drops"; "drops packets that it receives"; $traffic.receive_drops; "show stats")),
         (select($traffic.transmit_drops | many)
            | found("drops"; "drops packets instead of sending them"; $traffic.transmit_drops; "show stats")));

# What of the KRT's view is not so in the HMX.
def krt_findings:
    select(.krt != null)
    | . as $port | ($port + .krt | view) as $krt
    | if $krt.known | not then found("krt-differs"; "has no record in the KRT"; "show port krt")
      else [("admin", "link" | select($port[.] != $krt[.]) | "\(.) \($krt[.])"),
            ("forwarding", "vlan_mode", "vlans", "forwards_on", "port_channel"
                | select($port[.] != $krt[.] and (. != "vlans" or $port.has_vlans and $krt.has_vlans)) # not refused
                | gsub("_"; " "))] as $keys
        | select($keys != [])
        | found("krt-differs"; "differs in the KRT's view: \($keys | join(", "))"; "show port krt") end;

# The way out of a virtual port: the uplinks of the sub-group that it is pinned to, else all uplinks and port channels
# that have one of its VLANs. Beside the rest of a finding, `group` and `vlans` are what `health` folds those of all
# ports by; without a group it is told of an uplink already.
def way_findings($h; $usable):
    def works: is_up and (is_uplink or any($h.members[.ltl | tostring][] | port_of($h; .); is_up));
    def titles: map(title) | join(", ");
    def way($word; $text; $command; $group; $vlans): found($word; $text; $command) + {$group, $vlans};
    pinned_to($h.leaf) as $pinned
    | [$h.ways[] | select(if $pinned != null then .mode == "uplink" and .sub_group_a == $pinned
                          else .port_channel == 0 end)] as $all
    | [$all[] | select($pinned != null or (.has_vlan as $has | any($usable[]; $has[tostring])))] as $fit
    | (if $fit == [] then $all else $fit end) as $ways
    | [$ways[] | select(works)] as $up
    | [$usable[] | select(tostring as $vlan | any($up[]; .has_vlan[$vlan]) | not)] as $absent
    | [$usable[] | select(tostring as $vlan
        | any($up[]; .has_vlan[$vlan]) and (any($up[]; .forwards_vlan[$vlan]) | not))] as $blocked
    # Up, but err-disabled or the like: all else follows from it.
    | (if any($up[]; .does_forward) then []
       else [$up[] | state_findings($h; .vlans | usable($h)) | {word, text, command}] end) as $stopped
    | def goes: if $pinned != null then "is pinned to \(titles)" else "goes out through \(titles)" end;
      (if $ways == [] then
         (if $pinned == null then "no uplink is there" else "no uplink has sub-group \($pinned)" end) as $why
         | way("uplink-missing"; "has no way out: \($why)"; "show port"; $why; [])
       elif $up == [] then
         select(any($ways[]; is_up | not)) # else it is told below of the port channel
         | way(if all($ways[]; is_port_channel) then "port-channel-down" else "uplink-down" end;
             "\($ways | goes), which \(if $ways | length == 1 then "is" else "are all" end) down";
             "show port"; null; [])
       elif $stopped != [] then
         $stopped[0] as $first
         | way($first.word; "has no way out: \([$stopped[].text] | join("; "))"; $first.command; null; [])
       else
         (select($absent != [])
            | way("vlan-not-on-uplink"; "\($up | goes), without \($absent | vlans_text)"; "show port vlans";
                if $pinned == null then "no uplink has" else "\($up | titles) without" end; $absent)),
         (select($blocked != [])
            | way("vlan-not-on-uplink"; "\($up | goes), blocked there on \($blocked | vlans_text)"; "show port vlans";
                if $pinned == null then "no uplink forwards on" else "\($up | titles) blocked on" end; $blocked))
       end),
      ([$ways[] | if is_port_channel then .ltl else .port_channel end | select(. != 0)] | unique[]
        | port_of($h; .) | channel_findings($h)),
      (select(.segment != 0 and ($h.by_segment[.segment | tostring] | . != null and (.native | not))
            and (any($h.ports[]; .known and .vxlan and is_up) | not))
       | way("vtep-down"; "is in segment \(.segment), and no VXLAN port is up"; "show port";
            "segments are carried in VXLAN, and no VXLAN port is up"; []));

# All about a port, from itself outwards. $drops is the least number of drops that is told.
def port_findings($h; $drops):
    (.vlans | usable($h)) as $usable
    | state_findings($h; $usable),
      (select(.known and .ltl >= 18 and (is_uplink or is_port_channel | not))
        | vlan_findings($h; $usable), way_findings($h; $usable)),
      (select(.known and is_port_channel) | . as $channel
        | channel_findings($h),
          ($h.members[.ltl | tostring][]? | port_of($h; .) | member_findings($h; $channel), lacp_findings($h))),
      (select(.known and .port_channel != 0) | port_of($h; .port_channel) as $channel
        | ($channel | channel_findings($h)), member_findings($h; $channel), lacp_findings($h)),
      (select(.known and .ltl >= 18) | address_findings($h)),
      drop_findings($h; $drops),
      (select(.known) | krt_findings);

# --- The host ---

def host_found($word; $text; $count; $command): {$word, ltl: null, $text, $count, $command};
def host_found($word; $text; $command): host_found($word; $text; null; $command);

def card_findings:
    # null is what the driver refused: then nothing is known.
    def is($key; $default): if has($key) then .[$key] else $default end;
    (select(is("version_mismatch"; false) | flag)
        | host_found("version-mismatch"; "the HMX refuses tools of this version"; "show version")),
    (select(.leaf_mode | flag | not) # where the KRT has no version
        | .versions // {} | select((.hmx // "") != "" and (.krt // "") != "" and .hmx != .krt)
        | host_found("version-mismatch"; "the HMX has version \(.hmx | text), the KRT \(.krt | text)"; "show version")),
    (select(is("datapath_initialized"; false) == false)
        | host_found("datapath-down"; "the data path is not initialized"; "show card")),
    (select(is("dpa_up"; false) == false) | host_found("agent-down"; "the user-space agent is down"; "show card")),
    (select(is("heartbeat"; 0) | . != null and number != 1)
        | host_found("no-heartbeat"; "the KRT sends no heartbeat"; "show card")),
    (select(.upgrade == "aborted") | host_found("upgrade-aborted"; "an upgrade was aborted"; "show card"));

def is_full($room; $percent): $room != 0 and rounded * 100 >= ($room | rounded) * $percent;

def memory_findings($least):
    def many($threshold): number | . != 0 and (is_below($threshold) | not);
    (.asserts | select(many($least.asserts))
        | host_found("asserts"; "asserts failed in the DPA"; number; "show assert")),
    (.heaps[]? | "heap \(.name | text)" as $heap
     | (reduce (.null_pointers, .bad_magics, .bad_redzones, .wrong_heaps) as $count (0; plus($count | number))
        | select(. != 0) | host_found("heap-pointers"; "\($heap) was given bad pointers"; .; "show heap")),
       (.denied | select(many($least.denied))
        | host_found("heap-denied"; "\($heap) denied allocations"; number; "show heap")),
       ((.bytes | number) as $used | (.maximum | number) as $room
        | select($used | is_full($room; $least.full))
        | host_found("heap-nearly-full"; "\($heap) is nearly full"; "\($used) of \($room) bytes"; "show heap"))),
    (.memory_pools[]? | ((.total | number | rounded) - (.available | number | rounded)) as $used
     | (.maximum | number) as $room
     | select($used | is_full($room; $least.full))
     | host_found("pool-nearly-full"; "memory pool \(.name | text) is nearly full"; "\($used) of \($room) objects";
         "show mempool")),
    (.l2.rejected | select(many($least.rejected))
     | host_found("table-full"; "addresses found no room in the L2 tables"; number; "show l2-num-entries"));

# Each L2 table by the entries that it holds of those that it may.
def table_findings($h; $least):
    .l2.tables[]?
    | (if has("limit") then .limit else 1024 end | select(. != null) | number) as $limit
    | (.entries | length) as $count
    | select($count | is_full($limit; $least.full))
    | ($h.by_index[.bridge_domain | number | tostring] // {index: (.bridge_domain | number), vlan: 0})
    | host_found("table-nearly-full"; "the L2 table of \(network) is nearly full"; "\($count) of \($limit)";
        [.] | address_command);

# An address that two ports have, as their own or behind them: two virtual ports, or one and an uplink.
def address_on_two_findings($h):
    [($h.ports[] | select(.known and .ltl >= 18 and (is_port_channel | not))
      | {mac, ltl, own: true} | select(.mac | . != null and . != "00:00:00:00:00:00")),
     ($h.addresses[][] | {mac, ltl})]
    | group_by(.mac)[] | select(length > 1)
    | .[0].mac as $mac | any(.[]; .own) as $own
    | [map(.ltl) | unique[] | port_of($h; .)]
    | select(length > 1)
    | map(select(is_virtual)) as $virtual
    | select($virtual | length > 1 or length == 1 and $own)
    | host_found("mac-on-two-ports"; "\($mac | text) is on \(map(title) | join(" and "))"; "show l2 all")
    | .ltl = $virtual[0].ltl;

# What ports lack in uplinks, once for the uplinks, however many ports there are.
def folded_way_findings:
    map(select(.group != null)) | group_by([.word, .group])[]
    | (map(.vlans[]) | unique | if . == [] then "" else " \(vlans_text)" end) as $vlans
    | .[0] + {ltl: null, text: "\(.[0].group)\($vlans)", count: "\(length) port\(if length == 1 then "" else "s" end)"};

# The least numbers that are told, and the percents from which something is nearly full.
def usual_thresholds: {drops: 100, full: 90, asserts: 1, denied: 1, rejected: 1};

def cut_finding: .capture | select(. != null and .whole == false)
    | host_found("capture-cut"; "the capture is not whole: \([.cut[]? | text] | join("; "))"; null);

# All about a host, worst first.
def host_findings($least):
    indexed as $h
    | [$h.ports[] | select(.known and .ltl >= 18 and (is_empty | not)) | port_findings($h; $least.drops)] as $of_ports
    | [cut_finding,
       (select(is_known("card")) | .card | select(. != null) | card_findings),
       memory_findings($least), table_findings($h; $least), address_on_two_findings($h),
       ($of_ports[] | select(has("group") | not)), ($of_ports | folded_way_findings),
       ($h.members | keys[] | port_of($h; tonumber) | channel_findings($h))]
    | unique_by([.word, .ltl, .text, .count])
    | (words | to_entries | map({(.value): .key}) | add) as $rank
    | sort_by([$rank[.word], .ltl // -1, .text])[];
