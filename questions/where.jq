# Where is an address? The port that it belongs to, the ports that it is learnt or set on, and the card.
#
#     tarnask where MAC [FILE...]    MAC in any of its forms: 00:50:56:aa:03:01, 0050.56aa.0301
#
# Exit value: 0 when it was found, 1 when it was not.
include "tarn" {search: "./"};
include "asking" {search: "./"};

([$ARGS.named.mac | ascii_downcase | scan("..")] | join(":")) as $mac
| ask({found: 0, nothing: 1};
    (reduce ports as $port ({}; .[$port.ltl | tostring] = $port)) as $ports
    | (reduce bridge_domains as $domain ({}; .[$domain.index | tostring] = $domain)) as $domains
    | (.card.macs // {} | to_entries[] | select(.value == $mac)
       | "is the card's \(.key | text | gsub("_"; " ")) address"),
      ($ports[] | select(.mac == $mac) | "is \(title)"),
      (.l2?.tables[]?
       | (.bridge_domain | number) as $index
       | .entries[]? | select(.mac == $mac) | (.ltl | number) as $ltl
       | "\(if .static == true then "set" else "learnt" end) in "
         + ($domains[$index | tostring] // {index: $index, vlan: 0} | network) + " on "
         + ($ports[$ltl | tostring] // {ltl: $ltl, name: "", interface: ""} | title)
         + if .remote_ip then ", from \(.remote_ip | text)" else "" end);
    nothing)
