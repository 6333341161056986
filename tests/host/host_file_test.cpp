// Host files: what is wrong with one, and on which line.
#include "dpa/userspace/kxdpa_opcodes.h"
#include "host/hex.h"
#include "host/json_tree.h"
#include "host/keys.h"
#include "host/value.h"
#include "sim/builtin_host.h"
#include "tests/golden.h"
#include "tests/host/described.h"
#include "tests/host/random_host.h"

#include <cerrno>
#include <ctime>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

TEST(HostFile, SaysWhereItIsWrong) {
    for (const auto &row : golden("host_errors.tsv")) {
        host parsed;
        std::string error;
        EXPECT_FALSE(parse_host(row.at(0), "f", parsed, error)) << row[0];
        EXPECT_EQ(error, row.at(1));
    }
    host parsed;
    std::string error;
    EXPECT_FALSE(parse_host(std::string(100000, '['), "f", parsed, error));
    EXPECT_EQ(error, "f:1: nested too deeply");
}

TEST(HostFile, AllThatIsWrongIsToldInTheOrderOfTheLines) {
    const std::vector<std::string> expected = {
        "f:2: card.domian: unknown key",
        "f:2: vlans: expected numbers from 1 to 4095 such as \"1,10-20\"",
        "f:3: ports[0].org: expected a number from 0 to 255",
        "f:4: ports[2].ltl: is used twice",
        "f:5: ports[3].ltl: is missing",
    };
    EXPECT_EQ(check_host("{\n\"vlans\": 7, \"card\": {\"domian\": 1},\n"
                         "\"ports\": [{\"ltl\": 1, \"org\": 256}, {\"ltl\": 2},\n"
                         "{\"ltl\": 2},\n{}]}",
                         "f"),
              expected);
}

TEST(HostFile, ManyKeysAreReadInNoTime) {
    std::string text = "{\"card\": {";
    for (int i = 0; i < 60000; i++)
        text += "\"key" + std::to_string(i) + "\": 1,";
    const clock_t start = clock();
    EXPECT_EQ(check_host(text + "\"key60000\": 1}}", "f").size(), 60001U);
    EXPECT_EQ(check_host(text + "\"key59999\": 1}}", "f").at(0),
              "f:1: \"key59999\" is given twice");
    // Much more than the sanitizers take, and less than one look at every key for each of them.
    EXPECT_LT(clock() - start, 6 * CLOCKS_PER_SEC);
}

TEST(HostFile, TextsAreAnyBytes) {
    for (const auto &row : golden("host_texts.tsv")) {
        SCOPED_TRACE(row.at(0));
        host named;
        named.card.name = row.at(1);
        const std::string written = "{\n  \"card\": {\n    \"name\": \"" + row[0] + "\"\n  }\n}\n";
        EXPECT_EQ(write_host(named), written);
        EXPECT_EQ(described(written).card.name, row[1]);
    }
}

// What is said, what is left out, and what no key can say.
TEST(HostFile, IsWrittenInOneForm) {
    host lab;
    EXPECT_EQ(write_host(lab), "{}\n");
    lab.card.slot.reset();
    lab.card.leaf_mode = 2;
    lab.card.tunnel_mode = KX_TUNNEL_MODE_L3;
    lab.card.upgrade = 9;
    lab.card.management_ipv6->back() = 1;
    lab.bridge_domains.vlans = {20, 1, 3};
    bridge_domain &odd = lab.bridge_domains.by_index[2];
    odd.record.vlan = 30;
    odd.record.swbd = 30; // follows from the VLAN
    odd.record.segment_features = 0x81;
    odd.record.kind = 3;
    port &listed = lab.ports.by_ltl[7];
    listed.hmx.record.if_index = 0x2500C000;
    own_view(listed, KX_VIEW_KRT).vlans.reset();
    own_view(listed, KX_VIEW_SYSTEM).record.if_index = 0x1C000010;
    kx_l2_entry entry = l2_entry_defaults();
    entry.mac[0] = 2;
    entry.mac[5] = 1;
    lab.l2.tables[4].entries = {entry, entry};
    lab.l2.tables[4].entries[0].mac[5] = 9;
    lab.l2.tables[4].entries[0].flags = KX_L2_PVLAN;
    override_rule &rule = lab.overrides.emplace_back();
    rule.opcode = 15;
    rule.in.emplace();
    rule.error = ENODEV;
    // No such VLAN, and a port that no request can ask for.
    lab.bridge_domains.by_index[9].record.vlan = 4096;
    lab.ports.by_ltl[0x1000000] = {};
    std::vector<std::string> unsaid;
    EXPECT_EQ(write_host(lab, {}, &unsaid), golden_text("host_file.json"));
    EXPECT_EQ(unsaid, (std::vector<std::string>{"bridge_domains[1].vlan", "ports[1].ltl"}));
}

TEST(HostFile, LeavesOutWhatHasNoKeyAtEveryDepth) {
    host lab;
    for (const uint32_t ltl : {0x1000000U, 0x1000001U, 1040U}) {
        auto &record = lab.port_channels.by_ltl[ltl].record;
        record.member_count = 1;
        record.members[0].ltl = 20;
    }
    lab.ports.by_ltl[50].hmx.record.link_state = 7;
    lab.ports.by_ltl[50].hmx.record.admin_state = 0xFF;
    lab.ports.by_ltl[50].hmx.record.if_index = 0x1D000007;
    std::vector<std::string> unsaid;
    const std::string text = write_host(lab, {}, &unsaid);
    const host read = described(text);
    EXPECT_EQ(unsaid, (std::vector<std::string>{"port_channels[1].ltl", "port_channels[2].ltl"}));
    ASSERT_EQ(read.port_channels.by_ltl.size(), 1U);
    EXPECT_EQ(read.port_channels.by_ltl.at(1040).record.members[0].ltl, 20U);
    for (const char *line : {"\"link\": \"down\"", "\"admin\": \"down\"",
                             "\"interface\": 486539271", "\"interface_name\": \"vif7\""})
        EXPECT_NE(text.find(line), std::string::npos) << line << text;
}

TEST(HostFile, TakesWhatPeopleWrite) {
    for (const auto &row : golden("host_forms.tsv")) {
        SCOPED_TRACE(row.at(0));
        EXPECT_EQ(write_host(described(row[0])), write_host(described(row.at(1))));
        EXPECT_NE(write_host(described(row[0])), "{}\n");
    }
}

TEST(HostFile, InterfacesAreNamedOrNumbered) {
    for (const auto &row : golden("host_interfaces.tsv")) {
        const host parsed = described(R"({"ports": [{"ltl": 1, "interface": )" + row.at(0) + "}]}");
        EXPECT_EQ(parsed.ports.by_ltl.at(1).hmx.record.if_index, number(row.at(1))) << row[0];
    }
}

// The built-in host and those of tests/hosts.
std::vector<std::string> example_hosts() {
    std::vector<std::string> texts = {std::string(builtin_host_text())};
    for (const auto &entry : std::filesystem::directory_iterator(TESTS_DIR "/hosts")) {
        std::string error;
        EXPECT_TRUE(read_host_file(entry.path(), texts.emplace_back(), error)) << error;
    }
    return texts;
}

// Takes from `left` the keys that the object has.
void take_keys(const json_value &object, const key_table &table, std::set<const key *> &left) {
    for (const key &row : table.keys) {
        if (row.type == key_type::included)
            take_keys(object, *row.table, left);
        for (const json_member &member : object.members) {
            if (member.key != row.name && row.type != key_type::counters)
                continue;
            left.erase(&row);
            for (const json_value &item : member.value.items)
                if (row.table != nullptr)
                    take_keys(item, *row.table, left);
            if (row.table != nullptr)
                take_keys(member.value, *row.table, left);
        }
    }
}

void add_keys(const key_table &table, std::set<const key *> &all) {
    for (const key &row : table.keys) {
        if (row.type != key_type::included)
            all.insert(&row);
        if (row.table != nullptr)
            add_keys(*row.table, all);
    }
}

TEST(HostFile, EveryKeyHasAnExample) {
    std::set<const key *> left;
    add_keys(HOST_KEYS, left);
    for (const std::string &text : example_hosts())
        take_keys(parse_json(text), HOST_KEYS, left);
    for (const key *row : left)
        ADD_FAILURE() << row->name << ": " << row->meaning;
}

// What every key says, whether or not it would be written.
void add_values(std::string &all, const key_table &table, const void *object) {
    for (const key &row : table.keys) {
        all += std::string("\n") + row.name + " ";
        if (row.type == key_type::list) {
            const bool there = row.access.each(
                object, [&](const void *item) { add_values(all, *row.table, item); });
            all += there ? "." : "none";
        } else if (row.table != nullptr) {
            const void *inner = row.access.look(object);
            all += inner == nullptr ? "none" : "";
            if (inner != nullptr)
                add_values(all, *row.table, inner);
        } else if (row.type == key_type::counters) {
            for (uint32_t index = 0; index < row.items; index++)
                all += value_text(row, row.access.get_at(object, index)) + " ";
        } else {
            all += value_text(row, row.access.get(object));
        }
    }
}

std::string all_values(const host &of) {
    std::string all;
    add_values(all, HOST_KEYS, &of);
    return all;
}

void check_round_trip(const std::string &text) {
    std::vector<std::string> unsaid;
    const std::string written = write_host(described(text), {}, &unsaid);
    EXPECT_EQ(unsaid, std::vector<std::string>{});
    EXPECT_EQ(write_host(described(written)), written);
}

TEST(HostFile, ComesBackAsItWasWritten) {
    for (const std::string &text : example_hosts())
        check_round_trip(text);
}

// By the first of thirty seeds; scripts/test --quick leaves out MoreSeeds.
class RandomHosts : public testing::TestWithParam<uint32_t> {};

TEST_P(RandomHosts, ComeBackAsTheyWereWritten) {
    for (uint32_t seed = GetParam(); seed < GetParam() + 30; seed++) {
        SCOPED_TRACE(seed);
        const host drawn = random_host(seed);
        const std::string written = write_host(drawn);
        const host read = described(written);
        ASSERT_EQ(write_host(read), written);
        ASSERT_EQ(all_values(read), all_values(drawn));
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomHosts, testing::Values(0));
INSTANTIATE_TEST_SUITE_P(MoreSeeds, RandomHosts, testing::Range(30U, 300U, 30U));

TEST(Hex, ShortensRunsAndReadsThemBack) {
    const struct {
        std::vector<uint8_t> bytes;
        const char *text;
    } rows[] = {
        {{}, ""},
        {{1, 2, 0xAB}, "0102ab"},
        {std::vector<uint8_t>(7, 0), "00000000000000"},
        {std::vector<uint8_t>(8, 0), "00*8"},
        {{1, 0, 0, 0, 0, 0, 0, 0, 0, 2, 3}, "01,00*8,0203"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(bytes_to_hex(row.bytes), row.text);
        EXPECT_EQ(bytes_from_hex(row.text), row.bytes);
    }
    for (const char *text : {"0", "0g", "00,", ",00", "00*", "00*-1", "0000*3", "00*3x"})
        EXPECT_FALSE(bytes_from_hex(text)) << text;
}

} // namespace
