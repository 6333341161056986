// A driver that is asked each question once.
//
// The first time a question comes up the driver answers it, the description learns from the answer,
// and the answer is kept; every further time it is answered from here, so that all who ask see one
// view of the host. A question is the opcode, the flags, the argument, what buffer 1 carries and
// the capacities. What does more than read is not asked: it succeeds, and that is all.
//
// Nothing is endless, whatever the driver answers: a walk is cut where it comes back to where it
// was or is longer than any table, and once another limit is met every question is refused.
#ifndef CAPTURE_MEMORY_H
#define CAPTURE_MEMORY_H

#include "capture/capture.h"
#include "capture/driver_call.h"
#include "capture/pool.h"
#include "host/host.h"
#include "sim/answer.h"
#include "sim/exchange.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory_resource>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <tuple>
#include <vector>

// An answer as it is kept, before its reply: what stands in the buffers afterwards, as far as it is
// not zeros.
struct kept_answer {
    uint32_t status;
    uint32_t returned; // the capacity word, 0 where there is none
    uint32_t replied;  // 0 where the driver has left the buffers alone
};

struct remembered_step {
    const byte_pool::item *asked = nullptr;
    const byte_pool::item *answered = nullptr;

    std::span<const uint8_t> input() const {
        return bytes_of(*asked);
    }
    const kept_answer &told() const {
        return *reinterpret_cast<const kept_answer *>(answered->first.data());
    }
    std::span<const uint8_t> reply() const {
        return bytes_of(*answered).subspan(sizeof(kept_answer));
    }
    bool operator<(const remembered_step &other) const {
        return std::tie(asked, answered) < std::tie(other.asked, other.answered);
    }
};

// The questions of an opcode and argument, in the order in which they came up.
struct remembered_row {
    const answer &form;
    kxdpa_request request; // its buffers are the first asker's
    std::span<const remembered_step> steps;

    // The status of an answer that says nothing else.
    std::optional<uint32_t> refusal(const remembered_step &step) const;
};

// What became of the questions of an opcode.
struct opcode_tally {
    bool walks = false; // they are steps, and what is refused are ends
    uint32_t questions = 0;
    uint32_t told = 0;                       // of these succeeded
    std::map<uint32_t, uint32_t> refusals{}; // by status, of those that were told nothing else
};

class driver_memory {
public:
    // What is learnt goes into `learnt`. It and `asked` stay where they are while this lives.
    driver_memory(host &learnt, const capture_request &asked);
    ~driver_memory();
    driver_memory(const driver_memory &) = delete;
    driver_memory &operator=(const driver_memory &) = delete;

    // What asks from now on, which walks from the start.
    void begin(const std::string &who);

    // Learn from what was refused once more: it may have been refused before anything was told of
    // the same thing, and nothing is learnt of an unknown one.
    void learn_refusals();

    // What has been asked so far, opcode by opcode, or of one opcode. Where an opcode and argument
    // was asked in several forms, that is what the first one asked: a rule cannot tell them apart.
    void each_row(const std::function<void(const remembered_row &)> &visit,
                  std::optional<uint16_t> opcode = {}) const;
    std::map<uint16_t, opcode_tally> tallies() const;
    // Why questions were refused that the driver never saw; empty when none were.
    const std::vector<std::string> &cut() const {
        return cut_;
    }

private:
    // Most questions of a large host are the same ones about another port, so equal lists of
    // questions and answers are kept once.
    using steps = std::vector<remembered_step>;

    // The questions of a form and argument.
    struct row {
        const answer *form;
        uint32_t argument;
        const steps *list = nullptr;
        bool rises = true;   // the numbers of the inputs do, in their order
        uint32_t place = 0;  // in the list, of the last question
        row *next = nullptr; // what was asked after it the last time, of the same shape
    };

    // The questions that are alike but for argument and input.
    struct shape {
        kxdpa_request request;
        uint16_t number;
        shape *older;         // of the same opcode
        uint32_t longest = 0; // of a walk, in steps; 0 for none
        bool walks_by_input = false;
        uint32_t rows = 0;
        row *first = nullptr; // where a walk by the argument begins
        row *last = nullptr;  // the one that was asked last
        uint32_t walked = 0;  // steps since a walk's start
        row *growing = nullptr;
        steps own{};                   // the growing one's list
        const steps *before = nullptr; // the list of the one that grew before it
    };

    struct row_key {
        uint16_t opcode;
        uint32_t argument;
        uint16_t shape;
        bool operator<(const row_key &other) const {
            return std::tie(opcode, argument, shape) <
                   std::tie(other.opcode, other.argument, other.shape);
        }
    };

    int call(kxdpa_request &record);
    shape *find_shape(const kxdpa_request &record);
    row *find_row(shape &of, uint32_t argument);
    row &add_row(shape &of, uint32_t argument);
    // The next step of the row that grows if all goes as with the row before, else nothing.
    static remembered_step likely_step(const shape &of);
    uint32_t find_place(const shape &of, const row &in, std::span<const uint8_t> input);
    bool comes_back(shape &of, const row &in, uint32_t place);
    bool may_ask(const shape &of, const row *in);
    void ask(shape &of, row &in, kxdpa_request &record);
    void learn(const shape &of, const row &in, const kxdpa_request &asked,
               std::span<const uint8_t> input, const driver_answer &told);
    void cut_off(const std::string &why);
    void end(const std::string &why);
    void look_around();

    host &learnt_;
    const capture_request &asked_;
    bool over_ = false; // every question is refused
    uint64_t calls_ = 0, requests_ = 0;
    std::vector<std::string> cut_;
    std::vector<shape *> shape_of_opcode_; // the newest of each
    std::deque<shape> shapes_;
    std::pmr::monotonic_buffer_resource row_memory_;
    std::pmr::map<row_key, row> rows_{&row_memory_};
    std::set<steps> lists_;
    size_t list_bytes_ = 0;
    size_t walked_bytes_ = 0; // of replies to steps, which the description keeps each by itself
    byte_pool inputs_, answers_;
    exchange told_; // what is being learnt from
    std::vector<uint8_t> answer_bytes_;
    std::string asking_, progress_;
    std::chrono::steady_clock::time_point began_, next_progress_;
};

#endif
