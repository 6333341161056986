# Draws a captured host as a picture: its virtual ports, grouped by where they are pinned or forwarded, the
# uplinks, and the port channels that bundle them. At each it shows what `tarnask health` finds. The number of
# ports pinned to an uplink is that of "show pc".
#
#     tarncap | jq -rf examples/port_map.jq | dot -Tsvg >host.svg

include "tarn" {search: ["../questions", "../../../tarnlab/questions"]};
include "findings" {search: ["../questions", "../../../tarnlab/questions"]};

def ink: "#1f2933";       # text
def faint: "#7b8794";     # secondary text, ports that are down
def line: "#9aa5b1";      # borders and edges
def error_ink: "#ab091e"; # ports on which nothing goes

# The first numbers of a range list, and how many there are in all when it is cut.
def list_text($most):
    range_text as $text
    | if ($text | length) <= $most then $text else
        ($text[:$most] | sub(",[^,]*$"; "")) + ",… (\(length))" end;

# The look of a port, by what is found about it.
def is_stopped:
    is_up and any(.words[]; IN("err-disabled", "leaf-blocked", "leaf-wait", "not-forwarding", "port-channel-down"));
def state_text: .error as $error
    | .words | if . == [] then "" else
        "\(.[0])\(if .[0] == "err-disabled" then ": \($error | text)" else "" end)"
        + if length > 1 then " +\(length - 1)" else "" end end;
def dot_color: if is_stopped then error_ink elif is_up | not then "#cbd2d9"
    elif .words == [] then "#3f9142" else "#f0b429" end;
def text_color: if is_stopped then error_ink elif is_up | not then faint else ink end;
def row_color: if is_stopped then "#ffe3e3" elif is_up | not then "#f5f7fa"
    elif .words == [] then "white" else "#fffbea" end;
def border: if is_stopped then "color=\"\(error_ink)\" style=\"filled\" penwidth=1.5"
    elif is_up | not then "color=\"\(faint)\" style=\"filled,dashed\"" else "color=\"\(line)\" style=\"filled\"" end;

def network_text($most): (if .segment != 0 then ["segment \(.segment)"] else [] end
    + if .vlans != [] then ["VLAN " + (.vlans | list_text($most))] else [] end)
    | join(", ");

def service_text: [if .vmotion then "vMotion" else empty end, if .vxlan then "VXLAN" else empty end,
                   if .l3_service then "L3 service" else empty end] | join(", ");

def interface_text: if .interface != "" then .interface | text else "LTL \(.ltl)" end;

def colored($color): if . == "" then . else "<font color=\"\($color)\">\(. | @html)</font>" end;
def small: if . == "" then . else "<font point-size=\"9\">\(.)</font>" end;
def cell($attributes): "<td align=\"left\" \($attributes)>\(.)</td>";

# The columns have the same widths in every group.
def widths: [14, 110, 52, 150, 90];

# A row of a group: state, name, interface, networks, what is wrong.
def port_row:
    . as $port
    | row_color as $background
    | "<tr>" + (
        [(dot_color as $color | "●" | colored($color)),
         (name | colored($port | text_color)),
         (interface_text | colored(faint) | small),
         ([network_text(22), service_text] | map(select(. != "")) | join(" · ")
            | colored($port | text_color) | small),
         (state_text | colored($port | text_color) | small)]
        | [., widths] | transpose
        | map(.[1] as $width | .[0] | cell("bgcolor=\"\($background)\" width=\"\($width)\""))
        | join("")) + "</tr>";

def group_label($title):
    "<table border=\"0\" cellborder=\"0\" cellspacing=\"0\" cellpadding=\"3\">"
    + "<tr><td colspan=\"5\" align=\"left\" bgcolor=\"#e4e7eb\"><b>\($title | @html)</b></td></tr>"
    + (map(port_row) | join("")) + "</table>";

def uplink_label:
    . as $port
    | "<table border=\"0\" cellspacing=\"0\" cellpadding=\"2\">"
    + "<tr><td><font color=\"\(dot_color)\">●</font> <b>\(name | colored($port | text_color))</b></td></tr>"
    + ([[if .name == "" then "" else interface_text end, "LTL \(.ltl)"],
        [.device | text], [network_text(24)], [state_text]]
       | map(map(select(. != "")) | unique | join(" · ") | select(. != ""))
       | map("<tr><td>\(colored($port | text_color) | small)</td></tr>") | join(""))
    + "</table>";

# The LTLs to which a virtual port sends: the uplinks that it is pinned to, else those that share a VLAN with
# it.
def destinations($h):
    . as $port
    | pinned_to($h.leaf) as $group
    | if is_stopped or (is_up | not) then []
      elif $group != null then [$h.uplinks[] | select(.sub_group_a == $group and is_up) | .ltl]
      else [$h.ways[] | select(.port_channel == 0 and is_up
            and (.forwards_vlan as $vlans | any($port.forwards[]; $vlans[tostring]))) | .ltl] end;

. as $host
| indexed as $h
| [host_findings(usual_thresholds)] as $findings
| [$h.ports[] | select(.known and (is_empty | not)) | .ltl as $ltl
   | . + {words: [$findings[] | select(.ltl == $ltl).word] | unique_by(. as $word | words | index($word))}] as $ports
| [$ports[] | select(is_uplink)] as $uplinks
| [$ports[] | select(is_port_channel)] as $channels
| [$ports[] | select(is_virtual)] as $virtual
# Findings that are not about a port, below the title.
| [$findings[] | select(.ltl == null) | "\(.word): \(.text)"] as $of_host
# The number of ports pinned to a member of a port channel, as in "show pc".
| (reduce ($host.port_channels[]?.members[]? | select(.pinned != null)) as $member ({};
    .[$member.ltl | number | tostring] //= ($member.pinned | number))) as $pinned
| def title($to):
    if $to == [] then "not forwarded"
    else (if .sub_group_b != null then "pinned to " else "forwarded by " end)
      + ([$ports[] | select(.ltl | IN($to[])) | name] | join(", ")) end;

"digraph host {",
"  graph [rankdir=LR, nodesep=0.35, ranksep=1.1, pad=0.3, bgcolor=\"white\", labelloc=t,",
"         fontname=\"DejaVu Sans,Verdana,sans-serif\", fontsize=14, fontcolor=\"\(ink)\",",
"         label=<\([.card.name, .card.switch_name | select(. != null and . != "") | text] | join(" · ") | @html)\(
    $of_host | if length > 8 then .[:8] + ["…"] else . end
    | map("<br/>" + (colored(error_ink) | small)) | join(""))>];",
"  node [shape=box, margin=0.06, fillcolor=\"white\",",
"        fontname=\"DejaVu Sans,Verdana,sans-serif\", fontsize=10, fontcolor=\"\(ink)\"];",
"  edge [color=\"\(line)\", arrowsize=0.6, penwidth=1.4,",
"        fontname=\"DejaVu Sans,Verdana,sans-serif\", fontsize=9, fontcolor=\"\(faint)\"];",
"",
([$virtual[] | . + {to: destinations($h)}] | group_by(.to) | sort_by(.[0].to == [], .[0].to)
 | to_entries[]
 | .key as $number | .value as $members | .value[0].to as $to
 | "  group\($number) [color=\"\(line)\", style=filled, label=<\($members | group_label($members[0] | title($to)))>];",
   ($to[] | ($pinned[tostring] | if . then "\(.) pinned" else "\($members | length) ports" end) as $count
    | "  group\($number) -> port\(.) [label=\"\($count)\"];")),
"",
($uplinks[] | "  port\(.ltl) [\(border), label=<\(uplink_label)>];"),
"  {rank=same; \([$uplinks[] | "port\(.ltl)"] | join("; "))}",
"",
($channels[]
 | "  port\(.ltl) [shape=box3d, \(border), label=<\(uplink_label)>];"),
($uplinks[] | select(.port_channel != 0)
 | "  port\(.ltl) -> port\(.port_channel) [label=\"\(if .sub_group_a != null then "SG \(.sub_group_a)" else "" end)\"];"),
"}"
