# Which ports are err-disabled, and by what? Those that "show port" gives a cause for.
#
#     tarnask errors [FILE...]
#
# Exit value: 1 when there is one, 0 when there is none.
include "tarn" {search: "./"};
include "findings" {search: "./"};
include "asking" {search: "./"};

ask({found: 1, nothing: 0};
    (.card.leaf_mode? | flag) as $leaf
    | shown_ports | error_cause($leaf) as $cause | select($cause) | "\(title): \($cause | text)";
    nothing)
