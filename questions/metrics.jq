# Counters and states of a host as OpenMetrics, for the textfile collector of the Prometheus node exporter.
#
#     tarnask metrics [FILE]
#
# All carry the label `host`: the name of FILE, for standard input the card's. Only the types counter and gauge
# are used, since the collector refuses a file with others.
# Exit value: 0.
include "tarn" {search: "./"};
include "findings" {search: "./"};
include "asking" {search: "./"};

# Labels as a text. They escape three characters, of which `text` leaves two.
def escaped: text | split("\\") | join("\\\\") | split("\"") | join("\\\"");
def labels: to_entries | map("\(.key)=\"\(.value | escaped)\"") | join(",");
def one: if flag then 1 else 0 end;

# The samples {labels, value} of a metric below its head; nothing where there are none. A counter's get "_total".
# Labels that a driver makes equal are told once: a file with the same sample twice is refused as a whole.
def metric($name; $type; $unit; $help; samples):
    [samples | select(.value != null)]
    | if length < 2 then . else to_entries | unique_by(.value.labels) | sort_by(.key) | map(.value) end
    | if . == [] then empty else
        "# TYPE tarn_\($name) \($type)",
        (if $unit == "" then empty else "# UNIT tarn_\($name) \($unit)" end),
        "# HELP tarn_\($name) \($help)",
        (.[] | "tarn_\($name)\(if $type == "counter" then "_total" else "" end){\(.labels)} \(.value)")
      end;
def counter($name; $unit; $help; samples): metric($name; "counter"; $unit; $help; samples);
def gauge($name; $unit; $help; samples): metric($name; "gauge"; $unit; $help; samples);

ask({found: 0, nothing: 0};
    (if is_known("traffic") or is_known("drops") then needs("ports") else . end) as $file
    | {host: (if $ARGS.named.host != "-" then $ARGS.named.host else .card.name // "-" end)} as $host
    | ($host | labels) as $host_label
    | indexed as $h
    | ($h.ports | map_values($host + {ltl, interface, name} | labels)) as $port_labels
    | def with_host($name; $value): {($name): $value} | "\($host_label),\(labels)";
      def port_labels: $port_labels[.ltl | tostring] // (port_of($h; .ltl) | $host + {ltl, interface, name} | labels);
      def of_host(f): {labels: $host_label, value: f};
      def of_ports(f): $h.ports[] | select(.known and (is_empty | not)) | {labels: port_labels, value: f};
      def of_traffic($key): $h.traffic[] | {labels: port_labels, value: .[$key]};
      def of_channels(f): $h.members | to_entries[] | {ltl: (.key | tonumber), members: .value}
        | {labels: port_labels, value: f};
      # What the driver refuses, null, is left out.
      def of_card($key; f): select(is_known("card")) | .card // {} | select((has($key) | not) or .[$key] != null)
        | of_host(.[$key] | f);
      def of_list($list; $by; $key): .[$list][]? | {labels: with_host($by; .name), value: (.[$key] | number)};
      def domain_labels($index): ($h.by_index[$index | tostring] // {index: $index, vlan: 0, name: ""})
        | $host + {bridge_domain: .index, network: network, name} | labels;
      def of_tables(f): .l2.tables[]? | {labels: domain_labels(.bridge_domain | number), value: f};
      def of_stages($key): [stages] as $stages | .[$key] | objects | stage_drops($stages)[]
        | {labels: with_host("stage"; .name), value: .count};
      def of_acls($key): .acls[]? | {labels: ($host + {id, name: (.name // "")} | labels), value: (.[$key] | number)};

      gauge("capture_timestamp_seconds"; "seconds"; "When the capture began."; of_host(capture_time)),
      gauge("card_info"; ""; "The card and its versions; always 1."; of_card("versions"; 1)
        | .labels += "," + ($file.card
            | {card: (.name // ""), hmx: (.versions.hmx // ""), krt: (.versions.krt // "")} | labels)),
      gauge("card_heartbeat"; ""; "1 with a heartbeat from the KRT."; of_card("heartbeat"; number)),
      gauge("card_agent_up"; ""; "1 when the user-space agent is up."; of_card("dpa_up"; one)),
      gauge("card_krt_uptime_seconds"; "seconds"; "Since the KRT started."; of_card("krt_uptime"; number)),
      counter("asserts"; ""; "Asserts that failed in the DPA.";
        select(is_known("asserts") and (has("asserts") | not) or .asserts != null) | of_host(.asserts | number)),

      gauge("port_admin_up"; ""; "1 when the port is enabled."; of_ports(.admin == "up" | one)),
      gauge("port_link_up"; ""; "1 when the port has a link."; of_ports(.link == "up" | one)),
      gauge("port_forwarding"; ""; "1 when the port forwards, if only on some of its VLANs.";
        of_ports(.does_forward | one)),
      gauge("port_blocked_vlans"; ""; "VLANs of the port on which it is blocked."; of_ports(.blocked | length)),
      gauge("port_err_disabled"; ""; "1 when the port is err-disabled.";
        of_ports(($h.leaf | not) and cause(false) != null | one)),
      gauge("port_addresses"; ""; "Addresses behind the port.";
        select(is_known("l2")) | of_ports($h.addresses[.ltl | tostring] | length)),
      counter("port_received_packets"; "packets"; "Packets that the port received."; of_traffic("received")),
      counter("port_received_bytes"; "bytes"; "Bytes that the port received."; of_traffic("received_bytes")),
      counter("port_sent_packets"; "packets"; "Packets that the port sent."; of_traffic("sent")),
      counter("port_sent_bytes"; "bytes"; "Bytes that the port sent."; of_traffic("sent_bytes")),
      counter("port_transmit_flood_packets"; "packets"; "Packets that were flooded to the port.";
        of_traffic("transmit_floods")),
      counter("port_receive_drop_packets"; "packets"; "Packets received and dropped."; of_traffic("receive_drops")),
      counter("port_transmit_drop_packets"; "packets"; "Packets dropped instead of sent.";
        of_traffic("transmit_drops")),
      counter("port_stage_drop_packets"; "packets"; "Packets of the port dropped at a stage; stages without are left out.";
        $h.drops | to_entries[] | $port_labels[.key] as $port | select($port) | .value[] | select(.count != 0)
        | {labels: "\($port),\({stage: .name} | labels)", value: .count}),
      counter("multicast_drop_packets"; "packets"; "Multicast packets dropped at a stage."; of_stages("multicast_drops")),
      counter("flood_drop_packets"; "packets"; "Flooded packets dropped at a stage."; of_stages("flood_drops")),

      gauge("port_channel_members"; ""; "Members of the port channel."; of_channels(.members | length)),
      gauge("port_channel_members_up"; ""; "Members of the port channel that are up.";
        of_channels([.members[] | port_of($h; .) | select(is_up)] | length)),

      gauge("l2_table_addresses"; ""; "Addresses in the L2 table of a bridge domain."; of_tables(.entries | length)),
      gauge("l2_table_limit"; ""; "Most addresses of that table.";
        of_tables(if has("limit") then .limit else 1024 end | if . == null then . else number end)),
      counter("l2_aged_addresses"; ""; "Addresses that were forgotten.";
        select(is_known("l2")) | of_host(.l2.aged | number)),
      counter("l2_rejected_addresses"; ""; "Addresses that found no room.";
        select(is_known("l2")) | of_host(.l2.rejected | number)),

      gauge("heap_objects"; ""; "Objects allocated from the heap."; of_list("heaps"; "heap"; "objects")),
      gauge("heap_bytes"; "bytes"; "Bytes allocated from the heap."; of_list("heaps"; "heap"; "bytes")),
      gauge("heap_limit_bytes"; "bytes"; "Most bytes of the heap."; of_list("heaps"; "heap"; "maximum")),
      counter("heap_denied"; ""; "Allocations that the heap denied."; of_list("heaps"; "heap"; "denied")),
      gauge("memory_pool_objects"; ""; "Objects of the memory pool, free ones among them.";
        of_list("memory_pools"; "pool"; "total")),
      gauge("memory_pool_free_objects"; ""; "Free objects of the memory pool.";
        of_list("memory_pools"; "pool"; "available")),
      gauge("memory_pool_limit"; ""; "Most objects of the memory pool."; of_list("memory_pools"; "pool"; "maximum")),

      counter("acl_permitted_packets"; "packets"; "Packets that the access list permitted."; of_acls("permitted")),
      counter("acl_denied_packets"; "packets"; "Packets that the access list denied."; of_acls("denied")),
      counter("acl_unmatched_packets"; "packets"; "Packets that matched no rule."; of_acls("unmatched")),

      gauge("health_findings"; ""; "What tarnask health finds, by word.";
        [host_findings(usual_thresholds) | .word] | group_by(.)[]
        | {labels: with_host("word"; .[0]), value: length}),
      "# EOF";
    empty)
