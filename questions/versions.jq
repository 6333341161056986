# The version of the HMX.
#
#     tarnask versions [FILE...]
#
# Exit value: 0.
include "tarn" {search: "./"};
include "asking" {search: "./"};

ask({found: 0, nothing: 0}; "HMX \(.card.versions.hmx? // "" | if . == "" then "unknown" else text end)"; empty)
