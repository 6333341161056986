#include "frontend/kxcmd.h"

#include "frontend/handlers.h"
#include "frontend/hmx_cmd.h"
#include "tests/golden.h"
#include "tests/infra/printed_by.h"
#include "tests/rows.h"

#include <map>
#include <string>
#include <vector>

namespace {

// The calls of the handlers of the little table below: "name" or "name(argument)".
std::vector<std::string> calls_made;

int record(const char *name, const char *arg, int result) {
    calls_made.push_back(arg == nullptr ? name : std::string(name) + "(" + arg + ")");
    return result;
}

int handle_show(const char *arg) {
    return record("show", arg, -1);
}
int handle_card(const char *arg) {
    return record("card", arg, 0);
}
int handle_version(const char *arg) {
    return record("version", arg, -1);
}
int handle_vlan(const char *arg) {
    return record("vlan", arg, 0);
}
int handle_later_vlan(const char *arg) {
    return record("later vlan", arg, 0);
}
int handle_stop(const char *arg) {
    return record("stop", arg, KXCMD_STOP);
}

kestrel_cmd_row row(kestrel_cmd_handler handler, std::initializer_list<const char *> keywords,
                    uint32_t from_agent = 1) {
    kestrel_cmd_row made{KESTREL_CMD_COMMAND, handler, nullptr, "help", nullptr, {}, 0, from_agent};
    std::copy(keywords.begin(), keywords.end(), made.keywords);
    return made;
}

class Matcher : public testing::Test {
protected:
    kestrel_cmd_row table[10] = {
        {KESTREL_CMD_HEADING, nullptr, nullptr, "heading", nullptr, {"show", "card"}, 0, 0},
        row(handle_show, {"show"}),
        row(handle_card, {"show", "card"}),
        row(handle_version, {"show", "version"}, 0),
        row(handle_vlan, {"show", "vlan", "[vlan]", "cookie"}),
        row(handle_later_vlan, {"show", "vlan", "[other]"}),
        row(handle_stop, {"stop"}),
        row(handle_card, {"1", "2", "3", "4", "5", "6", "7"}),
        row(handle_show, {"1", "2", "3", "4", "5", "6", "7"}),
        {},
    };

    // The calls that a text makes and the lines printed, without the time stamps. Bytes after the
    // text's end are not part of it.
    std::string run(const std::string &text, int from_agent = 0) {
        calls_made.clear();
        printed = traced_by([&] {
            kxcmd_parse_multiple(table, (text + "x").data(), static_cast<int>(text.size()),
                                 from_agent);
        });
        std::string joined;
        for (const std::string &call : calls_made)
            joined += joined.empty() ? call : ", " + call;
        return joined;
    }

    std::string printed;
};

TEST_F(Matcher, CallsTheDeepestEarliestRowWithTheRest) {
    for (const auto &row : golden("command_calls.tsv"))
        EXPECT_EQ(run(row.at(0)), row.at(1)) << row[0];
}

TEST_F(Matcher, ReportsWhatItDoesNotRun) {
    const struct {
        std::string text;
        int from_agent;
        std::string calls;
        std::string printed;
    } rows[] = {
        {"bogus 1; show card", 0, "card", "No match found for bogus 1\n"},
        {"help show", 0, "", "No match found for help show\n"},
        {"show card", 1, "card", ""},
        {std::string(255, 'x'), 0, "", "No match found for " + std::string(255, 'x') + "\n"},
        {std::string(256, 'x'), 0, "", "Max command length reached; discarding\n"},
        {"show card;" + std::string(300, 'x') + ";show card", 0, "card",
         "Max command length reached; discarding\n"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(run(row.text, row.from_agent), row.calls) << row.text;
        EXPECT_EQ(printed, row.printed) << row.text;
    }
    char refused[64];
    snprintf(refused, sizeof refused, "Cmd not permitted from DPA %p\n",
             reinterpret_cast<void *>(handle_version));
    EXPECT_EQ(run("show version", 1), "");
    EXPECT_EQ(printed, refused);
    EXPECT_EQ(run("show version; show card", 1), "card");
    for (const char *command : {"bogus", "show version"}) {
        int result = 0;
        printed_by([&] { result = kxcmd_parse_single(table, command, 0, 1); });
        EXPECT_EQ(result, -1) << command;
    }
}

// The bits that hmx_cmd.h documents.
TEST_F(Matcher, ComplainsUnderItsBit) {
    for (const uint32_t word : {4U, 0x83U}) {
        kx_debug_print_kxcmd = word;
        run(std::string(256, 'x'));
        EXPECT_EQ(printed, word == 4 ? "Max command length reached; discarding\n" : "");
    }
    kx_debug_print_kxcmd = 0x87;
}

TEST_F(Matcher, TracesTheMatchUnderItsBit) {
    const auto calling = [](kestrel_cmd_handler handler, const char *arg) {
        char text[64];
        snprintf(text, sizeof text, "Calling %p(%s)\n", reinterpret_cast<void *>(handler), arg);
        return std::string(text);
    };
    kx_debug_print_kxcmd |= 16;
    run("show vlan 5");
    EXPECT_EQ(printed, "Match found for show vlan 5: index 4 depth 1, show vlan [vlan] cookie\n" +
                           calling(handle_vlan, "5"));
    run("stop");
    EXPECT_EQ(printed,
              "Match found for stop: index 6 depth 0, stop   \n" + calling(handle_stop, "NULL"));
    run("bogus");
    EXPECT_EQ(printed, "No match found for bogus\nNo match found for bogus\n");
    run("show version", 1);
    char refused[64];
    snprintf(refused, sizeof refused, "Cmd not permitted from DPA %p\n",
             reinterpret_cast<void *>(handle_version));
    EXPECT_EQ(printed.substr(printed.find("Cmd")), std::string(refused) + refused);
    kx_debug_print_kxcmd &= ~16u;
}

TEST(CommandTable, HoldsTheCatalogueRowForRow) {
#define HANDLER(name) {name, #name},
    const std::map<kestrel_cmd_handler, std::string> names = {
#include "tests/golden/handlers.def"
    };
#undef HANDLER
    const auto or_dash = [](const char *text) { return text == nullptr ? "-" : text; };
    int index = 0;
    for (const auto &expected : golden("catalogue.tsv")) {
        ASSERT_LT(index, KESTREL_CMD_ROWS);
        const kestrel_cmd_row &row = kestrel_cmd_list[index++];
        const std::vector<std::string> seen = {std::to_string(row.kind),
                                               all_keywords(row, "#"),
                                               or_dash(row.argument_hint),
                                               or_dash(row.help_text),
                                               std::to_string(row.allowed_from_agent),
                                               row.handler == nullptr ? "-"
                                                                      : names.at(row.handler)};
        EXPECT_EQ(seen, expected) << "row " << index;
        EXPECT_EQ(row.reserved, 0u);
    }
    EXPECT_EQ(index, KESTREL_CMD_ROWS);
}

TEST(CommandTable, RowsThatAnswerNothingFail) {
    for (const char *command : {"show", "show opflex", "clear zdp 20"})
        EXPECT_EQ(kxcmd_parse_single(kestrel_cmd_list, command, 0, 0), -1) << command;
}

TEST(Help, PrintsTheCatalogueSortedWithinItsSections) {
    const std::string help = golden_text("help.txt");
    std::vector<kestrel_cmd_row> table(kestrel_cmd_list, kestrel_cmd_list + KESTREL_CMD_ROWS);
    std::vector<char> buffer(20480);
    const int size = static_cast<int>(buffer.size());
    EXPECT_EQ(kxcmd_snprintf_help(table.data(), buffer.data(), size),
              static_cast<int>(help.size()));
    EXPECT_EQ(std::string(buffer.data()), help);
    // Sorting once more changes nothing.
    kxcmd_snprintf_help(table.data(), buffer.data(), size);
    EXPECT_EQ(std::string(buffer.data()), help);
}

TEST(Help, StopsAtTheBuffersEnd) {
    std::vector<kestrel_cmd_row> table(kestrel_cmd_list, kestrel_cmd_list + KESTREL_CMD_ROWS);
    std::vector<char> whole(20480);
    const int length = kxcmd_snprintf_help(table.data(), whole.data(), 20480);
    for (const int size : {1, 2, 15, 16, 40, 1000, length, length + 1}) {
        // The allocation ends where the buffer does, so that the sanitizer notices one byte too
        // many.
        std::vector<char> buffer(static_cast<size_t>(size));
        int written = 0;
        const bool fits = size > length;
        EXPECT_EQ(
            traced_by([&] { written = kxcmd_snprintf_help(table.data(), buffer.data(), size); }),
            fits ? "" : "Help text length exceeds maxlen. Need to redefine the maxlen\n");
        EXPECT_EQ(written, fits ? length : size);
        const std::string seen(buffer.data());
        EXPECT_LT(seen.size(), buffer.size());
        EXPECT_TRUE(std::string(whole.data()).starts_with(seen)) << size;
    }
    for (const int size : {0, -1}) {
        char untouched = '#';
        traced_by([&] { EXPECT_EQ(kxcmd_snprintf_help(table.data(), &untouched, size), size); });
        EXPECT_EQ(untouched, '#');
    }
}

TEST(Help, IsTracedByTheEntryPoint) {
    const std::vector<kestrel_cmd_row> rows(kestrel_cmd_list, kestrel_cmd_list + KESTREL_CMD_ROWS);
    char buffer[16];
    char expected[64];
    snprintf(expected, sizeof expected, "hmx_cmd_help(buffer %p, length 16)\n",
             static_cast<void *>(buffer));
    kx_debug_print_hmx_cmds |= 16;
    int length = 0;
    const std::string traced = traced_by([&] { length = hmx_cmd_help(buffer, sizeof buffer); });
    kx_debug_print_hmx_cmds &= ~16u;
    EXPECT_EQ(traced.substr(0, traced.find('\n') + 1), expected);
    EXPECT_EQ(length, 16);
    EXPECT_STREQ(buffer, "tarncmd help:\n\n");
    std::copy(rows.begin(), rows.end(), kestrel_cmd_list); // it sorts the table in place
}

// No row of the table is of this kind.
TEST(Help, CallsBackForARowThatWritesItself) {
    const auto callback = [](char *position, int room) {
        return snprintf(position, static_cast<size_t>(room), "%d left\n", room);
    };
    kestrel_cmd_row table[] = {
        {KESTREL_CMD_HEADING, nullptr, nullptr, "heading", nullptr, {}, 0, 0},
        {KESTREL_CMD_CALLBACK, nullptr, callback, "unused", nullptr, {}, 0, 0},
        {KESTREL_CMD_CALLBACK, nullptr, nullptr, "unused", nullptr, {}, 0, 0},
        row(handle_show, {"show"}),
        {},
    };
    char buffer[100];
    const std::string expected =
        "heading\n92 left\n" + std::string("show") + std::string(29, ' ') + "help\n";
    EXPECT_EQ(kxcmd_snprintf_help(table, buffer, sizeof buffer), static_cast<int>(expected.size()));
    EXPECT_EQ(std::string(buffer), expected);
}

TEST(Help, OfAnEmptyTableSortsNothingBehindIt) {
    kestrel_cmd_row table[] = {{}, row(handle_show, {"b"}), row(handle_show, {"a"}), {}};
    char buffer[10];
    EXPECT_EQ(kxcmd_snprintf_help(table, buffer, sizeof buffer), 0);
    EXPECT_STREQ(table[1].keywords[0], "b");
}

TEST(Help, PutsTheTextBelowKeywordsOfMoreThan31Characters) {
    const struct {
        std::string keyword; // the column is one blank longer
        std::string printed;
    } rows[] = {
        {std::string(30, 'k'), std::string(30, 'k') + "   help\n"},
        {std::string(31, 'k'), std::string(31, 'k') + " \n" + std::string(33, ' ') + "help\n"},
        {std::string(77, 'k'), std::string(77, 'k') + " \n" + std::string(33, ' ') + "help\n"},
        {std::string(78, 'k'), std::string(78, 'k') + "\n" + std::string(33, ' ') + "help\n"},
        {std::string(90, 'k'), std::string(78, 'k') + "\n" + std::string(33, ' ') + "help\n"},
    };
    for (const auto &expected : rows) {
        kestrel_cmd_row table[] = {row(handle_show, {expected.keyword.c_str()}), {}};
        char buffer[512];
        const int length = kxcmd_snprintf_help(table, buffer, sizeof buffer);
        EXPECT_EQ(std::string(buffer), expected.printed);
        if (expected.keyword.size() >= 78) { // nothing goes after a column that is full
            table[0].keywords[1] = "more";
            EXPECT_EQ(kxcmd_snprintf_help(table, buffer, sizeof buffer), length);
            EXPECT_EQ(std::string(buffer), expected.printed);
        }
    }
}

TEST(DataCheck, CountsAndComplains) {
    const struct {
        const char *text;
        int max_length;
        int count;
        const char *complaint;
    } rows[] = {
        {"", 0, 0, ""},
        {"", 5, 0, ""},
        {"show\r\n", 10, 6, ""},
        {"a\x01\xff", 10, 3, "kxcmd invalid character 01\nkxcmd invalid character ff\n"},
        {"abcdefghijkl", 12, -1, "Data length > 12\n"},
        {"abcdefghijk", 12, 11, ""},
    };
    for (const auto &row : rows) {
        int count = 0;
        EXPECT_EQ(traced_by([&] { count = kxcmd_validate_data(row.text, row.max_length); }),
                  row.complaint);
        EXPECT_EQ(count, row.count) << row.text;
    }
}

} // namespace
