// "show card": every line, and every request without its answer.
#include "tests/card/card_commands.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

enum row_kind { ALWAYS, L3_ONLY, LEAF_ONLY, STAYS };

// One request, as the trace begins, and what it prints; STAYS prints it whatever the status.
struct card_row {
    std::string request;
    std::string text;
    row_kind kind = ALWAYS;
};

const card_row ROWS[] = {
    {"op 49 arg 0x0 flags 5 max 48", "Card UUID type  2: 5a1d0c4e-4200-1035\n"},
    {"op 52 arg 0x0 flags 5 max 256", "Card name: esx-17.example.com\n"},
    {"op 171 arg 0x0 flags 5 max 19", "Switch name: dvs-one\n"},
    {"op 256 arg 0x0 flags 5 max 8", "Switch alias: one\n"},
    {"op 175 arg 0x0 flags 5 max 48", "Switch uuid: 52 3a 0c 50\n"},
    {"op 63 arg 0x0 flags 1 len 4", "Card domain: 100\n"},
    {"op 54 arg 0x0 flags 1 len 4", "Card slot: 3\n"},
    {"op 390 arg 0x0 flags 1 len 4", "HMX Tunnel Mode: L3 Mode\n"},
    {"op 391 arg 0x0 flags 1 len 4", "L3 Ctrl Index: 5\n", L3_ONLY},
    {"op 42 arg 0x2000005 flags 1 len 4", "L3 Ctrl VLAN: 40\n", L3_ONLY},
    {"op 75 arg 0x1 flags 1 len 8", "HMX Control (AIPC) MAC: 02:00:01:00:00:01\n"},
    {"op 75 arg 0x2 flags 1 len 8", "HMX Packet (Inband) MAC: 02:00:01:00:00:02\n"},
    {"op 153 arg 0x0 flags 1 len 8", "HMX Control Agent (DPA) MAC: 02:00:01:00:00:04\n"},
    {"op 75 arg 0x3 flags 1 len 8", "HMX SPAN MAC: 02:00:01:00:00:03\n"},
    {"op 399 arg 0x0 flags 1 len 8", "Primary KRT MAC : 02:00:01:00:00:05\n"},
    {"op 547 arg 0x0 flags 1 len 8", "Primary KRT PKT MAC : 02:00:01:00:00:06\n"},
    {"op 548 arg 0x0 flags 1 len 8", "Primary KRT MGMT MAC : 02:00:01:00:00:07\n"},
    {"op 549 arg 0x0 flags 1 len 8", "Standby KRT CTRL MAC : 02:00:01:00:00:08\n"},
    {"op 57 arg 0x0 flags 2 len 4 in 0ac10415", "Management IPv4 address: 10.193.4.21\n", STAYS},
    {"op 382 arg 0x0 flags 1 len 16",
     "Management IPv6 address: 2001:0db8:0000:0000:0000:0000:0000:0017\n"},
    {"op 728 arg 0x0 flags 1 len 4", "Primary L3 Control IPv4 address: 10.20.30.2\n"},
    {"op 401 arg 0x0 flags 1 len 8", "Secondary KRT MAC : 02:00:01:00:00:ff\n"},
    {"op 407 arg 0x0 flags 1 len 4", "Upgrade : Completed\n"},
    {"op 61 arg 0x1 flags 1 len 4", "Max physical ports: 32\n"},
    {"op 61 arg 0x2 flags 1 len 4", "Max virtual ports: 990\n"},
    {"op 177 arg 0x0 flags 1 len 4", "Card control VLAN: 41\n"},
    {"op 179 arg 0x0 flags 1 len 4", "Card packet VLAN: 42\n"},
    {"op 730 arg 0x0 flags 1 len 1", "Control type multicast: Yes\n"},
    {"op 193 arg 0x0 flags 1 len 4", "Card Headless Mode : No\n"},
    {"op 811 arg 0x0 flags 1 len 4", "DPA Status : Up\n"},
    {"op 286 arg 0x0 flags 1 len 16", "       Processors: 16\n"
                                      "  Processor Cores: 8\n"
                                      "Processor Sockets: 2\n"
                                      "  Kernel Memory:   68719476736\n"},
    {"op 453 arg 0x0 flags 1 len 4", "Port link-up delay: 10s\n"},
    {"op 640 arg 0x0 flags 3 len 4 in 00000000", "Global UUFB: ENABLED\n"},
    {"op 193 arg 0x0 flags 1 len 4", "Heartbeat Set: True\n"},
    {"op 151 arg 0x0 flags 1 len 4", "PC LB Algo: source-virtual-port-id\n"},
    {"op 592 arg 0x0 flags 3 len 4 in 00000000", "Datapath portset event in progress : yes\n"},
    {"op 886 arg 0x0 flags 3 len 1 in 00", "Global BPDU Guard: Enabled\n"},
    {"op 1033 arg 0x0 flags 1 len 1", ""},
    {"op 1026 arg 0x0 flags 3 len 1 in 00", "Global BPDU Filter: Enabled\n", LEAF_ONLY},
    {"op 878 arg 0x0 flags 1 len 1", "DP Initialized: Yes\n"},
    {"op 880 arg 0x0 flags 1 len 4", "Tag Native VLAN: Yes\n"},
    {"op 987 arg 0x0 flags 1 len 4", "L3Sec Mode: TRUE\n"},
};

unsigned number_behind(const std::string &request, const char *word) {
    return static_cast<unsigned>(
        std::stoul(request.substr(request.find(word) + strlen(word)), nullptr, 0));
}

class ShowCard : public CardCommands {
protected:
    // The host's program that tells its management address.
    void SetUp() override {
        CardCommands::SetUp();
        std::string name = fs::temp_directory_path() / "show-card-XXXXXX";
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder = name;
        path = getenv("PATH");
        setenv("PATH", (folder.string() + ":" + path).c_str(), 1);
        const fs::path program = folder / "esxcfg-advcfg";
        std::ofstream(program) << "#!/bin/sh\necho Value of HostIPAddr is 10.193.4.21\n";
        fs::permissions(program, fs::perms::owner_all);
    }

    void TearDown() override {
        setenv("PATH", path.c_str(), 1);
        fs::remove_all(folder);
        CardCommands::TearDown();
    }

    // The rows that the host as it stands answers.
    bool applies(const card_row &row) const {
        return (row.kind != L3_ONLY || driver.state.card.tunnel_mode == 3) &&
               (row.kind != LEAF_ONLY || driver.state.card.leaf_mode != 0);
    }

    fs::path folder;
    std::string path;
};

TEST_F(ShowCard, PrintsALineForEveryRequest) {
    for (const auto &[tunnel_mode, leaf_mode] : {std::pair{3, 1}, {3, 0}, {2, 0}}) {
        driver.state.card.tunnel_mode = static_cast<uint32_t>(tunnel_mode);
        driver.state.card.leaf_mode = static_cast<uint8_t>(leaf_mode);
        std::string text;
        std::vector<std::string> asked = {"op 50 arg 0x0 flags 1 len 4"};
        for (const card_row &row : ROWS) {
            if (applies(row)) {
                text += row.text;
                asked.push_back(row.request);
            }
        }
        if (tunnel_mode != 3)
            text = replace_all(text, "L3 Mode", "L2 Mode");
        EXPECT_EQ(run("show card and more"), text);
        for (std::string &request : requests)
            request = request.substr(0, request.find(" -> "));
        EXPECT_EQ(requests, asked);
    }
}

// The line of a request that fails disappears and nothing else changes, but for what its answer
// decides: the L3 lines by the tunnel mode, the VLAN by the index, the filter by the leaf mode.
TEST_F(ShowCard, LeavesOutTheLineOfARequestThatFails) {
    for (const card_row &failing : ROWS) {
        SCOPED_TRACE(failing.request + failing.text);
        override_rule rule;
        rule.opcode = static_cast<uint16_t>(number_behind(failing.request, "op "));
        rule.argument = number_behind(failing.request, "arg ");
        rule.only_time = failing.text.starts_with("Heartbeat") ? 2 : 1;
        rule.status = 5;
        driver.state.overrides = {rule};
        std::string text;
        for (const card_row &row : ROWS) {
            const bool decided = (rule.opcode == 390 && row.kind == L3_ONLY) ||
                                 (rule.opcode == 391 && row.request.starts_with("op 42 ")) ||
                                 (rule.opcode == 1033 && row.kind == LEAF_ONLY);
            if ((&row != &failing || row.kind == STAYS) && !decided)
                text += row.text;
        }
        EXPECT_EQ(run("show card"), text);
    }
}

TEST_F(ShowCard, EndsAtOnceWithoutTheCardRequests) {
    driver.state.overrides = {override_rule{}};
    driver.state.overrides[0].opcode = 50;
    driver.state.overrides[0].status = 5;
    EXPECT_EQ(run("show card"), "kx_card_dmp: card API is not working\n");
    EXPECT_EQ(requests, std::vector<std::string>{"op 50 arg 0x0 flags 1 len 4 -> 5"});
}

// An index that could not be read still asks for its VLAN, as index 0.
TEST_F(ShowCard, AsksTheControlVlanWithTheIndexAndItsClass) {
    override_rule no_index, vlan;
    no_index.opcode = 391;
    no_index.status = 5;
    vlan.opcode = 42;
    vlan.argument = 0x2000000;
    vlan.reply = {0x29, 0, 0, 0};
    driver.state.overrides = {no_index, vlan};
    const std::string text = run("show card");
    EXPECT_EQ(text.find("L3 Ctrl Index"), std::string::npos);
    EXPECT_NE(text.find("\nL3 Ctrl VLAN: 41\n"), std::string::npos);
}

TEST_F(ShowCard, ReadsValuesItsOwnWay) {
    const struct {
        std::optional<uint32_t> card_state::*member;
        uint32_t value;
        const char *line;
    } cases[] = {
        {&card_state::heartbeat, 0, "Card Headless Mode : Yes\n"},
        {&card_state::heartbeat, 0, "Heartbeat Set: False\n"},
        {&card_state::heartbeat, 2, "Card Headless Mode : No\n"},
        {&card_state::heartbeat, 2, "Heartbeat Set: False\n"},
        {&card_state::load_balancing, 0, "PC LB Algo: Unknown\n"},
        {&card_state::load_balancing, 1, "PC LB Algo: destination-mac\n"},
        {&card_state::load_balancing, 12, "PC LB Algo: source-dest-ip-port\n"},
        {&card_state::load_balancing, 21, "PC LB Algo: Unknown\n"},
        {&card_state::load_balancing, 0xFFFFFFFF, "PC LB Algo: Unknown\n"},
        {&card_state::upgrade, 9, "Upgrade : Unknown\n"},
        {&card_state::dpa_up, 0, "DPA Status : Down\n"},
        {&card_state::uufb, 0, "Global UUFB: DISABLED\n"},
        {&card_state::portset_event, 0, "Datapath portset event in progress : no\n"},
        {&card_state::tag_native_vlan, 0, "Tag Native VLAN: No\n"},
        {&card_state::l3sec, 0, "L3Sec Mode: FALSE\n"},
        {&card_state::slot, 0xFFFFFFFF, "Card slot: -1\n"},
        {&card_state::uuid_type, 123, "Card UUID type 123: 5a1d0c4e-4200-1035\n"},
    };
    for (const auto &[member, value, line] : cases) {
        driver.state.card.*member = value;
        const std::string text = "\n" + run("show card");
        EXPECT_NE(text.find("\n" + std::string(line)), std::string::npos) << line << text;
    }
}

// Texts without an end, and lengths that no buffer has.
TEST_F(ShowCard, BoundsEveryText) {
    const auto reply = [](uint16_t opcode, uint8_t letter, uint32_t returned) {
        override_rule rule;
        rule.opcode = opcode;
        rule.reply = std::vector<uint8_t>(400, letter);
        rule.returned = returned;
        return rule;
    };
    driver.state.overrides = {reply(49, 'a', 0xFFFFFFFF), reply(52, 'b', 0xFFFFFFFF),
                              reply(171, 'c', 0), reply(256, 'd', 7), reply(175, 'e', 0)};
    const std::string text = run("show card");
    EXPECT_EQ(text.substr(0, text.find("Card domain")),
              "Card UUID type 1633771873: " + std::string(48, 'a') + "\nCard name: " +
                  std::string(256, 'b') + "\nSwitch name: " + std::string(300, 'c') +
                  "\nSwitch alias: \nSwitch uuid: " + std::string(48, 'e') + "\n");
}

} // namespace
