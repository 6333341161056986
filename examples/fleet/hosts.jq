# The hosts of a throwaway fleet, made from the built-in one: $count hosts, one a line.
#
#     tarnlab --print-host | jq -c --argjson count 20 -f hosts.jq
#
# They hold different virtual machines on ports with the same names, and learn each other's addresses. Some have
# faults that an operator would look for.

include "tarn" {search: "../../questions"};

def hex: [(. / 16 | floor), . % 16] | map("0123456789abcdef"[.:. + 1]) | add;

def named($name): .ports[] | select(.name == $name);

# The address of the port itself, learnt in the first of its networks.
def learn($port):
    (.bridge_domains[] | select(if $port.segment then .segment == $port.segment
                                else .vlan == ($port.vlans | numbers[0]) end).index) as $domain
    | .l2.tables |= if any(.[]; .bridge_domain == $domain) then . else . + [{bridge_domain: $domain, entries: []}] end
    | (.l2.tables[] | select(.bridge_domain == $domain).entries) += [{mac: $port.mac, ltl: $port.ltl, static: true}];

# Everything works, and no packet, allocation or address was dropped, denied or rejected.
def healed:
    del(.agent) # there is room for one on a machine
    | del(.ports[].error, .ports[].krt, .drops, .multicast_drops, .flood_drops,
        .l2.rejected, .l2.tables[].entries[].drop, .heaps[].denied, .heaps[].bad_redzones,
        .traffic[].receive_drops, .traffic[].transmit_drops)
    | named("firewall.eth0").vlans = [10, 20, 30]
    | (.bridge_domains[] | select(.vlan == 30)).members |= numbers + [68]
    | (.ports[] | select(.ltl >= 18 and .name != null)) |= (.admin = "up" | .link = "up" | .forwarding = true
        | if .vlans then .forwards_on = .vlans else . end)
    | (.ports[] | select(.ltl >= 50 and .sub_group_b == null and .ltl < 1040)).sub_group_b = 0
    | reduce (.ports[] | select(.name | IN("vmk1", "web-4.eth0", "router.eth0", "firewall.eth0", "red-2.eth0",
                                           "template.eth0")))
        as $port (.; learn($port));

# The virtual machines of this host, different from those of the others.
def with_number($number):
    walk(if type == "string" then sub("^00:50:56:(?<kind>60|aa):00:"; "00:50:56:\(.kind):\($number | hex):")
         else . end)
    | .card.name = "host\($number).example.com"
    | .card.slot = $number + 2
    | .management_address = "10.193.4.\($number)";

def with_neighbour($number):
    (.l2.tables[] | select(.bridge_domain == 2).entries)
        += [{mac: "00:50:56:aa:\($number | hex):01", ltl: 1040, age: $number}];

def with_fault($number):
    if $number == 4 then .card.versions.hmx = "2.3.0" else . end
    | if $number % 5 == 2 then named("vmnic2") |= (.link = "down" | .forwarding = false) else . end
    | if $number % 8 == 3 then named("web-5.eth0") |= (.error = "bpdu" | .forwarding = false) else . end
    | if $number % 8 == 1 then named("app-1.eth0") |= (.error = "storm" | .forwarding = false) else . end;

healed as $healthy
| range(1; $count + 1) as $number
| $healthy
| with_number($number)
| with_neighbour($number % $count + 1)
| with_fault($number)
