# The err-disabled ports of many hosts, and why they are.
#
#     jq -r -f errors.jq captures/*.json

def host: input_filename | sub(".*/"; "") | rtrimstr(".json");

host as $host
| .ports[]?
| select((.error // "none") != "none" and (.forwarding // false | not))
| "\($host): \(if (.name // "") != "" then .name else .interface // "a port" end) (LTL \(.ltl)): \(.error)"
