#include "sim/agent/agent.h"

#include "sim/object_reader.h"

namespace {

constexpr uint32_t LONGEST_PAUSE = 600'000; // milliseconds
constexpr size_t LONGEST_COMMAND = 126;
constexpr size_t LONGEST_OUTPUT = size_t{1} << 20;
constexpr uint32_t MARKER_LENGTH = 8;

agent_answer parse_answer(object_reader &keys) {
    agent_answer answer;
    keys.require("opcode");
    keys.number("opcode", answer.opcode);
    if (keys.has("argument")) {
        keys.number("argument", answer.argument.emplace());
    }
    keys.number("time", answer.only_time, 1);
    keys.number("status", answer.status);
    keys.bytes("reply", answer.reply);
    keys.number("delay", answer.delay, 0, LONGEST_PAUSE);
    keys.flag("silent", answer.silent);
    if (keys.has("close_after")) {
        keys.number("close_after", answer.close_after.emplace());
    }
    return answer;
}

agent_command parse_command(object_reader &keys) {
    agent_command command;
    keys.require("command");
    keys.text("command", command.command, LONGEST_COMMAND);
    keys.text("output", command.output, LONGEST_OUTPUT);
    keys.number("delay", command.delay, 0, LONGEST_PAUSE);
    keys.number("split_marker", command.split_marker, 0, MARKER_LENGTH - 1);
    keys.number("pause", command.pause, 0, LONGEST_PAUSE);
    keys.flag("silent", command.silent);
    return command;
}

void parse_agent(object_reader &file, host &into) {
    file.object("agent", [&](object_reader &keys) {
        agent_description &agent = into.agent.emplace();
        keys.each("answers",
                  [&](object_reader &answer) { agent.answers.push_back(parse_answer(answer)); });
        keys.each("commands", [&](object_reader &command) {
            agent.commands.push_back(parse_command(command));
        });
    });
    if (file.has("management_address")) {
        file.text("management_address", into.management_address.emplace(), LONGEST_COMMAND);
    }
}

} // namespace

constinit const family agent_family = {parse_agent, {}};
