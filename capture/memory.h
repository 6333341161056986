// A driver that is asked each question once.
//
// The first time a question comes up the driver answers it, the description learns from the answer,
// and the answer is kept; every further time it is answered from here, so that all who ask see one
// view of the host. A question is the opcode, the flags, the argument, what buffer 1 carries and
// the capacities. What does more than read is not asked: it succeeds, and that is all.
//
// A large host has many millions of questions, and most of them are the same ones about another
// port. So the questions of an opcode and argument are a list of inputs and answers, each known by
// its number, and equal lists are kept once.
//
// Nothing is endless, whatever the driver answers: once a limit is met, every question is refused,
// which ends every walk.
#ifndef CAPTURE_MEMORY_H
#define CAPTURE_MEMORY_H

#include "capture/driver_call.h"
#include "capture/pool.h"
#include "host/host.h"
#include "sim/answer.h"
#include "sim/exchange.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

// An answer as it is kept, in front of its reply: what stands in the buffers afterwards, as far as
// it is not zeros.
struct kept_answer {
    uint32_t status;
    uint32_t returned; // the capacity word, 0 where there is none
    uint32_t replied;  // 0 where the driver has left the buffers alone
    uint32_t size;     // of the reply, in bytes
};

// A question of a row and its answer.
struct remembered_step {
    const byte_pool::item *asked;
    const byte_pool::item *answered;

    std::span<const uint8_t> input() const {
        return asked->bytes();
    }
    const kept_answer &told() const {
        return *reinterpret_cast<const kept_answer *>(answered->begin());
    }
    std::span<const uint8_t> reply() const {
        return {answered->begin() + sizeof(kept_answer), told().size};
    }
    bool operator==(const remembered_step &) const = default;
};

// The questions of an opcode and argument, in the order in which they came up.
struct remembered_row {
    const answer &form;
    kxdpa_request request; // its buffers are the first asker's
    std::span<const remembered_step> steps;
};

class driver_memory : public call_listener {
public:
    // What is learnt goes into `learnt`. `is_wanted` is called now and then; once it returns false
    // nothing more is asked. With `shows_progress`, what is being asked shows on standard error
    // once a second has passed.
    explicit driver_memory(host &learnt, bool (*is_wanted)() = nullptr,
                           bool shows_progress = false);
    ~driver_memory() override;
    driver_memory(const driver_memory &) = delete;
    driver_memory &operator=(const driver_memory &) = delete;

    // What asks from now on, which walks from the start.
    void begin(const std::string &who);

    int call(kxdpa_request &record) override;

    // What has been asked so far, of one opcode or opcode by opcode.
    void each_row(const std::function<void(const remembered_row &)> &visit,
                  std::optional<uint16_t> opcode = {}) const;
    // How often each status came that nothing was told with, of one opcode or of all.
    std::map<uint32_t, uint64_t> refusals(std::optional<uint16_t> opcode = {}) const;
    // True when an opcode was asked and refused throughout.
    bool is_always_refused(kxdpa_opcode opcode) const;
    std::vector<refused_opcode> refused() const; // ends of walks aside
    // Why questions were refused that the driver never saw; empty when none were.
    const std::vector<std::string> &cut() const {
        return cut_;
    }
    // Take the progress line away.
    void end_progress();

private:
    using steps = std::vector<remembered_step>;

    // The questions of a form and argument.
    struct row {
        const answer *form;
        uint32_t argument;
        uint16_t shape;
        bool rises;              // the numbers of the inputs do, in their order
        uint32_t list;           // of all lists
        uint32_t place = 0;      // in it, of the last question
        uint32_t next = NO_ROW;  // what was asked after it, of the same shape
    };

    // The questions that are alike but for argument and input.
    struct shape {
        kxdpa_request request;
        uint16_t number;
        uint16_t older;          // of the same opcode
        uint32_t longest = 0;    // of a walk, in steps; 0 for none
        bool walks_by_input = false;
        uint32_t rows = 0;
        uint32_t last = NO_ROW;    // the one that was asked last
        uint32_t first = NO_ROW;   // where a walk by the argument begins
        uint32_t growing = NO_ROW; // the one whose list is its own
        uint32_t walking = NO_ROW;
        uint32_t walked = 0;  // steps since the start
        uint32_t endless = 0; // walks
        uint32_t told = 0, refused = 0;
        std::map<uint32_t, uint64_t> refusals{}; // that say nothing else, by status
    };

    static constexpr uint32_t NO_ROW = 0xFFFFFFFF;
    static constexpr uint32_t NO_PLACE = 0xFFFFFFFF;

    shape *find_shape(const kxdpa_request &record);
    uint32_t find_row(const shape &of, uint32_t argument) const;
    uint32_t find_place(const row &in, std::span<const uint8_t> input) const;
    uint32_t add_row(shape &of, uint32_t argument);
    void note_row(shape &of, uint32_t in);
    steps &own_list(shape &of, uint32_t in);
    void share_list(row &of);
    size_t known_steps(const shape &of, uint32_t in) const;
    bool comes_back(shape &of, uint32_t in, uint32_t place);
    bool is_asked_in_vain(uint32_t in, uint32_t place, const kept_answer &told);
    bool may_ask(shape &of, uint32_t in);
    void ask(shape &of, uint32_t in, kxdpa_request &record);
    void learn(const row &in, const kxdpa_request &asked, std::span<const uint8_t> input,
               const driver_answer &told);
    static std::string walk_of(const shape &of);
    void cut_off(const std::string &why);
    void look_around();
    size_t bytes() const;

    host &learnt_;
    bool (*is_wanted_)();
    bool shows_progress_;
    bool over_ = false; // every question is refused
    uint64_t calls_ = 0, requests_ = 0;
    std::vector<shape> shapes_;
    std::vector<uint16_t> shape_of_opcode_; // the newest one
    std::vector<row> rows_;
    content_index<uint32_t> row_index_, list_index_;
    std::vector<steps> lists_;
    size_t list_bytes_ = 0;
    byte_pool inputs_, answers_;
    uint32_t last_row_ = NO_ROW, last_place_ = 0, times_ = 0;
    exchange told_; // for learning
    std::vector<uint8_t> answer_bytes_;
    std::vector<std::string> cut_;
    std::string asking_, progress_;
    std::chrono::steady_clock::time_point next_progress_;
};

#endif
