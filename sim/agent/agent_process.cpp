#include "sim/agent/agent_process.h"

#include "dpa/userspace/kxdpa_request.h"
#include "sim/exchange.h"
#include "sim/transfer.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <functional>
#include <list>
#include <string_view>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr uint64_t MESSAGE_LIMIT = uint64_t{1} << 24; // bytes of a request with its buffers

constexpr std::string_view REDIRECT_SET = "redirect set ";
constexpr std::string_view REDIRECT_RESET = "redirect reset ";
constexpr std::string_view END_MARKER = "#byeBye#";
constexpr std::string_view COMMAND_ENDS("\0\n", 2);
constexpr size_t PENDING_LIMIT = 4096; // bytes; longer than any command

struct agent {
    agent_description described;
    std::vector<uint32_t> seen; // how many requests each of the answers has fitted so far
    std::string pending = {};   // from the pipe: a command that is not whole yet
    int output = -1;            // of commands; -1 while it is not redirected: it is lost then
};

// A client of the socket. Its requests are answered in order.
struct connection {
    int descriptor;
    std::vector<uint8_t> received = {};
};

void wait_milliseconds(uint32_t count) {
    poll(nullptr, 0, static_cast<int>(count));
}

// --- Requests ---

// A message is the request and after it the buffers, each with the capacity that is given.
uint64_t message_size(const kxdpa_request &request) {
    uint64_t size = sizeof request + uint64_t{request.len1};
    size += uint64_t{request.max1} * (request.max1_valid & 1);
    if (has_flag(request, KXDPA_FLAG_TWO)) {
        size += request.len2 + uint64_t{request.max2} * (request.max2_valid & 1);
    }
    return size;
}

// Names the first field that is wrong, nullptr for none.
const char *wrong_field(const kxdpa_request &request) {
    const uint32_t one = has_flag(request, KXDPA_FLAG_MAX) ? 1 : 0;
    const uint32_t two = has_flag(request, KXDPA_FLAG_TWO) ? one : 0;
    const bool reserved = std::ranges::any_of(request.reserved, std::identity());
    return request.marker != KXDPA_SOCKET_MARKER     ? "marker"
           : request.version != KXDPA_SOCKET_VERSION ? "version"
           : reserved                                ? "reserved"
           : request.max1_valid != one               ? "max1_valid"
           : request.max2_valid != two               ? "max2_valid"
                                                     : nullptr;
}

const agent_answer *find_answer(agent &self, const kxdpa_request &request) {
    const agent_answer *found = nullptr;
    for (size_t i = 0; i < self.seen.size(); i++) {
        const agent_answer &answer = self.described.answers[i];
        if (answer.opcode != request.opcode ||
            (answer.argument && *answer.argument != request.arg)) {
            continue;
        }
        self.seen[i]++;
        if (found == nullptr && (answer.only_time == 0 || answer.only_time == self.seen[i])) {
            found = &answer;
        }
    }
    return found;
}

// Send the first `count` bytes of the message back, with this status.
bool send_back(int descriptor, std::vector<uint8_t> &message, uint32_t status, size_t count) {
    std::memcpy(message.data() + offsetof(kxdpa_request, status), &status, sizeof status);
    for (size_t sent = 0; sent < count;) {
        const ssize_t took = send(descriptor, message.data() + sent, count - sent, MSG_NOSIGNAL);
        if (took < 1) {
            return false;
        }
        sent += static_cast<size_t>(took);
    }
    return true;
}

// Returns false when the connection is over. The message comes back with the reply where its flags
// say, which is its last buffer; everything else is the request's own bytes.
bool answer_message(agent &self, int descriptor, std::vector<uint8_t> message) {
    kxdpa_request request{};
    std::memcpy(&request, message.data(), sizeof request);
    if (const char *wrong = wrong_field(request)) {
        std::fprintf(stderr, "agent: op %u: %s is wrong\n", request.opcode, wrong);
        return send_back(descriptor, message, SIM_STATUS_MALFORMED, message.size());
    }
    const agent_answer *answer = find_answer(self, request);
    if (answer == nullptr) {
        return send_back(descriptor, message, SIM_STATUS_UNKNOWN_OPCODE, message.size());
    }
    wait_milliseconds(answer->delay);
    if (answer->silent) {
        return true;
    }
    if (answer->status == KXDPA_STATUS_SUCCESS) {
        std::vector<uint8_t> reply = answer->reply;
        reply.resize(reply_place_of(request).room);
        std::copy_backward(reply.begin(), reply.end(), message.end());
    }
    const size_t count = std::min<size_t>(answer->close_after.value_or(UINT32_MAX), message.size());
    return send_back(descriptor, message, answer->status, count) && !answer->close_after;
}

// Take what has arrived and answer the messages that are whole. Returns false when the connection
// is over.
bool serve_connection(agent &self, connection &client) {
    uint8_t piece[65536];
    const ssize_t got = read(client.descriptor, piece, sizeof piece);
    if (got < 1) {
        return false;
    }
    std::vector<uint8_t> &received = client.received;
    received.insert(received.end(), piece, piece + got);
    while (received.size() >= sizeof(kxdpa_request)) {
        kxdpa_request request{};
        std::memcpy(&request, received.data(), sizeof request);
        const uint64_t size = message_size(request);
        if (size > MESSAGE_LIMIT) {
            std::fprintf(stderr, "agent: op %u: a message of %llu bytes\n", request.opcode, size);
            return false;
        }
        if (received.size() < size) {
            break;
        }
        const auto end = received.begin() + static_cast<ptrdiff_t>(size);
        std::vector<uint8_t> message(received.begin(), end);
        received.erase(received.begin(), end);
        if (!answer_message(self, client.descriptor, std::move(message))) {
            return false;
        }
    }
    return true;
}

// --- Commands ---

// The file is the asker's: it exists already.
void redirect(agent &self, const std::string &path) {
    if (self.output != -1) {
        close(self.output);
    }
    self.output = path.empty() ? -1 : open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    if (self.output == -1 && !path.empty()) {
        std::fprintf(stderr, "agent: %s: %s\n", path.c_str(), std::strerror(errno));
    }
}

void print(const agent &self, std::string_view text) {
    while (self.output != -1 && !text.empty()) {
        const ssize_t written = write(self.output, text.data(), text.size());
        if (written < 1) {
            return;
        }
        text.remove_prefix(static_cast<size_t>(written));
    }
}

void run(const agent &self, const std::string &command) {
    const auto &commands = self.described.commands;
    const auto known = std::ranges::find(commands, command, &agent_command::command);
    if (known == commands.end()) {
        print(self, "Unknown command: " + command + "\n");
        return print(self, END_MARKER);
    }
    wait_milliseconds(known->delay);
    if (known->silent) {
        return;
    }
    const size_t with_output = known->split_marker == 0 ? END_MARKER.size() : known->split_marker;
    print(self, known->output + std::string(END_MARKER.substr(0, with_output)));
    if (with_output < END_MARKER.size()) {
        wait_milliseconds(known->pause);
        print(self, END_MARKER.substr(with_output));
    }
}

// Obey the commands that have arrived whole: each ends with a NUL or a newline.
void serve_pipe(agent &self, int pipe) {
    char piece[4096];
    const ssize_t got = read(pipe, piece, sizeof piece);
    self.pending.append(piece, got > 0 ? static_cast<size_t>(got) : 0);
    size_t end = 0;
    while ((end = self.pending.find_first_of(COMMAND_ENDS)) != std::string::npos) {
        const std::string command = self.pending.substr(0, end);
        self.pending.erase(0, end + 1);
        if (command == REDIRECT_RESET) {
            redirect(self, "");
        } else if (command.starts_with(REDIRECT_SET)) {
            redirect(self, command.substr(REDIRECT_SET.size()));
        } else {
            run(self, command);
        }
    }
    if (self.pending.size() > PENDING_LIMIT) {
        self.pending.clear();
    }
}

// --- The process ---

// One thing after the other, as the agent itself does: a slow command keeps requests waiting.
[[noreturn]] void serve(agent self, const agent_paths &paths) {
    std::list<connection> clients;
    for (;;) {
        std::vector<pollfd> waiting = {{paths.listener(), POLLIN, 0}, {paths.pipe(), POLLIN, 0}};
        for (const connection &client : clients) {
            waiting.push_back({client.descriptor, POLLIN, 0});
        }
        if (poll(waiting.data(), waiting.size(), -1) == -1) {
            continue;
        }
        auto ready = waiting.begin() + 2;
        std::erase_if(clients, [&](connection &client) {
            if ((ready++)->revents == 0 || serve_connection(self, client)) {
                return false;
            }
            close(client.descriptor);
            return true;
        });
        if (waiting[1].revents != 0) {
            serve_pipe(self, paths.pipe());
        }
        if (waiting[0].revents == 0) {
            continue;
        }
        const int client = accept4(paths.listener(), nullptr, nullptr, SOCK_CLOEXEC);
        if (client != -1) {
            clients.push_back({client});
        }
    }
}

[[noreturn]] void become_agent(pid_t parent, const agent_paths &paths,
                               const agent_description &description) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(0);
    }
    // An interrupt from the terminal is the command's.
    std::signal(SIGINT, SIG_IGN);
    std::signal(SIGQUIT, SIG_IGN);
    serve({description, std::vector<uint32_t>(description.answers.size())}, paths);
}

} // namespace

agent_process::~agent_process() {
    if (process_ == -1) {
        return;
    }
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

bool agent_process::start(const agent_description &description, std::string &error) {
    if (!paths_.claim(error)) {
        return false;
    }
    const pid_t parent = getpid();
    process_ = fork();
    if (process_ == 0) {
        become_agent(parent, paths_, description);
    }
    if (process_ == -1) {
        error = std::string("agent: fork: ") + std::strerror(errno);
    }
    paths_.close_descriptors();
    return process_ != -1;
}
