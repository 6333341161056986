// The command layer inside a host process that serves the remote CLI, on the built-in host.
#include "frontend/handlers.h"
#include "frontend/hmx_cmd.h"
#include "frontend/kestrel_cmd_list.h"
#include "handlers/port/port_drops.h"
#include "sim/builtin_host.h"
#include "sim/exchange.h"
#include "sim/interpose.h"
#include "tests/host/described.h"
#include "tests/infra/printed_by.h"
#include "tests/rows.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr int COMMAND_PAGES_LIMIT = 1000;
constexpr size_t ROOM_FOR_A_ROW = 201;

struct run {
    std::string page;    // what reached the remote-CLI buffer
    std::string console; // what reached standard output
    int requests = 0;
    uint32_t cookie = 0;

    bool did_something() const {
        return !page.empty() || requests > 0;
    }
};

std::vector<kestrel_cmd_row> rows_where(bool (*wanted)(const kestrel_cmd_row &)) {
    std::vector<kestrel_cmd_row> rows;
    std::copy_if(std::begin(kestrel_cmd_list), std::end(kestrel_cmd_list), std::back_inserter(rows),
                 [&](const kestrel_cmd_row &row) { return row.handler != nullptr && wanted(row); });
    return rows;
}

class HostProcess : public testing::Test {
protected:
    void SetUp() override {
        driver.take(described(builtin_host_text()));
        driver.trace = [this](const std::string &line) {
            ++requests;
            last_request = line;
        };
        driver.complain = [](const std::string &line) { ADD_FAILURE() << line; };
        interpose_model(&driver);
        ASSERT_EQ(kx_dpa_api_init(), 0);
    }

    void TearDown() override {
        point_sink_at(nullptr);
        hmx_rcli_fromdpa = 0;
        kx_dpa_api_exit();
        interpose_model(nullptr);
    }

    static void point_sink_at(char *start) {
        hmx_rcli_buffer[0] = '\0';
        hmx_rcli_buffer_ptr = start;
        hmx_rcli_entry_start_ptr = nullptr;
        hmx_rcli_print_len = 0;
        hmx_rcli_more_output = 0;
    }

    run execute(const std::string &text, int from_agent) {
        requests = 0;
        testing::internal::CaptureStdout();
        const int length = static_cast<int>(text.size());
        EXPECT_EQ(hmx_cmd_run(text.c_str(), length, from_agent), length);
        fflush(stdout);
        run seen;
        seen.console = testing::internal::GetCapturedStdout();
        seen.page = std::string(hmx_rcli_buffer, strnlen(hmx_rcli_buffer, sizeof hmx_rcli_buffer));
        seen.requests = requests;
        seen.cookie = hmx_rcli_more_output;
        return seen;
    }

    run run_page(const std::string &text) {
        point_sink_at(hmx_rcli_buffer);
        hmx_rcli_fromdpa = 1;
        return execute(text, 1);
    }

    std::string run_from_shell(const std::string &text) {
        point_sink_at(nullptr);
        hmx_rcli_fromdpa = 0;
        return execute(text, 0).console;
    }

    // All pages of a command, one after the other.
    std::string run_pages(const std::string &command) {
        run seen = run_page(command);
        std::string pages = seen.page;
        uint32_t previous = 0;
        for (int count = 0; seen.cookie != 0 && seen.cookie != previous; ++count) {
            if (count == COMMAND_PAGES_LIMIT) {
                ADD_FAILURE() << command << " does not end";
                break;
            }
            previous = seen.cookie;
            seen = run_page(command + " cookie " + std::to_string(previous));
            EXPECT_EQ(seen.console, "");
            pages += seen.page;
        }
        return pages;
    }

    model driver;
    int requests = 0;
    std::string last_request;
};

// Descriptors are counted by the number that the next new one gets.
int next_descriptor() {
    const int next = dup(STDIN_FILENO);
    close(next);
    return next;
}

TEST_F(HostProcess, OpensTheChannelOnceAndClosesNothingElse) {
    const int open_channel = next_descriptor();
    EXPECT_EQ(kx_dpa_api_init(), 0);
    EXPECT_EQ(next_descriptor(), open_channel) << "the first descriptor was leaked";
    EXPECT_EQ(kx_dpa_api_exit(), 0);
    const int other = dup(STDIN_FILENO);
    EXPECT_EQ(other, open_channel - 1) << "it takes the channel's number";
    EXPECT_EQ(kx_dpa_api_exit(), 0);
    EXPECT_EQ(close(other), 0) << "it was closed by the second exit";
}

TEST_F(HostProcess, TakesATextOfNegativeLengthForEmpty) {
    EXPECT_EQ(hmx_cmd_init(), 0);
    kx_debug_print_hmx_cmds = 0x97;
    int result = 0;
    const std::string traced = traced_by([&] { result = hmx_cmd_run("show card", -1, 0); });
    EXPECT_TRUE(traced.ends_with(", length -1)\nbuff:\n")) << traced;
    kx_debug_print_hmx_cmds = 0x87;
    EXPECT_EQ(result, -1);
}

TEST_F(HostProcess, RefusesRowsThatAreNotAllowedFromTheAgent) {
    const auto refused =
        rows_where([](const kestrel_cmd_row &row) { return row.allowed_from_agent == 0; });
    EXPECT_FALSE(refused.empty());
    for (const kestrel_cmd_row &row : refused) {
        const std::string command = all_keywords(row);
        char message[64];
        snprintf(message, sizeof message, ": Cmd not permitted from DPA %p\n",
                 reinterpret_cast<void *>(row.handler));
        const run seen = run_page(command);
        EXPECT_TRUE(seen.console.ends_with(message)) << command << ": " << seen.console;
        EXPECT_FALSE(seen.did_something()) << command;
    }
}

std::vector<std::string> lines_of(const std::string &text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

TEST_F(HostProcess, PagesHoldTheRowsOfTheShellRun) {
    for (const kestrel_cmd_row &row : rows_where([](const kestrel_cmd_row &candidate) {
             return candidate.allowed_from_agent != 0 && !kx_is_stub(candidate.handler) &&
                    all_keywords(candidate).find(" cookie") != std::string::npos;
         })) {
        const std::string command = command_of(row);
        std::vector<std::string> whole = lines_of(run_from_shell(command));
        EXPECT_FALSE(whole.empty()) << command;
        // Only in a shell run do the bridge-domain lists print how many there are.
        std::erase_if(whole,
                      [](const std::string &line) { return line.starts_with("Number of valid "); });
        EXPECT_EQ(lines_of(run_pages(command)), whole) << command;
    }
}

TEST_F(HostProcess, EndsWalksThatTheDriverDoesNotEnd) {
    const std::vector<uint8_t> index_0(4, 0);
    std::vector<uint8_t> stage(104, 0);
    stage[1] = 1; // present
    std::vector<uint8_t> slot(52, 0);
    std::fill_n(slot.begin(), 4, 0xff); // the number of slots
    const struct {
        const char *command;
        uint16_t opcode;
        std::vector<uint8_t> reply;
        int asked; // requests of the opcode; for 619, one for each port
    } rows[] = {
        {"show port", 619, index_0, 5},
        {"show port vlans", 619, index_0, 5},
        {"show trunk", 619, index_0, 5},
        {"show port-old", 619, index_0, 19},
        {"show port security", 619, index_0, 19},
        {"show port-drops ltl 20", 275, stage, 256},
        {"show l2-slotwise", 573, slot, 1 + 4096},
    };
    for (const auto &row : rows) {
        override_rule rule;
        rule.opcode = row.opcode;
        rule.reply = row.reply;
        driver.take_overrides({rule});
        int asked = 0;
        driver.trace = [&](const std::string &line) {
            asked += line.starts_with("op " + std::to_string(row.opcode) + " ") ? 1 : 0;
            if (asked > row.asked) // a walk that goes on too long is ended here
                driver.state.overrides[0].status = HOST_STATUS_NOT_FOUND;
        };
        run_from_shell(row.command);
        EXPECT_EQ(asked, row.asked) << row.command;
    }
}

// The part of a text, printed line by line, that fits into a buffer of the sink's size.
std::string expected_cut(const std::string &text, bool in_entry) {
    if (in_entry)
        return text.substr(0, HMX_RCLI_BUFFER_SIZE - 1);
    size_t length = 0;
    while (length + ROOM_FOR_A_ROW <= HMX_RCLI_BUFFER_SIZE)
        length = text.find('\n', length) + 1;
    return text.substr(0, length);
}

TEST_F(HostProcess, CutsATableThatIsLargerThanTheBuffer) {
    driver.state.acls.acls->assign(KX_ACL_LIMIT, access_list{});
    for (uint32_t i = 0; i < KX_ACL_LIMIT; ++i) {
        kx_acl_record &acl = driver.state.acls.acls->at(i).record;
        acl.id = i;
        memset(acl.name, 'x', sizeof acl.name);
    }
    const std::string whole = run_from_shell("show acl");
    ASSERT_GT(whole.size(), 2U * HMX_RCLI_BUFFER_SIZE);
    hmx_rcli_fromdpa = 1;
    for (const bool in_entry : {false, true}) {
        point_sink_at(hmx_rcli_buffer);
        hmx_rcli_entry_start_ptr = in_entry ? hmx_rcli_buffer : nullptr;
        const run seen = execute("show acl", 1);
        EXPECT_EQ(seen.page, expected_cut(whole, in_entry)) << "in an entry: " << in_entry;
        EXPECT_EQ(seen.console, "");
        EXPECT_GT(hmx_rcli_buffer_ptr, hmx_rcli_buffer + HMX_RCLI_BUFFER_SIZE);
    }
    EXPECT_NE(run_page("show lacp").page, "") << "the next page starts afresh";
}

TEST_F(HostProcess, ComplainsAboutAnArgumentWithoutAWord) {
    point_sink_at(hmx_rcli_buffer);
    hmx_rcli_fromdpa = 1;
    for (const kestrel_cmd_handler handler : {kx_show_lacp, kx_show_lacp_hostdata})
        EXPECT_EQ(handler("  "), 0);
    EXPECT_STREQ(hmx_rcli_buffer, "Invalid arg\nInvalid arg\n");
    EXPECT_EQ(requests, 0);
}

// Wherever the sink points, standard error belongs to the host process.
TEST_F(HostProcess, IsNotToldAboutSilentRows) {
    for (const int agent_driven : {0, 1}) {
        point_sink_at(nullptr);
        hmx_rcli_fromdpa = agent_driven;
        testing::internal::CaptureStderr();
        const run seen =
            execute("show;show prot;show vxlan threads;flush foo;show l2", agent_driven);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_EQ(seen.console, "");
    }
}

// No row of the table runs them.
TEST_F(HostProcess, CleansAPortAclEntryAndTheDropCounters) {
    EXPECT_EQ(kx_acl_clean_pacl_table(nullptr), -1);
    EXPECT_EQ(requests, 0);
    EXPECT_EQ(kx_acl_clean_pacl_table("0x11"), 0);
    EXPECT_EQ(last_request, "op 367 arg 0x11 flags 16 -> 0");
    EXPECT_EQ(kx_port_drops_clear(), 0U);
    EXPECT_EQ(last_request, "op 276 arg 0xb flags 3 len 8 in 00*8 -> 0");
    EXPECT_EQ(requests, 2);
}

} // namespace
