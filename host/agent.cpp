#include "host/agent.h"
#include "host/access.h"
#include "host/keys.h"

namespace {

constexpr uint32_t LONGEST_PAUSE = 600'000; // milliseconds
constexpr uint64_t LONGEST_COMMAND = 126;   // bytes
constexpr uint64_t LONGEST_OUTPUT = uint64_t{1} << 20;
constexpr uint32_t MARKER_LENGTH = 8;

constexpr key ANSWER_ROWS[] = {
    number_key("opcode", at<&agent_answer::opcode>, "of the requests that it answers").must(),
    number_key("argument", at<&agent_answer::argument>, "of those requests").or_else("any"),
    number_key("time", at<&agent_answer::only_time>, "the n-th of those requests")
        .from(1)
        .or_else("each"),
    hex_key("reply", at<&agent_answer::reply>,
            "cut or filled up with zeros to the caller's room; input comes back as it was"),
    number_key("status", at<&agent_answer::status>,
               "with any but 0 the buffers come back as they were"),
    number_key("delay", at<&agent_answer::delay>, "before the answer").to(LONGEST_PAUSE).in("ms"),
    flag_key("silent", at<&agent_answer::silent>, "no answer"),
    number_key("close_after", at<&agent_answer::close_after>,
               "of the reply message, head included, then the connection closes")
        .or_else("stays open")
        .in("bytes"),
};

constexpr key_table ANSWER_KEYS = {"agent_answer", "An answer on the agent's socket", ANSWER_ROWS,
                                   make_object<agent_answer>};

constexpr key COMMAND_ROWS[] = {
    text_key("command", at<&agent_command::command>, "the whole line").to(LONGEST_COMMAND).must(),
    text_key("output", at<&agent_command::output>, "what it prints; the end marker follows")
        .to(LONGEST_OUTPUT),
    number_key("delay", at<&agent_command::delay>, "before the output").to(LONGEST_PAUSE).in("ms"),
    number_key("split_marker", at<&agent_command::split_marker>,
               "of the end marker come with the output; 0 for all")
        .to(MARKER_LENGTH - 1)
        .in("bytes"),
    number_key("pause", at<&agent_command::pause>, "before the rest of the marker")
        .to(LONGEST_PAUSE)
        .in("ms"),
    flag_key("silent", at<&agent_command::silent>, "neither output nor marker"),
};

constexpr key_table COMMAND_KEYS = {"agent_command", "A command of the agent", COMMAND_ROWS,
                                    make_object<agent_command>};

constexpr key AGENT_ROWS[] = {
    list_key("answers", items_of<&agent_description::answers>, ANSWER_KEYS,
             "on its socket; the first that fits a request is given"),
    list_key("commands", items_of<&agent_description::commands>, COMMAND_KEYS,
             "through its pipe; any other is answered with \"Unknown command\""),
};

} // namespace

constinit const key_table AGENT_KEYS = {"agent", "The user-space agent", AGENT_ROWS,
                                        make_object<agent_description>};
