// The messages of the transcript runner to somebody who edits transcripts.
#include "tests/transcript.h"

#include <string>

#include <gtest/gtest.h>

namespace {

transcript read_text(const std::string &text) {
    return read_transcript("t.txt", split_lines(text));
}

TEST(TranscriptFile, TellsTheLineThatIsWrong) {
    const struct {
        const char *text;
        const char *error; // up to a ";"
    } rows[] = {
        {"# only a comment\n", "t.txt:1: there is no case"},
        {"hosts empty.json\ncase a\nshell x\n", "t.txt:1: no case begins before this line"},
        {"host none.json\ncase a\nshell x\n", "t.txt:1: there is no tests/hosts/none.json"},
        {"case a\nhost ..\nshell x\n", "t.txt:2: there is no tests/hosts/.."},
        {"case a\nshell x\n\ncase b\n# nothing\n",
         "t.txt:4: the case has no shell, agent or page line"},
        {"case a\nshel x\n", "t.txt:2: \"shel\" is no word of a transcript"},
        {"case a\nmask-stamp\nshell x\n", "t.txt:2: \"mask-stamp\" is no word of a transcript"},
        {"case a\nshell x\nop 63\n", "t.txt:3: \"op\" is no word of a transcript"},
        {"case a\nshell x\nrequest\nop 63\n", "t.txt:3: \"request\" is no word of a transcript"},
        {"case a\nshell x\n|y|\npatch {}\n",
         "t.txt:4: \"patch\" is no result, and stands after one"},
        {"case a\nshell x\n|y|\n\n|z|\n",
         "t.txt:5: another line stands between this result and those before it"},
        {"case a\npatch {\"card\"}\nshell x\n", "t.txt:2: the patch is no JSON object"},
        {"case a\npatch none.json\nshell x\n", "t.txt:2: the patch is no JSON object"},
        {"case a\ndebug kxcmd\nshell x\n",
         "t.txt:2: expected a debug word without kx_debug_print_, and a number"},
        {"case a\ndebug kxcmd 0x1g\nshell x\n", "t.txt:2: \"0x1g\" is no number"},
    };
    for (const auto &row : rows) {
        const text_lines errors = read_text(row.text).errors;
        ASSERT_FALSE(errors.empty()) << row.text;
        EXPECT_EQ(errors[0].substr(0, errors[0].find(';')), row.error) << row.text;
    }
}

TEST(TranscriptFile, ShowsAndTakesOtherResults) {
    const transcript file = read_text("# What it shows.\n"
                                      "case one\n"
                                      "shell show port\n"
                                      "|a|\n"
                                      "|b|\n"
                                      "requests\n"
                                      "op 63\n"
                                      "\n"
                                      "# What comes next.\n"
                                      "case two\n"
                                      "shell show \"a  b\"\n"
                                      "agent show stats\n"
                                      "\n");
    ASSERT_EQ(file.errors, text_lines());
    EXPECT_EQ(file.cases.at(1).words, (text_lines{"show", "a  b;", "show", "stats"}));
    EXPECT_EQ(failure_report(file, file.cases.at(0), {"|a|", "|c|", "requests", "op 63"}),
              "t.txt:2: $ tarncmd show port\n"
              "@@ -4,3 +4,3 @@\n |a|\n-|b|\n+|c|\n requests\n");
    const text_lines two = with_results(file.lines, file.cases.at(1), {"|d|"});
    EXPECT_EQ(join_lines(with_results(two, file.cases.at(0), {"requests"})),
              "# What it shows.\ncase one\nshell show port\nrequests\n\n# What comes next.\n"
              "case two\nshell show \"a  b\"\nagent show stats\n|d|\n\n");
    const std::string long_report = failure_report(file, file.cases.at(1), text_lines(1000, "|e|"));
    EXPECT_TRUE(long_report.ends_with("+|e|\n... and 963 lines more\n")) << long_report;
}

} // namespace
