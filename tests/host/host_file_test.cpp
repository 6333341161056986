// Host files: what is wrong with one, and on which line.
#include "host/hex.h"
#include "host/host_file.h"
#include "host/json_tree.h"
#include "host/keys.h"
#include "sim/builtin_host.h"
#include "tests/host/random_host.h"

#include <cstring>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

TEST(HostFile, SaysWhereItIsWrong) {
    const struct {
        const char *text;
        const char *error;
    } rows[] = {
        {"", "f:1: not JSON at \"\""},
        {"{\n\"ports\": [\n}", "f:3: not JSON at \"}\""},
        {"{\"vlans\": \"1\"\n} x", "f:2: not JSON at \"} x\""},
        {"[]", "f:1: the host: expected an object"},
        {"{\n\n\"prots\": []}", "f:3: prots: unknown key"},
        {"{\"card\": {\"domain\": 1,\n\"domain\": 2}}", "f:2: \"domain\" is given twice"},
        {"{\"card\": []}", "f:1: card: expected an object"},
        {"{\"card\": {\n\"domain\": -1\n}}",
         "f:2: card.domain: expected a number from 0 to 4294967295"},
        {"{\"card\": {\n\"domain\": 4294967296}}",
         "f:2: card.domain: expected a number from 0 to 4294967295"},
        {"{\"card\": {\"domain\": \"12x\"}}",
         "f:1: card.domain: expected a number from 0 to 4294967295"},
        {"{\"card\": {\"leaf_mode\": 1}}", "f:1: card.leaf_mode: expected true or false"},
        {"{\"ports\": [{\"ltl\": 1},\n{}]}", "f:2: ports[1].ltl: is missing"},
        {"{\"ports\": [{\"ltl\": 1},\n{\"ltl\": 1}]}", "f:2: ports[1].ltl: is used twice"},
        {"{\"ports\": [{\"ltl\": 1, \"link\": \"Up\"}]}",
         "f:1: ports[0].link: expected one of \"up\", \"down\", or a number"},
        {"{\"ports\": [{\"ltl\": 1, \"krt\": {\"nam\": \"\"}}]}",
         "f:1: ports[0].krt.nam: unknown key"},
        {"{\"ports\": [{\"ltl\": 1, \"org\": 256}]}",
         "f:1: ports[0].org: expected a number from 0 to 255"},
        {"{\"ports\": [{\"ltl\": 1, \"interface\": \"Veth0\"}]}",
         "f:1: ports[0].interface: expected an interface such as \"Veth3\", \"Eth4/1\", \"Po1\" or "
         "a number"},
        {"{\"ports\": [{\"ltl\": 1, \"mac\": \"00:50:56:aa:bb\"}]}",
         "f:1: ports[0].mac: expected a MAC address such as \"00:50:56:aa:bb:cc\""},
        {"{\"vlans\": \"1-4096\"}",
         "f:1: vlans: expected numbers from 1 to 4095 such as \"1,10-20\""},
        {"{\"vlans\": \"20-10\"}",
         "f:1: vlans: expected numbers from 1 to 4095 such as \"1,10-20\""},
        {"{\"overrides\": [{\"opcode\": 1, \"reply\": \"abc\"}]}",
         "f:1: overrides[0].reply: expected bytes in hexadecimal"},
        {"{\"overrides\": [{\"opcode\": 1, \"reply\": \"00*9999999\"}]}",
         "f:1: overrides[0].reply: expected bytes in hexadecimal"},
    };
    for (const auto &row : rows) {
        host parsed;
        std::string error;
        EXPECT_FALSE(parse_host(row.text, "f", parsed, error)) << row.text;
        EXPECT_EQ(error, row.error);
    }
    host parsed;
    std::string error;
    EXPECT_FALSE(parse_host(std::string(100000, '['), "f", parsed, error));
    EXPECT_EQ(error, "f:1: nested too deeply");
}

TEST(HostFile, TextMayFillItsFieldButNotMore) {
    for (const size_t length : {63U, 64U, 65U}) {
        host parsed;
        std::string error;
        const bool good = parse_host("{\"ports\": [{\"ltl\": 1, \"name\": \"" +
                                         std::string(length, 'n') + "\"}]}",
                                     "f", parsed, error);
        EXPECT_EQ(good, length <= 64);
        if (!good)
            continue;
        const kx_port_record &record = parsed.ports.by_ltl.at(1).views[KX_VIEW_HMX].record;
        EXPECT_EQ(strnlen(record.hmx_port_name, 64), length);
        EXPECT_EQ(record.device_type[0], '\0');
    }
}

TEST(HostFile, InterfacesAreNamedOrNumbered) {
    const struct {
        const char *given;
        uint32_t index;
    } rows[] = {{"\"Veth2\"", 0x1C000010},
                {"\"Eth4/1\"", 0x2500C000},
                {"\"Eth515/256\"", 0x25000000 | 514U << 14 | 255U << 6},
                {"\"Po5\"", 0x16000004},
                {"\"0x1c000013\"", 0x1C000013},
                {"469762064", 0x1C000010}};
    for (const auto &row : rows) {
        host parsed;
        std::string error;
        parse_host(std::string("{\"ports\": [{\"ltl\": 1, \"interface\": ") + row.given + "}]}",
                   "f", parsed, error);
        EXPECT_EQ(error, "");
        EXPECT_EQ(parsed.ports.by_ltl.at(1).views[KX_VIEW_HMX].record.if_index, row.index);
    }
}

TEST(HostFile, BuiltInHostIsWellFormed) {
    host parsed;
    std::string error;
    EXPECT_TRUE(parse_host(builtin_host_text(), "built-in host", parsed, error)) << error;
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
            for (const json_value &item : member.value.items) {
                if (row.table != nullptr)
                    take_keys(item, *row.table, left);
            }
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

TEST(HostFile, ComesBackAsItWasWritten) {
    std::vector<std::string> texts = example_hosts();
    for (uint32_t seed = 0; seed < 300; seed++)
        texts.push_back(write_host(random_host(seed)));
    for (const std::string &text : texts) {
        host first;
        host second;
        std::string error;
        std::vector<std::string> unsaid;
        ASSERT_TRUE(parse_host(text, "f", first, error)) << error << text;
        const std::string written = write_host(first, &unsaid);
        EXPECT_EQ(unsaid, std::vector<std::string>{});
        ASSERT_TRUE(parse_host(written, "f", second, error)) << error << written;
        ASSERT_EQ(write_host(second), written);
    }
}

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
    for (const char *text : {"0", "0g", "00,", ",00", "00*", "00*-1", "0000*3", "00*3x"}) {
        EXPECT_FALSE(bytes_from_hex(text)) << text;
    }
}

} // namespace
