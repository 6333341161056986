#include "host/capture_note.h"
#include "host/access.h"
#include "host/keys.h"

namespace {

constexpr uint64_t LONGEST_NOTE = 64; // bytes

constexpr key REFUSED_ROWS[] = {
    number_key("opcode", at<&refused_opcode::opcode>, "the requests").must(),
    number_key("count", at<&refused_opcode::count>, "how many of them were refused").written(),
};

constexpr key_table REFUSED_KEYS = {"refused_opcode", "Requests that were refused", REFUSED_ROWS,
                                    make_object<refused_opcode>};

constexpr key CAPTURE_ROWS[] = {
    text_key("version", at<&capture_note::version>, "of the program").to(LONGEST_NOTE).written(),
    text_key("time", at<&capture_note::time>, "when it began, in UTC").to(LONGEST_NOTE).written(),
    texts_key("keys", at<&capture_note::keys>, "the keys that were asked for").or_else("all"),
    flag_key("whole", at<&capture_note::whole>, "nothing was cut").written(),
    texts_key("cut", at<&capture_note::cut>, "what was cut").or_else("nothing"),
    list_key("refused", items_of<&capture_note::refused>, REFUSED_KEYS,
             "what the driver refused, by opcode, ends of walks aside")
        .or_else("nothing"),
};

} // namespace

constinit const key_table CAPTURE_KEYS = {"capture", "What was captured", CAPTURE_ROWS,
                                          make_object<capture_note>};
