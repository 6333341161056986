// The agent's end of the socket channel: one connection, requests answered in order.
#ifndef SIM_AGENT_AGENT_CHANNEL_H
#define SIM_AGENT_AGENT_CHANNEL_H

#include "host/agent.h"

#include <cstdint>
#include <vector>

// The answers of a description, and how many requests each has fitted so far.
struct agent_answers {
    std::vector<agent_answer> described;
    std::vector<uint32_t> seen = std::vector<uint32_t>(described.size());
};

class agent_channel {
public:
    // `answers` are shared by all connections and outlive them; the descriptor becomes the
    // channel's.
    agent_channel(int descriptor, agent_answers &answers);
    ~agent_channel();
    agent_channel(const agent_channel &) = delete;
    agent_channel &operator=(const agent_channel &) = delete;

    int descriptor() const {
        return descriptor_;
    }

    // Take what has arrived and answer the messages that are whole. Returns false when the
    // connection is over.
    bool serve();

private:
    bool answer_message(std::vector<uint8_t> message);

    int descriptor_;
    agent_answers &answers_;
    std::vector<uint8_t> received_;
};

#endif
