# The version of the HMX on each of many hosts.
#
#     jq -r -f versions.jq captures/*.json | clubak -b

"\(input_filename | sub(".*/"; "") | rtrimstr(".json")): HMX \(.card.versions.hmx // "unknown")"
