// "set port-mode {trunk|access} [native-vlan <vlan>] ltl <ltl-num>"
//
// The words are read by position: the mode, then a keyword and its value, at most twice. Only the
// beginnings of the mode and of the keywords are compared, and case matters.
#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/card/port_mode_record.h"
#include "infra/utils/kxstrings.h"

#include <cstring>

namespace {

constexpr const char *HANDLER = "kestrel_cmd_set_port_mode_and_native_vlan";

// The ports that the command accepts: the external ones and the port channels.
constexpr uint32_t FIRST_LTL = 18;
constexpr uint32_t LAST_LTL = 1047;

// Bytes of a word, its NUL included. Deliberately, a longer word is cut before it is read, even a
// number: "10470" is LTL 1047.
constexpr size_t MODE_SIZE = 10;
constexpr size_t KEYWORD_SIZE = 12;
constexpr size_t VALUE_SIZE = 5;

constexpr uint32_t NOT_GIVEN = UINT32_MAX; // of the fields of a request that is not complete yet

struct port_mode_words {
    kx_port_mode_request request = {NOT_GIVEN, NOT_GIVEN};
    uint32_t ltl = 0;      // 0 for none
    bool saw_vlan = false; // the keyword was read, its value comes next
    bool saw_ltl = false;  // likewise
};

// The readers of a word return false after a message when the word is wrong.

bool read_mode(const char *text, port_mode_words *words) {
    char word[MODE_SIZE];
    strncpy_until_space(word, sizeof word, text);
    if (kx_begins_with(word, "trunk")) {
        words->request.mode = KX_PORT_TRUNK;
    } else if (kx_begins_with(word, "access")) {
        words->request.mode = KX_PORT_ACCESS;
    } else {
        kx_print_stamped("Invalid port mode %s\n", word);
        return false;
    }
    return true;
}

bool read_keyword(const char *text, port_mode_words *words) {
    char word[KEYWORD_SIZE];
    strncpy_until_space(word, sizeof word, text);
    if (kx_begins_with(word, "native-vlan")) {
        if (words->saw_ltl) {
            kx_print_stamped("Specify the native-vlan before the LTL.\n");
            return false;
        }
        words->saw_vlan = true;
    } else if (kx_begins_with(word, "ltl")) {
        words->saw_ltl = true;
    } else {
        kx_print_stamped("Unknown argument %s\n", word);
        return false;
    }
    kx_trace(kx_debug_print_hmx_cmds, KX_DEBUG_TRACE, "saw_nv=%d saw_ltl=%d\n", words->saw_vlan,
             words->saw_ltl);
    return true;
}

bool read_value(const char *text, port_mode_words *words) {
    char word[VALUE_SIZE];
    strncpy_until_space(word, sizeof word, text);
    const uint32_t value = kx_parse_number(word);
    if (words->saw_ltl) {
        kx_trace(kx_debug_print_hmx_cmds, KX_DEBUG_TRACE, "%s: ltl=%d\n", HANDLER,
                 static_cast<int>(value));
        if (value < FIRST_LTL || value > LAST_LTL) {
            kx_print_stamped("LTL number must be between %d and %d inclusive.\n",
                             static_cast<int>(FIRST_LTL), static_cast<int>(LAST_LTL));
            return false;
        }
        words->ltl = value;
    } else if (words->saw_vlan) {
        kx_trace(kx_debug_print_hmx_cmds, KX_DEBUG_TRACE, "%s: vlan=%d\n", HANDLER,
                 static_cast<int>(value));
        if (value == 0 || value > KX_LAST_VLAN) {
            kx_print_stamped("VLAN %d is out of range 1-%d.\n", static_cast<int>(value),
                             static_cast<int>(KX_LAST_VLAN));
            return false;
        }
        words->request.native_vlan = value;
    } else {
        // Deliberate: only this complaint does not end the command.
        kx_print_stamped("Unknown argument: %s\n", word);
    }
    return true;
}

bool read_word(int place, const char *text, port_mode_words *words) {
    switch (place) {
    case 0:
        return read_mode(text, words);
    case 1:
    case 3:
        return read_keyword(text, words);
    case 2:
    case 4:
        return read_value(text, words);
    default:
        kx_print_stamped("Too many parameters to the command.\n");
        return false;
    }
}

bool read_words(const char *arg, port_mode_words *words) {
    if (arg == nullptr) {
        kx_print_stamped("No valid parameters specified.\n");
        return false;
    }
    kx_trace(kx_debug_print_hmx_cmds, KX_DEBUG_TRACE, "%s: Args=(%s)\n", HANDLER, arg);
    int place = 0;
    for (const char *word = arg; word != nullptr; word = kx_find_next_arg(word)) {
        kx_trace(kx_debug_print_hmx_cmds, KX_DEBUG_TRACE, "%s: argc=%d args=(%s)\n", HANDLER, place,
                 word);
        if (!read_word(place++, word, words)) {
            return false;
        }
    }
    return true;
}

// Check what is missing: the LTL is required, and an access port needs its VLAN.
bool complete(port_mode_words *words) {
    if (words->ltl == 0) {
        kx_print_stamped("You need to specify an LTL.\n");
        return false;
    }
    if (words->request.native_vlan == NOT_GIVEN && words->request.mode == KX_PORT_ACCESS) {
        kx_print_stamped("Need to specify native (access) VLAN\n");
        return false;
    }
    if (words->request.native_vlan == NOT_GIVEN) {
        words->request.native_vlan = KX_NO_NATIVE_VLAN;
    }
    return true;
}

} // namespace

int kestrel_cmd_set_port_mode_and_native_vlan(const char *arg) {
    port_mode_words words;
    if (!read_words(arg, &words) || !complete(&words)) {
        kx_print_stamped("Usage: tarncmd set port-mode {trunk|access} [native-vlan <vlan>] "
                         "ltl <ltl-num>\n");
        return 1;
    }
    if (kx_dpa_set(KXDPA_OP_SET_PORT_MODE, words.ltl, &words.request) != KXDPA_STATUS_SUCCESS) {
        kx_print_stamped("Failed to set port mode and/or native VLAN.\n");
        return 1;
    }
    return 0;
}
