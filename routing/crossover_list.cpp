#include "routing/crossover_list.h"

#include <cstdlib>
#include <cstring>

#include "core/link_state.h"
#include "core/platform.h"
#include "routing/crossover_table.h"

// The line buffer: each read takes at most 255 bytes, newline included; a longer
// line is read in pieces, each handled as a line of its own.
static constexpr int listLineSize = 256;

// "never" and each of its beginnings, the empty value included, compared in the
// case the file gives.
static bool meansNever(const char* value) {
    const std::size_t length = std::strlen(value);
    return length <= 5 && std::strncmp(value, "never", length) == 0;
}

void linkApplyCrossoverList(FILE* list) {
    char line[listLineSize];
    while (platformReadTextLine(line, listLineSize, list) != nullptr) {
        const std::size_t length = std::strlen(line);
        if (length > 0 && line[length - 1] == '\n') line[length - 1] = '\0';
        if (line[0] == '\0') break;  // the first empty line ends the list

        char* separator = std::strchr(line, '=');
        if (separator == nullptr) {
            linkWriteLine("vorn error: invalid crossover specification: %s\n", line);
        } else {
            *separator = '\0';
            const char* name = line;
            const char* value = separator + 1;
            // The value is judged before the name is looked up: a bad value on an
            // unknown name is still reported.
            const bool never = meansNever(value);
            const int32_t crossover = never ? crossoverNever : platformParseLong(value);
            if (!never && crossover < 1) {
                linkWriteLine("vorn error: invalid crossover for '%s' (%s)\n", name, value);
            } else if (int32_t* entry = linkFindCrossover(name)) {
                *entry = crossover;
                if (linkState.verbose) linkWriteLine("vorn info:  setting crossover for %s to '%s'\n", name, value);
            }
            // A name that is no entry passes without a word: lists may name
            // routines that this build does not route.
        }
        if (std::feof(list)) break;
    }
}

void linkLoadCrossovers() {
    const char* path = std::getenv("VORN_CROSSOVER_LIST");
    if (path == nullptr) return;
    FILE* list = std::fopen(path, "r");
    if (list == nullptr) {
        linkWriteLine("vorn error: cannot read crossover list '%s'\n", path);
        return;
    }
    if (linkState.verbose) linkWriteLine("vorn info:  parsing crossover list '%s'\n", path);
    linkApplyCrossoverList(list);
    std::fclose(list);
}
