#include "handlers/settings.h"

#include "dpa/userspace/kxdpa_request.h"
#include "frontend/output_sink.h"
#include "infra/utils/kxstrings.h"

#include <cerrno>
#include <cstdlib>

bool kx_split_setting(kx_setting_words *setting, const char *arg, int count) {
    // One word more, to notice that there are too many.
    return kx_split_words(setting->copy, sizeof setting->copy, arg, setting->words, count + 1) ==
           count;
}

bool kx_read_setting_number(const char *word, uint32_t most, uint32_t *number) {
    if (word[0] < '0' || word[0] > '9') {
        return false;
    }
    char *end = nullptr;
    errno = 0;
    const unsigned long value = strtoul(word, &end, 0);
    if (*end != '\0' || errno != 0 || value > most) {
        return false;
    }
    *number = value;
    return true;
}

bool kx_read_setting_switch(const char *word, uint32_t *enabled) {
    if (stris(word, "enable") == 0) {
        *enabled = 1;
        return true;
    }
    if (stris(word, "disable") == 0) {
        *enabled = 0;
        return true;
    }
    return false;
}

int kx_refuse_setting(const char *usage) {
    kx_print_stamped("Usage: tarncmd %s\n", usage);
    return 1;
}

int kx_report_setting(const char *command, uint32_t status) {
    if (status == KXDPA_STATUS_SUCCESS) {
        return 0;
    }
    kx_print_stamped("%s failed with status %u\n", command, status);
    return 1;
}
