#include "results.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>
#include <unistd.h>

bool writeCrossoverList(const std::string& path, const std::vector<RoutineResult>& results) {
    // The library's reader takes no comments and stops at the first empty line:
    // nothing but the settings goes in.
    std::ofstream file(path, std::ios::trunc);
    for (const auto& result : results) {
        if (result.outcome == Outcome::notMeasured) continue;
        file << result.routine->name << '=';
        if (result.outcome == Outcome::crossover) {
            file << result.entry << '\n';
        } else {
            file << "never\n";
        }
    }
    file.close();
    return !file.fail();
}

bool writeTimings(const std::string& path, const std::vector<RoutineResult>& results) {
    std::ofstream file(path, std::ios::trunc);
    file << "routine,n,measure,cpu_seconds,gpu_seconds\n";
    file.precision(9);
    for (const auto& result : results)
        for (const auto& timing : result.timings)
            file << result.routine->name << ',' << timing.n << ',' << timing.measure << ',' << timing.cpuSeconds << ','
                 << timing.gpuSeconds << '\n';
    file.close();
    return !file.fail();
}

bool programOnPath(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::stringstream folders(path != nullptr ? path : "");
    for (std::string folder; std::getline(folders, folder, ':');) {
        const std::string candidate = (folder.empty() ? std::string(".") : folder) + "/" + name;
        if (access(candidate.c_str(), X_OK) == 0) return true;
    }
    return false;
}

namespace {

// gnuplot reads a double-quoted string with backslash escapes.
std::string gnuplotString(std::string_view text) {
    std::string out = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        out += c;
    }
    return out + '"';
}

std::string panelTitle(const RoutineResult& result) {
    const std::string name(result.routine->name);
    switch (result.outcome) {
        case Outcome::crossover:
            return name + "=" + std::to_string(result.entry) + " (n = " + std::to_string(int(result.breakEvenN + 0.5)) +
                   ")";
        case Outcome::never: return name + "=never (GPU slower at the largest size)";
        case Outcome::mismatch: return name + "=never (GPU result differs)";
        case Outcome::gpuFailed: return name + "=never (GPU call failed)";
        case Outcome::notMeasured: break;
    }
    return name;
}

}  // namespace

std::string drawPlot(const std::string& path, const std::vector<RoutineResult>& results, const std::string& title) {
    if (!programOnPath("gnuplot")) return "gnuplot not found (Debian package gnuplot-nox)";
    int panels = 0;
    for (const auto& result : results) panels += !result.timings.empty();
    if (panels == 0) return "no routine was measured";
    const int columns = panels < 3 ? panels : 3, rows = (panels + columns - 1) / columns;

    std::ostringstream script;
    // libgd's png terminal: a palette image, a tenth of pngcairo's size.
    script << "set terminal png size " << 420 * columns << "," << 320 * rows + 40 << "\n"
           << "set output " << gnuplotString(path) << "\n"
           << "set datafile separator ','\n";
    int block = 0;
    for (const auto& result : results) {
        if (result.timings.empty()) continue;
        script << "$d" << block++ << " << EOD\n";
        for (const auto& timing : result.timings)
            script << timing.n << ',' << timing.cpuSeconds * 1e3 << ',' << timing.gpuSeconds * 1e3 << '\n';
        script << "EOD\n";
    }
    script << "set multiplot layout " << rows << "," << columns << " title " << gnuplotString(title) << "\n"
           << "set logscale xy\nset xlabel 'n'\nset ylabel 'ms per call'\nset key top left\nset grid\n";
    block = 0;
    for (const auto& result : results) {
        if (result.timings.empty()) continue;
        script << "unset arrow\nset title " << gnuplotString(panelTitle(result)) << "\n";
        if (result.outcome == Outcome::crossover)
            script << "set arrow from " << result.breakEvenN << ", graph 0 to " << result.breakEvenN
                   << ", graph 1 nohead dashtype 2 linecolor rgb 'black'\n";
        script << "plot $d" << block << " using 1:2 with linespoints title 'CPU', $d" << block
               << " using 1:3 with linespoints title 'GPU'\n";
        ++block;
    }
    script << "unset multiplot\n";

    FILE* gnuplot = popen("gnuplot", "w");
    if (gnuplot == nullptr) return "gnuplot could not be started";
    const std::string text = script.str();
    std::fwrite(text.data(), 1, text.size(), gnuplot);
    const int status = pclose(gnuplot);
    if (status != 0) return "gnuplot failed (exit status " + std::to_string(status) + ")";
    return {};
}
