# Why has this port no traffic? What stands in its way, from the port outwards, the first obstacle first; or
# "Nothing found". Of a capture that is not whole the last line says so.
#
#     tarnask why PORT [FILE...]    PORT is an LTL, an interface or a name
#
# Exit value: 1 when something stands in the way or there is no such port, 0 when nothing does.
include "tarn" {search: "./"};
include "findings" {search: "./"};
include "asking" {search: "./"};

def like($wanted):
    [shown_ports | select((.name, .interface) | ascii_downcase | contains($wanted | ascii_downcase)) | name]
    | unique | if . == [] then "" else "; there is \(.[:5] | join(", "))" end;

$ARGS.named.port as $wanted
| ask({found: 1, nothing: 0};
    needs("ports")
    | [port($wanted).ltl | tostring] as $ltls
    | select($ltls != [])
    | indexed as $h
    | [($h.ports[$ltls[]] | port_findings($h; 1)), cut_finding]
    | if . == [] then nothing else .[] | finding_line end;
    "unknown: no port is called \($wanted | text)\(like($wanted)) (tarncmd show port)",
    (cut_finding | finding_line))
