#include "frontend/output_sink.h"
#include "tests/infra/printed_by.h"

#include <cstring>
#include <ctime>
#include <string>

namespace {

struct SinkRow {
    const char *what;
    int position;      // of the write pointer, from the buffer's start
    bool in_entry;     // an entry is being written
    int text_length;   // of the text printed
    int advance;       // of the pointer
    int length_stored; // characters that reached the buffer
};

constexpr int LEFT_BY_LAST_WRITE = 7;

class OutputSink : public testing::TestWithParam<SinkRow> {
protected:
    void TearDown() override {
        hmx_rcli_buffer_ptr = nullptr;
        hmx_rcli_entry_start_ptr = nullptr;
        hmx_rcli_print_len = 0;
    }
};

TEST_P(OutputSink, KeepsToItsMargins) {
    const SinkRow &row = GetParam();
    memset(hmx_rcli_buffer, '#', sizeof hmx_rcli_buffer);
    char *const start = hmx_rcli_buffer + row.position;
    hmx_rcli_buffer_ptr = start;
    hmx_rcli_entry_start_ptr = row.in_entry ? start : nullptr;
    hmx_rcli_print_len = LEFT_BY_LAST_WRITE;

    kx_print("%s", std::string(static_cast<size_t>(row.text_length), 'x').c_str());

    EXPECT_EQ(hmx_rcli_buffer_ptr - start, row.advance) << row.what;
    const std::string written(start, hmx_rcli_buffer + sizeof hmx_rcli_buffer);
    EXPECT_EQ(written.find_first_not_of('x'),
              written.empty() || row.length_stored == static_cast<int>(written.size())
                  ? std::string::npos
                  : static_cast<size_t>(row.length_stored))
        << row.what;
}

INSTANTIATE_TEST_SUITE_P(
    Margins, OutputSink,
    testing::Values(SinkRow{"room for a row outside an entry", 50000 - 201, false, 10, 10, 10},
                    SinkRow{"one byte short of a row's room", 50000 - 200, false, 10,
                            LEFT_BY_LAST_WRITE, 0},
                    SinkRow{"cut outside an entry", 50000 - 201, false, 300, 300, 200},
                    SinkRow{"inside an entry the last byte is writable", 49999, true, 5, 5, 0},
                    SinkRow{"inside an entry text is cut at the end", 49990, true, 20, 20, 9},
                    SinkRow{"a full buffer takes nothing", 50000, true, 5, LEFT_BY_LAST_WRITE, 0}));

TEST(OutputSinkTerminal, IsNeverBufferedWhateverTheOtherWordsHold) {
    hmx_rcli_print_len = 99;
    hmx_rcli_entry_start_ptr = hmx_rcli_buffer;
    testing::internal::CaptureStdout();
    kx_print("row %d\n", 1);
    kx_print("row %d\n", 2);
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "row 1\nrow 2\n");
    EXPECT_EQ(hmx_rcli_buffer_ptr, nullptr);
    hmx_rcli_print_len = 0;
    hmx_rcli_entry_start_ptr = nullptr;
}

TEST(OutputSinkTerminal, PrintsTextsOfAnyLengthWhole) {
    std::string expected = "100%\n";
    testing::internal::CaptureStdout();
    kx_print("100%%\n");
    for (const size_t length : {1U, 510U, 511U, 512U, 513U, 70000U}) {
        const std::string text(length, static_cast<char>('a' + length % 26));
        kx_print("%s", text.c_str());
        kx_print("\n");
        kx_print("%zu %s, %5.1f\n", length, text.c_str(), 0.5);
        expected += text + "\n" + std::to_string(length) + " " + text + ",   0.5\n";
    }
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), expected);
}

TEST(OutputSinkBuffer, DroppedWritesNeverWrapTheAddressSpace) {
    hmx_rcli_buffer_ptr = hmx_rcli_buffer;
    kx_print("%s", std::string(1 << 20, 'x').c_str());
    for (int writes = 0; writes < 8192; ++writes) {
        kx_print("dropped");
        ASSERT_GT(reinterpret_cast<uintptr_t>(hmx_rcli_buffer_ptr),
                  reinterpret_cast<uintptr_t>(hmx_rcli_buffer));
    }
    hmx_rcli_buffer_ptr = nullptr;
    hmx_rcli_print_len = 0;
}

TEST(DebugWords, StartAt0x87) {
    for (const uint32_t word :
         {kx_debug_print_kxdump, kx_debug_print_hmx_cmds, kx_debug_print_kxdpa_indirect,
          kx_debug_print_kxtarncmd_indirect, kx_debug_print_kxcmd, kx_debug_print_kxstrings,
          kx_debug_print_dpa_platform, kx_debug_print_dpa_main})
        EXPECT_EQ(word, 0x87U);
}

TEST(TraceLines, BeginWithTheTimeOfDay) {
    const time_t before = time(nullptr);
    const std::string line = printed_by([] { kx_print_stamped("%d\n", 5); });
    bool found = false;
    for (time_t now = before; now <= time(nullptr); ++now)
        found |= line.starts_with(std::string(ctime(&now)).substr(4, 15) + ".");
    EXPECT_TRUE(found) << line;
    EXPECT_EQ(replace_stamps(line, "STAMP "), "STAMP 5\n");
}

// Later lines overwrite the file from its top.
TEST(TraceLines, WrapALogFileOnceItHasPassedOneMebibyte) {
    const size_t stamp = strlen("Nov 21 10:00:00.123456: ");
    const std::string before((1 << 20) - stamp - strlen("x\n"), '#');
    const std::string log = printed_by([&] {
        fputs(before.c_str(), stdout);
        for (const char *line : {"x\n", "y\n", "z\n"}) { // the first ends at the limit
            kx_trace(16, KX_DEBUG_TRACE, "%s", line);
            kx_trace(0x87, KX_DEBUG_TRACE, "%s", line);
        }
    });
    EXPECT_EQ(log.size(), (1 << 20) + stamp + strlen("y\n"));
    EXPECT_EQ(replace_stamps(log.substr(0, stamp + 3), "STAMP "), "STAMP z\n#");
    EXPECT_EQ(replace_stamps(log.substr(before.size()), "STAMP "), "STAMP x\nSTAMP y\n");
}

} // namespace
