#include "capture/memory.h"

#include "sim/transfer.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <utility>

namespace {

// Far more than a large host needs.
constexpr uint64_t REQUESTS_LIMIT = uint64_t{1} << 25; // to the driver
constexpr uint64_t CALLS_LIMIT = uint64_t{1} << 28;    // with those that are answered from here
constexpr size_t BYTES_LIMIT = size_t{128} << 20;
constexpr uint32_t HOPELESS_WALKS = 3; // then no other one of the opcode is begun
constexpr uint32_t PATIENCE = 3;       // refusals of the same question in a row

constexpr uint64_t REQUESTS_BETWEEN_LOOKS = 64;
constexpr auto BEFORE_PROGRESS = std::chrono::seconds(1);
constexpr auto BETWEEN_PROGRESS = std::chrono::milliseconds(100);

constexpr size_t OPCODES = 2048; // more than the driver has
constexpr uint16_t NO_SHAPE = 0xFFFF;
constexpr uint32_t NO_LIST = 0xFFFFFFFF;

// The steps of walks, and what no driver has more of: ports, addresses of an L2 table, anything
// else.
constexpr struct {
    kxdpa_opcode opcode;
    uint32_t longest;
} WALKS[] = {
    {KXDPA_OP_NEXT_LTL, 4096},          {KXDPA_OP_BD_NEXT_PORT, 4096},
    {KXDPA_OP_NEXT_L2_ENTRY, 65536},    {KXDPA_OP_L2_SLOTS, 65536},
    {KXDPA_OP_NEXT_VLAN, 16384},        {KXDPA_OP_NEXT_BD, 16384},
    {KXDPA_OP_NEXT_VLAN_GROUP, 16384},  {KXDPA_OP_NEXT_HEAP, 16384},
    {KXDPA_OP_NEXT_MEMORY_POOL, 16384},
};

// Stands where a driver may write a word, to tell whether it does. The last byte of a number that
// people use is none of these.
constexpr uint32_t UNTOLD[] = {0xB6A5C396, 0x495A3C69};

// One that says nothing but its status.
bool is_plain_refusal(const kxdpa_request &asked, const driver_answer &told) {
    kxdpa_request record = asked;
    const reply_place to = reply_place_of(record);
    return !told.reply && (to.returned == nullptr || *to.returned == told.returned);
}

uint8_t *bytes_at(uint32_t address) {
    return reinterpret_cast<uint8_t *>(static_cast<uintptr_t>(address));
}

// What a driver leaves alone has to be known: one caller may have preset what another has not, and
// the type behind the UUID may not be told. So a word is asked for over one of ours; `*unwritten`
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

} // namespace

driver_memory::driver_memory(host &learnt, bool (*is_wanted)(), bool shows_progress)
    : learnt_(learnt), is_wanted_(is_wanted), shows_progress_(shows_progress),
      shape_of_opcode_(OPCODES, NO_SHAPE),
      next_progress_(std::chrono::steady_clock::now() + BEFORE_PROGRESS) {
    listen_to_calls(this);
}

driver_memory::~driver_memory() {
    listen_to_calls(nullptr);
    end_progress();
}

void driver_memory::begin(const std::string &who) {
    asking_ = who;
    for (shape &walked : shapes_) {
        walked.walked = 0;
    }
}

driver_memory::shape *driver_memory::find_shape(const kxdpa_request &record) {
    if (record.opcode >= OPCODES) {
        return nullptr;
    }
    uint16_t &newest = shape_of_opcode_[record.opcode];
    for (uint16_t at = newest; at != NO_SHAPE; at = shapes_[at].older) {
        const kxdpa_request &known = shapes_[at].request;
        if (known.flags == record.flags && known.len1 == record.len1 &&
            known.len2 == record.len2 && known.max1 == record.max1 && known.max2 == record.max2) {
            return &shapes_[at];
        }
    }
    const answer *form = find_answer(record);
    if (form == nullptr || form->learn == nullptr || form->flags != record.flags ||
        shapes_.size() == NO_SHAPE) {
        return nullptr;
    }
    const auto number = static_cast<uint16_t>(shapes_.size());
    shape &made =
        shapes_.emplace_back(shape{.request = record, .number = number, .older = newest});
    for (const auto &[opcode, longest] : WALKS) {
        if (opcode == record.opcode) {
            made.longest = longest;
            made.walks_by_input = has_input(record);
        }
    }
    newest = number;
    return &made;
}

// Questions come in the order in which they came the first time, nearly always.

uint32_t driver_memory::find_row(const shape &of, uint32_t argument) const {
    if (of.last != NO_ROW) {
        const row &last = rows_[of.last];
        if (last.argument == argument) {
            return of.last;
        }
        if (last.next != NO_ROW && rows_[last.next].argument == argument) {
            return last.next;
        }
    }
    const uint32_t *found =
        row_index_.find(mix_hash(of.number, argument), [&](uint32_t in) {
            return rows_[in].argument == argument && rows_[in].shape == of.number;
        });
    return found == nullptr ? NO_ROW : *found;
}

void driver_memory::note_row(shape &of, uint32_t in) {
    if (of.last != NO_ROW && of.last != in) {
        rows_[of.last].next = in;
    }
    of.last = in;
}

uint32_t driver_memory::add_row(shape &of, uint32_t argument) {
    const auto in = static_cast<uint32_t>(rows_.size());
    kxdpa_request request = of.request;
    request.arg = argument;
    rows_.push_back({find_answer(request), argument, of.number, true, NO_LIST});
    row_index_.insert(mix_hash(of.number, argument), in);
    of.first = of.rows++ == 0 ? in : of.first;
    return in;
}

uint32_t driver_memory::find_place(const row &in, std::span<const uint8_t> input) const {
    const steps &list = lists_[in.list];
    const auto is_it = [&](uint32_t place) {
        return std::memcmp(list[place].asked->begin(), input.data(), input.size()) == 0;
    };
    const uint32_t next = in.place + 1 < list.size() ? in.place + 1 : 0;
    if (input.empty() || is_it(next)) {
        return next;
    }
    if (is_it(in.place)) {
        return in.place;
    }
    const byte_pool::item *known = inputs_.find(input);
    if (known == nullptr || (in.rises && list.back().asked->number < known->number)) {
        return NO_PLACE;
    }
    const auto found = in.rises
                           ? std::lower_bound(list.begin(), list.end(), known->number,
                                              [](const remembered_step &a, uint32_t number) {
                                                  return a.asked->number < number;
                                              })
                           : std::find_if(list.begin(), list.end(), [&](const auto &kept) {
                                 return kept.asked == known;
                             });
    return found == list.end() || found->asked != known
               ? NO_PLACE
               : static_cast<uint32_t>(found - list.begin());
}

// A walk that has taken more steps than there are has taken one twice. `place` is NO_PLACE for a step
// that is new.
bool driver_memory::comes_back(shape &of, uint32_t in, uint32_t place) {
    if (of.longest == 0) {
        return false;
    }
    const bool starts = of.walks_by_input ? place == 0 || in != of.walking : in == of.first;
    of.walking = in;
    of.walked = starts ? 1 : of.walked + 1;
    const size_t known = known_steps(of, in);
    if (place == NO_PLACE || of.walked <= known) {
        return false;
    }
    cut_off(walk_of(of) + " comes back to where it was and is cut after " +
            std::to_string(known - 1) + " entries");
    return true;
}

size_t driver_memory::known_steps(const shape &of, uint32_t in) const {
    if (!of.walks_by_input) {
        return of.rows;
    }
    return in == NO_ROW ? 0 : lists_[rows_[in].list].size();
}

std::string driver_memory::walk_of(const shape &of) {
    return "the walk of opcode " + std::to_string(of.request.opcode);
}

bool driver_memory::may_ask(shape &of, uint32_t in) {
    // Walks by the argument begin at a few places beside their start.
    constexpr size_t STARTS = 4;
    if (requests_ == REQUESTS_LIMIT || bytes() > BYTES_LIMIT) {
        over_ = true;
        cut_off(requests_ == REQUESTS_LIMIT
                    ? "no end after " + std::to_string(REQUESTS_LIMIT) + " requests"
                    : "more answers than " + std::to_string(BYTES_LIMIT >> 20) + " MiB hold");
    } else if (of.endless == HOPELESS_WALKS) {
        cut_off("no other walk of opcode " + std::to_string(of.request.opcode) + " is begun");
        return false;
    } else if (of.longest != 0 && known_steps(of, in) > of.longest + STARTS) {
        of.endless++;
        cut_off(walk_of(of) + " does not end and is cut after " + std::to_string(of.longest) +
                " entries");
        return false;
    } else if (++requests_ % REQUESTS_BETWEEN_LOOKS == 0) {
        look_around();
    }
    return !over_;
}

// A list that others share is copied before it grows.
driver_memory::steps &driver_memory::own_list(shape &of, uint32_t in) {
    if (of.growing != in) {
        if (of.growing != NO_ROW) {
            share_list(rows_[of.growing]);
        }
        of.growing = in;
        steps own = rows_[in].list == NO_LIST ? steps() : lists_[rows_[in].list];
        rows_[in].list = static_cast<uint32_t>(lists_.size());
        lists_.push_back(std::move(own));
    }
    return lists_[rows_[in].list];
}

void driver_memory::share_list(row &of) {
    steps &own = lists_[of.list];
    uint32_t hash = 0;
    for (const remembered_step &step : own) {
        hash = mix_hash(mix_hash(hash, step.asked->number), step.answered->number);
    }
    const uint32_t *same =
        list_index_.find(hash, [&](uint32_t list) { return lists_[list] == own; });
    if (same == nullptr) {
        own.shrink_to_fit();
        list_bytes_ += own.size() * sizeof own[0];
        list_index_.insert(hash, of.list);
    } else if (of.list + 1 == lists_.size()) {
        of.list = *same;
        lists_.pop_back();
    } else {
        of.list = *same;
        steps().swap(own);
    }
}

void driver_memory::learn(const row &in, const kxdpa_request &asked,
                          std::span<const uint8_t> input, const driver_answer &told) {
    // What is refused at another capacity was told or refused at the first one.
    if (told.status != KXDPA_STATUS_SUCCESS && shapes_[in.shape].older != NO_SHAPE) {
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

void driver_memory::ask(shape &of, uint32_t in, kxdpa_request &record) {
    const kxdpa_request asked = record;
    const byte_pool::item *input = inputs_.intern(input_of(record));
    const driver_answer told = ask_once(*rows_[in].form, record);
    if (told.status == KXDPA_STATUS_SUCCESS) {
        of.told++;
    } else {
        of.refused++;
        of.refusals[told.status] += is_plain_refusal(asked, told) ? 1 : 0;
    }
    learn(rows_[in], asked, input->bytes(), told);

    std::span<const uint8_t> reply = told.reply.value_or(std::span<const uint8_t>());
    while (!reply.empty() && reply.back() == 0) {
        reply = reply.first(reply.size() - 1);
    }
    const kept_answer head = {told.status, told.returned.value_or(0), told.reply ? 1U : 0U,
                              static_cast<uint32_t>(reply.size())};
    const auto *bytes = reinterpret_cast<const uint8_t *>(&head);
    answer_bytes_.assign(bytes, bytes + sizeof head);
    answer_bytes_.insert(answer_bytes_.end(), reply.begin(), reply.end());

    steps &list = own_list(of, in);
    row &kept = rows_[in];
    kept.rises = list.empty() || (kept.rises && list.back().asked->number < input->number);
    kept.place = static_cast<uint32_t>(list.size());
    list.push_back({input, answers_.intern(answer_bytes_)});
}

// One display asks for a record until it gets it.
bool driver_memory::is_asked_in_vain(uint32_t in, uint32_t place, const kept_answer &told) {
    times_ = in == last_row_ && place == last_place_ ? times_ + 1 : 0;
    last_row_ = in;
    last_place_ = place;
    return times_ >= PATIENCE && told.status != KXDPA_STATUS_SUCCESS;
}

int driver_memory::call(kxdpa_request &record) {
    shape *of = find_shape(record);
    if (of == nullptr) {
        record.status = KXDPA_STATUS_SUCCESS;
        return 0;
    }
    if (!over_ && ++calls_ == CALLS_LIMIT) {
        over_ = true;
        cut_off("no end after " + std::to_string(CALLS_LIMIT) + " questions");
    }
    if (over_) {
        return EIO;
    }
    uint32_t in = find_row(*of, record.arg);
    const uint32_t place = in == NO_ROW ? NO_PLACE : find_place(rows_[in], input_of(record));
    if (place == NO_PLACE) {
        if (!may_ask(*of, in)) {
            return EIO;
        }
        in = in == NO_ROW ? add_row(*of, record.arg) : in;
        note_row(*of, in);
        ask(*of, in, record);
        comes_back(*of, in, NO_PLACE);
        return 0;
    }
    if (comes_back(*of, in, place)) {
        return EIO;
    }
    note_row(*of, in);
    rows_[in].place = place;
    const remembered_step &kept = lists_[rows_[in].list][place];
    const kept_answer &told = kept.told();
    record.status = is_asked_in_vain(in, place, told) ? KXDPA_STATUS_SUCCESS : told.status;
    const reply_place to = reply_place_of(record);
    if (told.replied != 0) {
        uint8_t *bytes = bytes_at(to.address);
        std::memcpy(bytes, kept.reply().data(), told.size);
        if (told.size < to.room) {
            std::memset(bytes + told.size, 0, to.room - told.size);
        }
    }
    if (to.returned != nullptr) {
        *to.returned = told.returned;
    }
    return 0;
}

void driver_memory::each_row(const std::function<void(const remembered_row &)> &visit,
                             std::optional<uint16_t> opcode) const {
    const auto opcode_of = [&](uint32_t in) { return shapes_[rows_[in].shape].request.opcode; };
    std::vector<uint32_t> order;
    for (uint32_t in = 0; in < rows_.size(); in++) {
        if (!opcode || *opcode == opcode_of(in)) {
            order.push_back(in);
        }
    }
    std::stable_sort(order.begin(), order.end(),
                     [&](uint32_t a, uint32_t b) { return opcode_of(a) < opcode_of(b); });
    for (const uint32_t in : order) {
        const row &asked = rows_[in];
        // What was asked again at another capacity is told apart by nobody else.
        bool is_first = true;
        for (uint16_t at = shapes_[asked.shape].older; at != NO_SHAPE; at = shapes_[at].older) {
            is_first &= find_row(shapes_[at], asked.argument) == NO_ROW;
        }
        if (is_first) {
            remembered_row visited = {*asked.form, shapes_[asked.shape].request,
                                      lists_[asked.list]};
            visited.request.arg = asked.argument;
            visit(visited);
        }
    }
}

std::map<uint32_t, uint64_t> driver_memory::refusals(std::optional<uint16_t> opcode) const {
    std::map<uint32_t, uint64_t> counts;
    for (const shape &of : shapes_) {
        for (const auto &[status, count] : of.refusals) {
            counts[status] += !opcode || *opcode == of.request.opcode ? count : 0;
        }
    }
    return counts;
}

bool driver_memory::is_always_refused(kxdpa_opcode opcode) const {
    uint32_t refused = 0;
    for (uint16_t at = shape_of_opcode_[opcode]; at != NO_SHAPE; at = shapes_[at].older) {
        if (shapes_[at].told != 0) {
            return false;
        }
        refused += shapes_[at].refused;
    }
    return refused != 0;
}

std::vector<refused_opcode> driver_memory::refused() const {
    std::map<uint16_t, uint32_t> counts;
    for (const shape &of : shapes_) {
        counts[of.request.opcode] += of.longest == 0 ? of.refused : 0;
    }
    std::vector<refused_opcode> refused;
    for (const auto &[opcode, count] : counts) {
        if (count != 0) {
            refused.push_back({opcode, count});
        }
    }
    return refused;
}

void driver_memory::cut_off(const std::string &why) {
    constexpr size_t REASONS = 16;
    if (cut_.size() < REASONS && std::find(cut_.begin(), cut_.end(), why) == cut_.end()) {
        cut_.push_back(why);
    }
}

size_t driver_memory::bytes() const {
    return inputs_.bytes() + answers_.bytes() + list_bytes_ + row_index_.bytes() +
           rows_.size() * sizeof(row);
}

void driver_memory::look_around() {
    if (is_wanted_ != nullptr && !is_wanted_()) {
        over_ = true;
        cut_off("nobody waits for it any more");
    }
    const auto now = std::chrono::steady_clock::now();
    if (!shows_progress_ || now < next_progress_) {
        return;
    }
    next_progress_ = now + BETWEEN_PROGRESS;
    // Blanks cover what is left of the line before; not every terminal knows a sequence for that.
    const auto width = static_cast<int>(progress_.size());
    progress_ = "tarncap: " + asking_ + ", " + std::to_string(requests_) + " requests";
    std::fprintf(stderr, "\r%-*s", width, progress_.c_str());
    std::fflush(stderr);
}

void driver_memory::end_progress() {
    if (!progress_.empty()) {
        std::fprintf(stderr, "\r%*s\r", static_cast<int>(progress_.size()), "");
    }
    progress_.clear();
    shows_progress_ = false;
}
