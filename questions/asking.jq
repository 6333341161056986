# How a question is put to captures. tarnask gives each as a line: its name, a tab, the file without line ends;
# for two captures of a host another tab and file.
include "tarn" {search: "./"};

# The line that says so is no text: a driver may call a port "Nothing found".
def nothing($where): {nothing: "Nothing found\($where)"};
def nothing: nothing("");

# Ends a question about a capture that cannot answer it.
def cannot_answer($why): error({complaint: $why});

def needs($key): if is_known($key) then . else cannot_answer("it has no \($key); was it asked for them?") end;

# Whether a JSON value can be a host file at all; what its lists hold shows when it is used.
def is_host:
    type == "object"
    and all(.card, .l2, .lacp, .capture; . == null or type == "object")
    and all(.heaps, .memory_pools, .bridge_domains, .ports, .port_channels, .acls, .traffic, .stages, .drops;
        . == null or type == "array");

# Print the lines of each capture, with its name in front where names are wanted, and end with an exit value: that
# of $exits.found when a line was another than `nothing`, else that of $exits.nothing; 2 when a capture could
# not answer. Where no capture has a line, all have those of `otherwise`. The input of both is the capture, or the
# list of two.
def ask($exits; lines; otherwise):
    def answer: split("\t") | .[0] as $name | .[1:] | length as $count
        | try ([.[] | fromjson | if is_host or . == null and $count > 1 then . else error("no host file") end]
               | if length == 1 then .[0] else . end
               # What came from standard input is called as its card is.
               | {name: (if $name != "-" then $name
                         else (try .card.name catch null | select(. != "")) // $name end),
                  lines: [lines], otherwise: [otherwise]})
          catch {$name, complaint: "tarnask: \($name | text): \(
              .complaint? // "no host file; tarnlab --check tells more")\n"}
        | .name as $name
        | {complaint, lines: [.lines[]? | {$name, line: .}], otherwise: [.otherwise[]? | {$name, line: .}]};
    foreach (inputs, null) as $line ({found: false, complaints: "", unheard: []};
        (if $line == null then {lines: .unheard} else $line | answer end) as $answer
        | .lines = $answer.lines
        | .found = (.found or any(.lines[].line; type == "string"))
        | .complaints += ($answer.complaint // "")
        | .answered = (.answered or .lines != [])
        | .unheard = if .answered then [] else .unheard + ($answer.otherwise // []) end;
        (.lines[] | (.line | .nothing? // .) as $line
         | if $ARGS.named.names == "yes" then "\(.name | text): \($line)" else $line end),
        if $line != null then empty
        elif .complaints != "" then .complaints | halt_error(2)
        elif (if .found then $exits.found else $exits.nothing end) != 0 then "" | halt_error(1)
        else empty end);

# A finding as a line. With names in front it leaves out what differs from host to host.
def finding_line:
    "\(.word): \(.text)"
    + (if .count == null or $ARGS.named.names == "yes" then "" else ": \(.count)" end)
    + (if .command then " (tarncmd \(.command))" else "" end);

# What a capture was asked for, where it says so and was not asked for all.
def asked_text: asked_keys | if . == null then "" else " in \(map(text) | join(", "))" end;
