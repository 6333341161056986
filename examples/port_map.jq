# Draws a captured host as a picture: its virtual ports, grouped by where they are pinned or
# forwarded, the uplinks, and the port channels that bundle them.
#
#     tarncap | jq -rf examples/port_map.jq | dot -Tsvg >host.svg

def ink: "#1f2933";       # text
def faint: "#7b8794";     # secondary text, ports that are down
def line: "#9aa5b1";      # borders and edges
def error_ink: "#ab091e"; # error-disabled

def is_uplink: .ltl >= 18 and .ltl <= 49;
def is_virtual: .ltl >= 50 and .ltl <= 1039;
def is_port_channel: .ltl >= 1040 and .ltl <= 1047;

# An entry that nothing was ever configured on.
def is_empty: (.name // "") == "" and (.interface // "") == "" and (.admin // "down") != "up";

def numbers: . // [];

def ranges:
    reduce .[] as $n ([]; if length > 0 and .[-1][1] + 1 == $n then .[-1][1] = $n
                          else . + [[$n, $n]] end)
    | map(if .[0] == .[1] then "\(.[0])" else "\(.[0])-\(.[1])" end);

# At most so many characters of a range list, and how many there are when that is not all.
def list_text($most):
    . as $all
    | (ranges | join(",")) as $text
    | if ($text | length) <= $most then $text else
        ($text[:$most] | sub(",[^,]*$"; "")) + ",… (\($all | length))" end;

def is_down: .link != "up" or .admin != "up";
def is_error_disabled: (.error // "none") != "none" and (.forwarding | not);

# The VLANs of a port on which it does not forward; none of a port that is down altogether.
def blocked: if is_down or is_error_disabled then [] else
    (.vlans | numbers) - (if .vlan_mode then .forwards_on | numbers
                          elif .forwarding then .vlans | numbers else [] end) end;

def state_text:
    if .admin != "up" then "admin down"
    elif .link != "up" then "link down"
    elif is_error_disabled then "error: \(.error)"
    elif blocked != [] then "blocked: \(blocked | list_text(12))"
    elif .forwarding or .vlan_mode then "" else "blocked" end;

def dot_color: if is_error_disabled and (is_down | not) then error_ink
    elif is_down then "#cbd2d9" elif state_text == "" then "#3f9142" else "#f0b429" end;
def text_color: if is_error_disabled and (is_down | not) then error_ink
    elif is_down then faint else ink end;
def row_color: if is_error_disabled and (is_down | not) then "#ffe3e3"
    elif is_down then "#f5f7fa" elif state_text == "" then "white" else "#fffbea" end;

def network_text($most): (if .segment then ["segment \(.segment)"] else [] end
    + if (.vlans | numbers) != [] then ["VLAN " + (.vlans | numbers | list_text($most))] else [] end)
    | join(", ");

def service_text: [if .vmotion then "vMotion" else empty end, if .vxlan then "VXLAN" else empty end,
                   if .l3_service then "L3 service" else empty end] | join(", ");

def name_text: if (.name // "") != "" then .name else .interface // "LTL \(.ltl)" end;

def colored($color): if . == "" then . else "<font color=\"\($color)\">\(. | @html)</font>" end;
def small: if . == "" then . else "<font point-size=\"9\">\(.)</font>" end;
def cell($attributes): "<td align=\"left\" \($attributes)>\(.)</td>";

# The columns are as wide in every group.
def widths: [14, 110, 52, 150, 90];

# A row of a group: state, name, interface, networks, what is wrong.
def port_row:
    . as $port
    | row_color as $background
    | "<tr>" + (
        [(dot_color as $color | "●" | colored($color)),
         (name_text | colored($port | text_color)),
         (.interface // "LTL \(.ltl)" | colored(faint) | small),
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
    + "<tr><td><font color=\"\(dot_color)\">●</font> <b>\(name_text | colored($port | text_color))</b></td></tr>"
    + ([[if name_text == .interface then null else .interface end, "LTL \(.ltl)"], [.device], [network_text(24)], [state_text]]
       | map(map(select(. != null and . != "")) | join(" · ") | select(. != ""))
       | map("<tr><td>\(colored($port | text_color) | small)</td></tr>") | join(""))
    + "</table>";

def border: if is_error_disabled and (is_down | not)
    then "color=\"\(error_ink)\" style=\"filled\" penwidth=1.5"
    elif is_down then "color=\"\(faint)\" style=\"filled,dashed\"" else "color=\"\(line)\" style=\"filled\"" end;

. as $host
| [.ports[]? | select(is_empty | not)] as $ports
| [$ports[] | select(is_uplink)] as $uplinks
| [.ports[]? | select(is_port_channel)] as $channels
| [$ports[] | select(is_virtual)] as $virtual

# Where a virtual port sends: to the uplinks of its sub-group, else to what shares a VLAN with it.
| def destinations:
    . as $port
    | if is_down or is_error_disabled then []
      elif (.sub_group_b // 32) <= 31 then
        [$uplinks[] | select((.sub_group_a // 32) == $port.sub_group_b and (is_down | not)) | .ltl]
      else
        (.forwards_on | numbers) as $vlans
        | [$channels[], ($uplinks[] | select((.port_channel // 0) == 0))
           | select((is_down | not) and (.forwards_on | numbers) - $vlans != (.forwards_on | numbers)) | .ltl]
      end;
  def title($to):
    if $to == [] then "not forwarded"
    else (if .sub_group_b then "pinned to " else "forwarded by " end)
      + ([$host.ports[] | select(.ltl | IN($to[])) | name_text] | join(", ")) end;

"digraph host {",
"  graph [rankdir=LR, nodesep=0.35, ranksep=1.1, pad=0.3, bgcolor=\"white\", labelloc=t,",
"         fontname=\"DejaVu Sans,Verdana,sans-serif\", fontsize=14, fontcolor=\"\(ink)\",",
"         label=\(([.card.name, .card.switch_name] | map(select(. != null and . != "")) | join(" · ")) | tojson)];",
"  node [shape=box, margin=0.06, fillcolor=\"white\",",
"        fontname=\"DejaVu Sans,Verdana,sans-serif\", fontsize=10, fontcolor=\"\(ink)\"];",
"  edge [color=\"\(line)\", arrowsize=0.6, penwidth=1.4,",
"        fontname=\"DejaVu Sans,Verdana,sans-serif\", fontsize=9, fontcolor=\"\(faint)\"];",
"",
([$virtual[] | . + {to: destinations}] | group_by(.to) | sort_by(.[0].to == [], .[0].to)
 | to_entries[]
 | .key as $number | .value as $members | .value[0].to as $to
 | "  group\($number) [color=\"\(line)\", style=filled, label=<\($members | group_label($members[0] | title($to)))>];",
   ($to[] | "  group\($number) -> port\(.) [label=\"\($members | length) ports\"];")),
"",
($uplinks[] | "  port\(.ltl) [\(border), label=<\(uplink_label)>];"),
"  {rank=same; \([$uplinks[] | "port\(.ltl)"] | join("; "))}",
"",
($channels[] | select(.port_channel_members // true)
 | "  port\(.ltl) [shape=box3d, \(border), label=<\(uplink_label)>];"),
($uplinks[] | select((.port_channel // 0) != 0)
 | "  port\(.ltl) -> port\(.port_channel) [label=\"\(if (.sub_group_a // 32) <= 31 then "SG \(.sub_group_a)" else "" end)\"];"),
"}"
