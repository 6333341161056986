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

// An answer as it is kept, in front of its reply.
struct answer_head {
    uint32_t status;
    uint32_t returned;
    uint32_t replied; // 0 where the buffers were left alone
};

// One that says nothing but its status.
bool is_plain_refusal(const kxdpa_request &asked, const driver_answer &told) {
    kxdpa_request record = asked;
    const reply_place to = reply_place_of(record);
    return !told.reply && (to.returned == nullptr || *to.returned == told.returned);
}

uint32_t row_hash(uint32_t shape, uint32_t argument) {
    const uint32_t words[] = {shape, argument};
    return hash_of({reinterpret_cast<const uint8_t *>(words), sizeof words});
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
      shapes_of_opcode_(OPCODES, NO_SHAPE),
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
    uint16_t &first = shapes_of_opcode_[record.opcode];
    for (uint16_t at = first; at != NO_SHAPE; at = next_shape_[at]) {
        const kxdpa_request &known = shapes_[at].request;
        if (known.flags == record.flags && known.len1 == record.len1 && known.len2 == record.len2 &&
            known.max1 == record.max1 && known.max2 == record.max2) {
            return &shapes_[at];
        }
    }
    const answer *form = find_answer(record);
    if (form == nullptr || form->learn == nullptr || form->flags != record.flags ||
        shapes_.size() == NO_SHAPE) {
        return nullptr;
    }
    shape &made = shapes_.emplace_back(shape{.request = record});
    for (const auto &[opcode, longest] : WALKS) {
        if (opcode == record.opcode) {
            made.longest = longest;
            made.walks_by_input = has_input(record);
        }
    }
    next_shape_.push_back(first);
    first = static_cast<uint16_t>(shapes_.size() - 1);
    return &made;
}

uint32_t driver_memory::find_row(const shape &of, uint32_t argument) const {
    const auto number = static_cast<uint16_t>(&of - shapes_.data());
    return row_index_.find(row_hash(number, argument), [&](uint32_t id) {
        return rows_[id].argument == argument && rows_[id].shape == number;
    });
}

// Questions come in the order in which they came the first time, nearly always.
uint32_t driver_memory::find_place(const row &in, std::span<const uint8_t> input) const {
    const steps &list = lists_[in.list];
    const auto is_it = [&](uint32_t place) {
        return std::memcmp(inputs_.at(list[place].input).data(), input.data(), input.size()) == 0;
    };
    const uint32_t next = in.place + 1 < list.size() ? in.place + 1 : 0;
    for (const uint32_t likely : {next, in.place}) {
        if (is_it(likely)) {
            return likely;
        }
    }
    const uint32_t id = inputs_.find(input);
    if (id == NO_ID || (in.rises && list.back().input < id)) {
        return NO_ID;
    }
    const auto found = in.rises
                           ? std::lower_bound(list.begin(), list.end(), id,
                                              [](const step &a, uint32_t b) { return a.input < b; })
                           : std::find_if(list.begin(), list.end(),
                                          [&](const step &kept) { return kept.input == id; });
    return found == list.end() || found->input != id ? NO_ID
                                                     : static_cast<uint32_t>(found - list.begin());
}

// A walk that has taken more steps than there are has taken one twice. `place` is NO_ID for a step
// that is new.
bool driver_memory::comes_back(shape &of, uint32_t in, uint32_t place) {
    if (of.longest == 0) {
        return false;
    }
    const bool starts = of.walks_by_input ? place == 0 || in != of.walking : in == of.first_row;
    of.walking = in;
    of.walked = starts ? 1 : of.walked + 1;
    const size_t known = known_steps(of, in);
    if (place == NO_ID || of.walked <= known) {
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
    return in == NO_ID ? 0 : lists_[rows_[in].list].size();
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
    if (of.growing == in) {
        return lists_[rows_[in].list];
    }
    if (of.growing != NO_ID) {
        share_list(rows_[of.growing]);
    }
    of.growing = in;
    steps own = rows_[in].list == NO_ID ? steps() : lists_[rows_[in].list];
    rows_[in].list = static_cast<uint32_t>(lists_.size());
    return lists_.emplace_back(std::move(own));
}

// The row's own list is the last one, or stays where it is.
void driver_memory::share_list(row &of) {
    steps &own = lists_[of.list];
    const uint32_t hash =
        hash_of({reinterpret_cast<const uint8_t *>(own.data()), own.size() * sizeof own[0]});
    const uint32_t same = list_index_.find(hash, [&](uint32_t id) { return lists_[id] == own; });
    if (same == NO_ID) {
        own.shrink_to_fit();
        list_bytes_ += own.size() * sizeof own[0];
        list_index_.insert(hash, of.list);
        return;
    }
    if (of.list + 1 == lists_.size()) {
        lists_.pop_back();
    } else {
        steps().swap(own);
    }
    of.list = same;
}

void driver_memory::learn(uint32_t in, const kxdpa_request &asked, std::span<const uint8_t> input,
                          const driver_answer &told) {
    // What is refused at another capacity was told or refused at the first one.
    const bool is_first = next_shape_[rows_[in].shape] == NO_SHAPE;
    if (told.status != KXDPA_STATUS_SUCCESS && !is_first) {
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
    rows_[in].form->learn(learnt_, told_);
}

void driver_memory::ask(shape &of, uint32_t in, kxdpa_request &record,
                        std::span<const uint8_t> input) {
    const kxdpa_request asked = record;
    const uint32_t input_id = inputs_.intern(input);
    const driver_answer told = ask_once(*rows_[in].form, record);
    if (told.status == KXDPA_STATUS_SUCCESS) {
        of.told++;
    } else {
        of.refused++;
        of.refusals[told.status] += is_plain_refusal(asked, told) ? 1 : 0;
    }
    learn(in, asked, inputs_.at(input_id), told);

    std::span<const uint8_t> reply = told.reply.value_or(std::span<const uint8_t>());
    while (!reply.empty() && reply.back() == 0) {
        reply = reply.first(reply.size() - 1);
    }
    const answer_head head = {told.status, told.returned.value_or(0), told.reply ? 1U : 0U};
    const auto *bytes = reinterpret_cast<const uint8_t *>(&head);
    answer_bytes_.assign(bytes, bytes + sizeof head);
    answer_bytes_.insert(answer_bytes_.end(), reply.begin(), reply.end());

    steps &list = own_list(of, in);
    row &kept = rows_[in];
    kept.rises = list.empty() || (kept.rises && list.back().input < input_id);
    kept.place = static_cast<uint32_t>(list.size());
    list.push_back({input_id, answers_.intern(answer_bytes_)});
}

// One display asks for a record until it gets it.
bool driver_memory::is_asked_in_vain(uint32_t in, uint32_t place) {
    times_ = in == last_row_ && place == last_place_ ? times_ + 1 : 0;
    last_row_ = in;
    last_place_ = place;
    return times_ >= PATIENCE;
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
    const std::span<const uint8_t> input = ::input_of(record).value_or(std::span<const uint8_t>());
    uint32_t in = find_row(*of, record.arg);
    const uint32_t place = in == NO_ID ? NO_ID : find_place(rows_[in], input);
    if (place == NO_ID) {
        if (!may_ask(*of, in)) {
            return EIO;
        }
        in = in == NO_ID ? add_row(*of, record.arg) : in;
        ask(*of, in, record, input);
        comes_back(*of, in, NO_ID);
        return 0;
    }
    if (comes_back(*of, in, place)) {
        return EIO;
    }
    rows_[in].place = place;
    const kept_answer kept = answer_of(lists_[rows_[in].list][place]);
    record.status = kept.status;
    if (is_asked_in_vain(in, place)) {
        record.status = KXDPA_STATUS_SUCCESS;
    }
    const reply_place to = reply_place_of(record);
    if (kept.reply) {
        uint8_t *bytes = bytes_at(to.address);
        const size_t size = kept.reply->size();
        std::memcpy(bytes, kept.reply->data(), size);
        if (size < to.room) {
            std::memset(bytes + size, 0, to.room - size);
        }
    }
    if (to.returned != nullptr) {
        *to.returned = kept.returned;
    }
    return 0;
}

uint32_t driver_memory::add_row(shape &of, uint32_t argument) {
    const auto number = static_cast<uint16_t>(&of - shapes_.data());
    const auto in = static_cast<uint32_t>(rows_.size());
    kxdpa_request request = of.request;
    request.arg = argument;
    rows_.push_back({find_answer(request), argument, number, true, NO_ID});
    row_index_.insert(row_hash(number, argument), in);
    of.first_row = of.rows++ == 0 ? in : of.first_row;
    return in;
}

kept_answer driver_memory::answer_of(const step &kept) const {
    const std::span<const uint8_t> bytes = answers_.at(kept.answer);
    answer_head head{};
    std::memcpy(&head, bytes.data(), sizeof head);
    kept_answer answer = {head.status, head.returned, {}};
    if (head.replied != 0) {
        answer.reply = bytes.subspan(sizeof head);
    }
    return answer;
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
        for (uint16_t at = next_shape_[asked.shape]; at != NO_SHAPE; at = next_shape_[at]) {
            is_first &= find_row(shapes_[at], asked.argument) == NO_ID;
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
    for (uint16_t at = shapes_of_opcode_[opcode]; at != NO_SHAPE; at = next_shape_[at]) {
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
