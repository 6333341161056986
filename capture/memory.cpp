#include "capture/memory.h"

#include "sim/transfer.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace {

// Far more than a large host needs.
constexpr uint64_t REQUESTS_LIMIT = uint64_t{1} << 25; // to the driver
constexpr uint64_t CALLS_LIMIT = uint64_t{1} << 28;    // with those that are answered from here
constexpr size_t BYTES_LIMIT = size_t{128} << 20;
constexpr size_t ROW_BYTES = 64, LIST_BYTES = 48, PRIVATE_VLAN_BYTES = 48; // roughly

constexpr uint64_t REQUESTS_BETWEEN_LOOKS = 64;
constexpr auto BEFORE_PROGRESS = std::chrono::seconds(1);
constexpr auto BETWEEN_PROGRESS = std::chrono::milliseconds(100);

constexpr size_t OPCODES = 2048; // more than the driver has
constexpr uint32_t NO_PLACE = 0xFFFFFFFF;

// Stands where a driver may write a word, to tell whether it does. The last byte of a number that
// people use is none of these.
constexpr uint32_t UNTOLD[] = {0xB6A5C396, 0x495A3C69};

// What a driver leaves alone has to be known: one caller may have preset what another has not, and
// the type after the UUID may not be told. So a word is asked for over one of ours; `*unwritten`
// becomes how many of its bytes the driver did not write.
driver_answer ask_over_word(kxdpa_request &record, uint8_t *word, uint32_t *unwritten) {
    const kxdpa_request asked = record;
    uint32_t preset = 0;
    std::memcpy(&preset, word, sizeof preset);
    driver_answer answer;
    uint32_t told = 0;
    for (const uint32_t untold : UNTOLD) {
        record = asked;
        std::memcpy(word, &untold, sizeof untold);
        answer = ask_driver(record);
        std::memcpy(&told, word, sizeof told);
        // The bytes in front of one that was written were written, too.
        const uint32_t changed = told ^ untold;
        *unwritten = changed == 0 ? 4 : static_cast<uint32_t>(__builtin_clz(changed)) / 8;
        if (*unwritten == 0 || *unwritten == 4) {
            break; // else the last bytes may be ours by chance
        }
    }
    const uint32_t written = *unwritten == 4 ? 0 : 0xFFFFFFFF >> *unwritten * 8;
    told = (told & written) | (preset & ~written);
    std::memcpy(word, &told, sizeof told);
    return answer;
}

driver_answer ask_once(const answer &form, kxdpa_request &record) {
    uint32_t unwritten = 0;
    if (record.flags == KXDPA_FLAG_OUT && record.len1 == sizeof unwritten) {
        driver_answer told = ask_over_word(record, bytes_at(record.buf1), &unwritten);
        if (unwritten == sizeof unwritten) {
            told.reply.reset();
        }
        return told;
    }
    if (form.behind != sizeof unwritten || record.max1 != form.capacity) {
        return ask_driver(record);
    }
    const uint32_t room = record.max1;
    driver_answer told = ask_over_word(record, bytes_at(record.buf1) + room, &unwritten);
    if (told.reply && unwritten == sizeof unwritten) {
        told.reply = told.reply->first(room);
    }
    return told;
}

// Answer from memory.
inline void tell(const remembered_step &kept, kxdpa_request &record) {
    const kept_answer &told = kept.told();
    const std::span<const uint8_t> reply = kept.reply();
    const reply_place to = reply_place_of(record);
    record.status = told.status;
    if (told.replied != 0) {
        uint8_t *bytes = bytes_at(to.address);
        std::memcpy(bytes, reply.data(), reply.size());
        if (reply.size() < to.room) {
            std::memset(bytes + reply.size(), 0, to.room - reply.size());
        }
    }
    if (to.returned != nullptr) {
        *to.returned = told.returned;
    }
}

driver_memory *listening = nullptr;

} // namespace

std::optional<uint32_t> remembered_row::refusal(const remembered_step &step) const {
    const kept_answer &told = step.told();
    kxdpa_request record = request;
    const reply_place to = reply_place_of(record);
    const bool says_more = told.status == KXDPA_STATUS_SUCCESS || told.replied != 0 ||
                           (to.returned != nullptr && *to.returned != told.returned);
    return says_more ? std::nullopt : std::optional(told.status);
}

driver_memory::driver_memory(host &learnt, const capture_request &asked)
    : learnt_(learnt), asked_(asked), shape_of_opcode_(OPCODES),
      began_(std::chrono::steady_clock::now()), next_progress_(began_ + BEFORE_PROGRESS) {
    listening = this;
    listen_to_calls([](kxdpa_request &record) { return listening->call(record); });
}

driver_memory::~driver_memory() {
    listen_to_calls(nullptr);
    if (!progress_.empty()) {
        std::fprintf(stderr, "\r%*s\r", static_cast<int>(progress_.size()), "");
    }
}

void driver_memory::begin(const std::string &who) {
    asking_ = who;
    for (shape &walked : shapes_) {
        walked.walked = 0;
    }
}

inline driver_memory::shape *driver_memory::find_shape(const kxdpa_request &record) {
    if (record.opcode >= OPCODES) {
        return nullptr;
    }
    shape *&newest = shape_of_opcode_[record.opcode];
    for (shape *known = newest; known != nullptr; known = known->older) {
        const kxdpa_request &form = known->request;
        if (form.flags == record.flags && form.len1 == record.len1 && form.len2 == record.len2 &&
            form.max1 == record.max1 && form.max2 == record.max2) {
            return known;
        }
    }
    const answer *form = find_answer(record);
    if (form == nullptr || form->learn == nullptr || form->flags != record.flags) {
        return nullptr;
    }
    newest = &shapes_.emplace_back(shape{.request = record,
                                         .number = static_cast<uint16_t>(shapes_.size()),
                                         .older = newest,
                                         .longest = form->longest,
                                         .walks_by_input = has_input(record)});
    return newest;
}

// Questions come in the order in which they came the first time, nearly always.

inline driver_memory::row *driver_memory::find_row(shape &of, uint32_t argument) {
    if (of.last != nullptr) {
        if (of.last->argument == argument) {
            return of.last;
        }
        if (of.last->next != nullptr && of.last->next->argument == argument) {
            return of.last->next;
        }
    }
    const auto found = rows_.find({of.request.opcode, argument, of.number});
    return found == rows_.end() ? nullptr : &found->second;
}

driver_memory::row &driver_memory::add_row(shape &of, uint32_t argument) {
    kxdpa_request request = of.request;
    request.arg = argument;
    row &added = rows_[{request.opcode, argument, of.number}];
    added = {.form = find_answer(request), .argument = argument};
    of.first = of.rows++ == 0 ? &added : of.first;
    return added;
}

remembered_step driver_memory::likely_step(const shape &of) {
    const bool is_known = of.before != nullptr && of.own.size() < of.before->size();
    return is_known ? (*of.before)[of.own.size()] : remembered_step();
}

inline uint32_t driver_memory::find_place(const shape &of, const row &in,
                                          std::span<const uint8_t> input) {
    const steps &list = *in.list;
    const auto is_it = [&](uint32_t place) {
        return std::memcmp(list[place].asked->first.data(), input.data(), input.size()) == 0;
    };
    const uint32_t next = in.place + 1 < list.size() ? in.place + 1 : 0;
    if (input.empty() || is_it(next)) {
        return next;
    }
    if (is_it(in.place)) {
        return in.place;
    }
    const byte_pool::item *asked = inputs_.intern(input, likely_step(of).asked);
    if (in.rises && list.back().asked->second < asked->second) {
        return NO_PLACE;
    }
    const auto found =
        in.rises ? std::partition_point(list.begin(), list.end(),
                                        [&](const remembered_step &step) {
                                            return step.asked->second < asked->second;
                                        })
                 : std::find_if(list.begin(), list.end(),
                                [&](const remembered_step &step) { return step.asked == asked; });
    return found == list.end() || found->asked != asked
               ? NO_PLACE
               : static_cast<uint32_t>(found - list.begin());
}

// A walk that has taken more steps than there are has taken one twice.
bool driver_memory::comes_back(shape &of, const row &in, uint32_t place) {
    const bool starts = of.walks_by_input ? place == 0 || of.last != &in : of.first == &in;
    of.walked = starts ? 1 : of.walked + 1;
    const size_t known = of.walks_by_input ? in.list->size() : of.rows;
    if (place == NO_PLACE || of.walked <= known) {
        return false;
    }
    cut_off("the walk of opcode " + std::to_string(of.request.opcode) +
            " comes back to where it was and is cut after " + std::to_string(known - 1) +
            " entries");
    return true;
}

bool driver_memory::may_ask(const shape &of, const row *in) {
    // Walks by the argument begin at a few places beside their start.
    constexpr size_t STARTS = 4;
    const size_t known = !of.walks_by_input ? of.rows : in == nullptr ? 0 : in->list->size();
    const size_t bytes = inputs_.bytes() + answers_.bytes() + list_bytes_ +
                         rows_.size() * ROW_BYTES + walked_bytes_ +
                         learnt_.private_vlans.size() * PRIVATE_VLAN_BYTES;
    if (of.longest != 0 && known > of.longest + STARTS) {
        cut_off("the walk of opcode " + std::to_string(of.request.opcode) +
                " does not end and is cut after " + std::to_string(of.longest) + " entries");
        return false;
    }
    if (requests_ == REQUESTS_LIMIT) {
        end("no end after " + std::to_string(REQUESTS_LIMIT) + " requests");
    } else if (bytes > BYTES_LIMIT) {
        end("more answers than " + std::to_string(BYTES_LIMIT >> 20) + " MiB hold");
    } else if (++requests_ % REQUESTS_BETWEEN_LOOKS == 0) {
        look_around();
    }
    return !over_;
}

void driver_memory::learn(const shape &of, const row &in, const kxdpa_request &asked,
                          std::span<const uint8_t> input, const driver_answer &told) {
    // What is refused at another capacity was told or refused at the first one.
    if (told.status != KXDPA_STATUS_SUCCESS && of.older != nullptr) {
        return;
    }
    told_.request = asked;
    told_.input = input;
    told_.status = told.status;
    told_.returned = told.returned;
    told_.reply.clear();
    if (told.reply) {
        told_.reply.assign(told.reply->begin(), told.reply->end());
    }
    in.form->learn(learnt_, told_);
}

void driver_memory::learn_refusals() {
    each_row([&](const remembered_row &asked) {
        for (const remembered_step &step : asked.steps) {
            told_ = {.request = asked.request, .input = step.input(), .status = step.told().status};
            if (!told_.is_told()) {
                asked.form.learn(learnt_, told_);
            }
        }
    });
}

void driver_memory::ask(shape &of, row &in, kxdpa_request &record) {
    if (of.growing != &in) {
        if (of.growing != nullptr) {
            of.own.shrink_to_fit();
            const auto [list, is_new] = lists_.insert(std::move(of.own));
            list_bytes_ += is_new ? LIST_BYTES + list->size() * sizeof(remembered_step) : 0;
            of.growing->list = &*list;
            of.before = &*list;
        }
        of.own = in.list == nullptr ? steps() : *in.list;
        of.growing = &in;
        in.list = &of.own;
    }
    const kxdpa_request asked = record;
    const remembered_step likely = likely_step(of);
    const byte_pool::item *input = inputs_.intern(input_of(record), likely.asked);
    const driver_answer told = ask_once(*in.form, record);
    learn(of, in, asked, bytes_of(*input), told);
    walked_bytes_ += of.longest != 0 && told.reply ? told.reply->size() : 0;

    std::span<const uint8_t> reply = told.reply.value_or(std::span<const uint8_t>());
    while (!reply.empty() && reply.back() == 0) {
        reply = reply.first(reply.size() - 1);
    }
    const kept_answer head = {told.status, told.returned.value_or(0), told.reply ? 1U : 0U};
    const auto *bytes = reinterpret_cast<const uint8_t *>(&head);
    answer_bytes_.assign(bytes, bytes + sizeof head);
    answer_bytes_.insert(answer_bytes_.end(), reply.begin(), reply.end());
    in.rises = of.own.empty() || (in.rises && of.own.back().asked->second < input->second);
    in.place = static_cast<uint32_t>(of.own.size());
    of.own.push_back({input, answers_.intern(answer_bytes_, likely.answered)});
}

int driver_memory::call(kxdpa_request &record) {
    shape *const of = find_shape(record);
    if (of == nullptr) {
        record.status = KXDPA_STATUS_SUCCESS;
        return 0;
    }
    if (!over_ && ++calls_ == CALLS_LIMIT) {
        end("no end after " + std::to_string(CALLS_LIMIT) + " questions");
    }
    if (over_) {
        return EIO;
    }
    row *in = find_row(*of, record.arg);
    const uint32_t place = in == nullptr ? NO_PLACE : find_place(*of, *in, input_of(record));
    if (place == NO_PLACE) {
        if (!may_ask(*of, in)) {
            return EIO;
        }
        in = in == nullptr ? &add_row(*of, record.arg) : in;
        ask(*of, *in, record);
    }
    if (of->longest != 0 && comes_back(*of, *in, place)) {
        return EIO;
    }
    if (of->last != in && of->last != nullptr) {
        of->last->next = in;
    }
    of->last = in;
    if (place != NO_PLACE) {
        in->place = place;
        tell((*in->list)[place], record);
    }
    return 0;
}

void driver_memory::each_row(const std::function<void(const remembered_row &)> &visit,
                             std::optional<uint16_t> opcode) const {
    const row_key *before = nullptr;
    for (auto at = rows_.lower_bound({opcode.value_or(0), 0, 0});
         at != rows_.end() && opcode.value_or(at->first.opcode) == at->first.opcode; ++at) {
        const auto &[key, asked] = *at;
        if (before == nullptr || before->opcode != key.opcode || before->argument != key.argument) {
            remembered_row visited = {*asked.form, shapes_[key.shape].request, *asked.list};
            visited.request.arg = key.argument;
            visit(visited);
        }
        before = &key;
    }
}

std::map<uint16_t, opcode_tally> driver_memory::tallies() const {
    std::map<uint16_t, opcode_tally> tallies;
    each_row([&](const remembered_row &asked) {
        opcode_tally &tally = tallies[asked.request.opcode];
        tally.walks = asked.form.longest != 0;
        tally.questions += static_cast<uint32_t>(asked.steps.size());
        for (const remembered_step &step : asked.steps) {
            if (step.told().status == KXDPA_STATUS_SUCCESS) {
                tally.told++;
            } else if (const auto status = asked.refusal(step)) {
                tally.refusals[*status]++;
            }
        }
    });
    return tallies;
}

void driver_memory::cut_off(const std::string &why) {
    constexpr size_t REASONS = 16;
    if (cut_.size() < REASONS && std::find(cut_.begin(), cut_.end(), why) == cut_.end()) {
        cut_.push_back(why);
    }
}

void driver_memory::end(const std::string &why) {
    over_ = true;
    cut_off(why);
}

void driver_memory::look_around() {
    if (asked_.is_wanted != nullptr && !asked_.is_wanted()) {
        end("nobody waits for it any more");
    }
    const auto now = std::chrono::steady_clock::now();
    if (now - began_ > asked_.time_limit) {
        end("no end after " + std::to_string(asked_.time_limit.count()) + " seconds");
    }
    if (!asked_.shows_progress || now < next_progress_) {
        return;
    }
    next_progress_ = now + BETWEEN_PROGRESS;
    // Blanks cover what is left of the line before; not every terminal knows a sequence for that.
    const auto width = static_cast<int>(progress_.size());
    progress_ = "tarncap: " + asking_ + ", " + std::to_string(requests_) + " requests";
    std::fprintf(stderr, "\r%-*s", width, progress_.c_str());
    std::fflush(stderr);
}
