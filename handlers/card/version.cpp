#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/card/card_record.h"
#include "handlers/leaf_mode.h"
#include "infra/utils/field_text.h"

namespace {

struct version_text {
    char text[KX_VERSION_CAPACITY];
};

bool ask_version(kx_version_of part, version_text *version) {
    *version = {};
    uint32_t capacity = sizeof version->text;
    return kx_dpa_get_variable(KXDPA_OP_VERSION_TEXT, part, version->text, &capacity) ==
           KXDPA_STATUS_SUCCESS;
}

void print_sdk_version() {
    char version[KX_SDK_VERSION_CAPACITY] = {};
    uint32_t capacity = sizeof version;
    // Deliberately printed whatever the status is: without an answer the version is empty.
    kx_dpa_get_variable(KXDPA_OP_OPFLEX_SDK_VERSION, 0, version, &capacity);
    kx_print("OpFlex SDK Version: %s\n", kx_field_text(version).text);
}

} // namespace

int kx_card_version(const char *) {
    version_text version;
    if (ask_version(KX_VERSION_HMX, &version)) {
        kx_print("HMX Version: %s\n", kx_field_text(version.text).text);
    }
    if (kx_hmx_is_leaf_mode()) {
        print_sdk_version();
    } else if (ask_version(KX_VERSION_KRT, &version)) {
        kx_print("KRT Version: %s\n", kx_field_text(version.text).text);
    }
    if (ask_version(KX_VERSION_SYSTEM, &version)) {
        kx_print("System Version: %s\n", kx_field_text(version.text).text);
    }
    uint8_t update_level = 0;
    if (kx_dpa_get(KXDPA_OP_GET_UPDATE_LEVEL, 0, &update_level) == KXDPA_STATUS_SUCCESS) {
        kx_print("ESX Version Update Level: %d\n", update_level);
    }
    // The DPA gets its own 8 bytes back as they were read. Deliberately, when the read failed it
    // gets zeros, or whatever the refusing driver wrote.
    uint64_t version_word = 0;
    kx_dpa_get(KXDPA_OP_GET_VERSION_WORD, 0, &version_word);
    kx_dpa_set(KXDPA_OP_SET_VERSION_WORD, 0, &version_word);
    return 0;
}

int kx_show_krt_uptime(const char *) {
    kx_krt_uptime uptime{};
    uint32_t capacity = sizeof uptime;
    if (kx_dpa_get_variable(KXDPA_OP_KRT_UPTIME, 0, &uptime, &capacity) != KXDPA_STATUS_SUCCESS) {
        return 0;
    }
    const uint32_t seconds = uptime.seconds;
    const uint32_t days = seconds / 86400;
    const uint32_t hours = seconds / 3600 - days * 24;
    const uint32_t minutes = seconds / 60 - seconds / 3600 * 60;
    kx_print("KRT uptime (Days:Hrs:Min:Sec): (%u:%u:%u:%u)\n", days, hours, minutes, seconds % 60);
    return 0;
}
