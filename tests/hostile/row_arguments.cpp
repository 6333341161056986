#include "tests/hostile/row_arguments.h"

#include "tests/rows.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr int RANDOM_SHAPES = 6;

const char *const COMMON_ARGUMENTS[] = {
#include "tests/hostile/arguments.def"
};

void add_words(const char *documentation, std::vector<std::string> &words) {
    const std::string text = documentation == nullptr ? "" : documentation;
    for (size_t at = 0; (at = text.find_first_not_of("[]<>| ,{}", at)) != std::string::npos;) {
        const size_t end = std::min(text.find_first_of("[]<>| ,{}", at), text.size());
        words.push_back(text.substr(at, end - at));
        at = end;
    }
}

std::string some_words(const std::vector<std::string> &words, hostile_random &random) {
    std::string text;
    for (uint32_t count = 1 + random.below(6); count > 0; count--) {
        const bool number = words.empty() || random.one_in(3);
        text += number ? std::to_string(random.next() >> random.below(32))
                       : words[random.below(static_cast<uint32_t>(words.size()))];
        text += ' ';
    }
    return text;
}

std::string some_number(hostile_random &random) {
    static const char *const numbers[] = {"0", "1", "5", "20", "0x14", "4095", "4294967295"};
    return random.one_in(4) ? std::to_string(random.next() >> random.below(32))
                            : numbers[random.below(std::size(numbers))];
}

// One word of the documentation as an operator would type it: a number for a placeholder, or one of
// several alternatives. Sometimes it is left out.
std::string fill_in(const std::string &word, hostile_random &random) {
    std::vector<std::string> alternatives;
    add_words(word.c_str(), alternatives);
    if (alternatives.empty() || random.one_in(8))
        return "";
    const std::string &chosen =
        alternatives[random.below(static_cast<uint32_t>(alternatives.size()))];
    const size_t at = word.find(chosen);
    const bool placeholder = at != 0 && word[at - 1] == '<';
    return (placeholder && !random.one_in(8) ? some_number(random) : chosen) + " ";
}

std::string filled_in(const kestrel_cmd_row &row, hostile_random &random) {
    std::string documentation;
    for (const char *keyword : row.keywords)
        if (keyword != nullptr && (!documentation.empty() || is_documentation(keyword)))
            documentation += std::string(keyword) + " ";
    documentation += row.argument_hint == nullptr ? "" : row.argument_hint;
    std::string text;
    for (size_t at = 0; (at = documentation.find_first_not_of(' ', at)) != std::string::npos;) {
        const size_t end = std::min(documentation.find(' ', at), documentation.size());
        text += fill_in(documentation.substr(at, end - at), random);
        at = end;
    }
    return text;
}

} // namespace

std::string some_garbage(hostile_random &random) {
    std::string text(random.below(200), ' ');
    for (char &byte : text)
        byte = static_cast<char>(' ' + random.below('~' - ' ' + 1));
    std::replace(text.begin(), text.end(), ';', ':');
    return text;
}

std::vector<std::string> arguments_of(const kestrel_cmd_row &row, hostile_random &random) {
    std::vector<std::string> arguments(std::begin(COMMON_ARGUMENTS), std::end(COMMON_ARGUMENTS));
    arguments.insert(arguments.end(),
                     {std::string(120, 'w'), std::string(200, '9'), std::string(60, ' ') + "20"});
    std::vector<std::string> words;
    for (const char *keyword : row.keywords)
        if (keyword != nullptr && is_documentation(keyword))
            add_words(keyword, words);
    add_words(row.argument_hint, words);
    for (const std::string &word : words) {
        arguments.push_back(word);
        arguments.push_back(word + " 20");
    }
    for (const char *word : {"ltl", "vlan", "cookie", "on", "off"})
        words.emplace_back(word);
    for (int i = 0; i < RANDOM_SHAPES; i++) {
        arguments.push_back(some_words(words, random));
        arguments.push_back(filled_in(row, random));
    }
    arguments.push_back(some_garbage(random));
    return arguments;
}
