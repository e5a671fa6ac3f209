#include "options.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string_view>
#include <unistd.h>

namespace {

constexpr const char* usage = R"(Usage: vorn-calibrate [OPTION]...
Times routines on the CPU side and on the GPU side through the link library at
growing sizes and writes a crossover list file (VORN_CROSSOVER_LIST) with the
size from which the GPU side wins, or never.

  --routines NAME,...  routines to time (default: dgemm,zgemm,dgetrf,zgetrf,
                       dpotrf,zpotrf,dgeqrf,zgeqrf,dsyev,zheev,dgesvd,zgesvd);
                       any precision of gemm, getrf, potrf, geqrf, syev/heev, gesvd
  --budget SECONDS     time for the whole run (default 300)
  --max-size N         largest order n of the square problems (default 4096, at least 16)
  --output FILE        the crossover list file (default vorn-crossovers.list);
                       the times go to FILE with the extension .csv
  --plot FILE.png      the plot (default: FILE with the extension .png)
  --help               this text
)";

bool fail(const std::string& message) {
    std::fprintf(stderr, "vorn-calibrate: %s\n", message.c_str());
    return false;
}

std::nullopt_t refuse(const std::string& message) {
    fail(message);
    return std::nullopt;
}

bool parseRoutines(std::string_view list, Options& options) {
    options.routines.clear();
    std::stringstream names{std::string(list)};
    for (std::string name; std::getline(names, name, ',');) {
        const TimedRoutine* routine = findTimedRoutine(name);
        if (routine == nullptr) {
            std::string known;
            for (const auto& candidate : timedRoutines()) known += (known.empty() ? "" : ",") + std::string(candidate.name);
            return fail("unknown routine '" + name + "' in --routines (known: " + known + ")");
        }
        if (std::find(options.routines.begin(), options.routines.end(), routine) != options.routines.end())
            return fail("routine '" + name + "' is named twice in --routines");
        options.routines.push_back(routine);
    }
    if (options.routines.empty()) return fail("--routines names no routine");
    return true;
}

bool parseNumber(std::string_view option, const std::string& text, double& value) {
    errno = 0;
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || errno != 0 || !std::isfinite(value))
        return fail("bad number '" + text + "' for " + std::string(option));
    return true;
}

// A path whose file can be written: its folder exists and the file, if there,
// is writable. Nothing is created.
bool writable(std::string_view option, const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path file(path);
    if (path.empty() || fs::is_directory(file, error)) return fail("cannot write " + std::string(option) + " '" + path + "'");
    const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    const bool ok = fs::exists(file, error) ? access(path.c_str(), W_OK) == 0
                                            : fs::is_directory(folder, error) && access(folder.c_str(), W_OK) == 0;
    if (!ok) return fail("cannot write " + std::string(option) + " '" + path + "'");
    return true;
}

}  // namespace

std::optional<Options> parseOptions(int argc, char** argv, bool& helpShown) {
    Options options;
    helpShown = false;
    for (int i = 1; i < argc; ++i) {
        std::string option = argv[i], value;
        if (option == "--help") {
            std::fputs(usage, stdout);
            helpShown = true;
            return std::nullopt;
        }
        const auto equals = option.find('=');
        if (equals != std::string::npos) {
            value = option.substr(equals + 1);
            option.resize(equals);
        } else if (option.starts_with("--") && i + 1 < argc) {
            value = argv[++i];
        } else {
            return refuse(option.starts_with("--") ? "option " + option + " needs a value"
                                                   : "unexpected argument '" + option + "'");
        }
        double number = 0;
        if (option == "--routines") {
            if (!parseRoutines(value, options)) return std::nullopt;
        } else if (option == "--budget") {
            if (!parseNumber(option, value, number)) return std::nullopt;
            if (number <= 0) return refuse("--budget must be more than 0 seconds");
            options.budgetSeconds = number;
        } else if (option == "--max-size") {
            if (!parseNumber(option, value, number)) return std::nullopt;
            if (number != std::floor(number) || number < smallestSize || number > 46340)
                return refuse("--max-size must be a whole number from 16 to 46340");
            options.maxSize = static_cast<int>(number);
        } else if (option == "--output") {
            options.output = value;
        } else if (option == "--plot") {
            if (!value.ends_with(".png")) return refuse("--plot must name a .png file");
            options.plot = value;
        } else {
            return refuse("unknown option " + option + " (see --help)");
        }
    }
    if (options.plot.empty()) options.plot = std::filesystem::path(options.output).replace_extension(".png").string();
    if (options.plot == options.output) return refuse("--plot and --output name the same file");
    options.timings = std::filesystem::path(options.output).replace_extension(".csv").string();
    if (options.timings == options.output) options.timings = options.output + ".times.csv";
    if (!writable("--output", options.output) || !writable("the times file", options.timings) ||
        !writable("--plot", options.plot))
        return std::nullopt;
    return options;
}
