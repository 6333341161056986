# Which ports are err-disabled, and by what? Those that "show port" gives a cause for: in leaf mode what blocks them
# or what they wait for. An err-disable code that has no name, and an empty column there, is told as its number.
#
#     tarnask errors [FILE...]
#
# Exit value: 1 when there is one, 0 when there is none.
include "tarn" {search: "./"};
include "findings" {search: "./"};
include "asking" {search: "./"};

ask({found: 1, nothing: 0};
    needs("ports")
    | (.card.leaf_mode | flag) as $leaf
    | shown_ports | cause($leaf) as $cause | select($cause) | "\(title): \($cause | text)";
    nothing)
