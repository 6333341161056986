#include "sim/agent/agent_shell.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

constexpr std::string_view REDIRECT_SET = "redirect set ";
constexpr std::string_view REDIRECT_RESET = "redirect reset ";
constexpr std::string_view END_MARKER = "#byeBye#";
constexpr std::string_view MESSAGE_ENDS("\0\n", 2);
constexpr size_t PENDING_LIMIT = 4096; // longer than any message

} // namespace

agent_shell::agent_shell(const std::vector<agent_command> &commands) : commands_(commands) {
}

agent_shell::~agent_shell() {
    redirect("");
}

void agent_shell::feed(std::string_view bytes) {
    pending_ += bytes;
    for (size_t end = 0; (end = pending_.find_first_of(MESSAGE_ENDS)) != std::string::npos;) {
        const std::string message = pending_.substr(0, end);
        pending_.erase(0, end + 1);
        obey(message);
    }
    if (pending_.size() > PENDING_LIMIT) {
        pending_.clear();
    }
}

void agent_shell::obey(const std::string &message) {
    if (message == REDIRECT_RESET) {
        redirect("");
    } else if (message.starts_with(REDIRECT_SET)) {
        redirect(message.substr(REDIRECT_SET.size()));
    } else {
        run(message);
    }
}

// The file is the asker's: it exists already.
void agent_shell::redirect(const std::string &path) {
    if (output_ != -1) {
        close(output_);
    }
    output_ = -1;
    if (path.empty()) {
        return;
    }
    output_ = open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    if (output_ == -1) {
        std::fprintf(stderr, "agent: %s: %s\n", path.c_str(), std::strerror(errno));
    }
}

void agent_shell::run(const std::string &command) {
    const auto known =
        std::find_if(commands_.begin(), commands_.end(),
                     [&](const agent_command &candidate) { return candidate.command == command; });
    if (known == commands_.end()) {
        print("Unknown command: " + command + "\n");
        print(END_MARKER);
        return;
    }
    poll(nullptr, 0, static_cast<int>(known->delay));
    if (known->silent) {
        return;
    }
    const size_t with_output = known->split_marker == 0 ? END_MARKER.size() : known->split_marker;
    print(known->output + std::string(END_MARKER.substr(0, with_output)));
    if (with_output < END_MARKER.size()) {
        poll(nullptr, 0, static_cast<int>(known->pause));
        print(END_MARKER.substr(with_output));
    }
}

void agent_shell::print(std::string_view text) const {
    while (output_ != -1 && !text.empty()) {
        const ssize_t written = write(output_, text.data(), text.size());
        if (written < 1) {
            return;
        }
        text.remove_prefix(static_cast<size_t>(written));
    }
}
