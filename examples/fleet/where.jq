# Where an address is, over the captures of many hosts: the port that it belongs to, and where other
# hosts have learnt it.
#
#     jq -r --arg mac 00:50:56:aa:03:01 -f where.jq captures/*.json

def host: input_filename | sub(".*/"; "") | rtrimstr(".json");
def title: if (.name // "") != "" then .name else .interface // "an unknown port" end + " (LTL \(.ltl))";

host as $host
| ($mac | ascii_downcase | [scan("[0-9a-f]")] | [range(0; length; 2) as $i | .[$i] + .[$i + 1]] | join(":")) as $mac
| (reduce .ports[]? as $port ({}; .[$port.ltl | tostring] = $port)) as $ports
| (reduce .bridge_domains[]? as $domain ({}; .[$domain.index | tostring] = $domain)) as $domains
| ((.ports[]? | select(.mac == $mac) | "\($host): is \(title)"),
   (.l2.tables[]?
    | $domains[.bridge_domain | tostring] as $domain
    | (if $domain.segment then "segment \($domain.segment)" else "VLAN \($domain.vlan // 0)" end) as $network
    | .entries[]? | select(.mac == $mac)
    | "\($host): \(if .static then "set" else "learnt" end) in \($network) on \($ports[.ltl // 0 | tostring] // {ltl: (.ltl // 0)} | title)"))
