// What the system publishes that the routine tables are held against: the
// prototypes of its LAPACK and BLAS headers (lapack.h from liblapacke-dev,
// cblas_f77.h from libblas-dev), read at test time, and the names a library
// exports as nm lists them.
#pragma once

#include <cctype>
#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

// One prototype: the last word of its return type, its parameters as written
// (the hidden string lengths at the end left out) and the number of those lengths.
struct PublishedPrototype {
    std::string returned;
    std::vector<std::string> parameters;
    int hiddenLengths = 0;
};

inline bool isWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

inline std::string trimmedText(const std::string& text) {
    const auto first = text.find_first_not_of(" \t\n");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t\n") - first + 1);
}

// The last identifier of a piece of C, "info" of "lapack_int* info".
inline std::string lastIdentifier(const std::string& text) {
    std::size_t end = text.size();
    while (end > 0 && !isWordCharacter(text[end - 1])) --end;
    std::size_t begin = end;
    while (begin > 0 && isWordCharacter(text[begin - 1])) --begin;
    return text.substr(begin, end - begin);
}

// A header's prototypes by Fortran name. Each prototype is named by a macro,
// "#define ID LAPACK_GLOBAL(name,NAME)" (F77_GLOBAL in the BLAS header), and
// declared as "type ID(parameters);", with the hidden lengths as size_t
// parameters inside an #ifdef block. Directive lines are dropped and the other
// lines of their blocks kept, so the lengths stay visible and are counted apart.
inline std::map<std::string, PublishedPrototype> readPublishedPrototypes(const std::string& path) {
    std::ifstream in(path);
    std::map<std::string, std::string> fortranName;
    std::string text, line;
    while (std::getline(in, line)) {
        const std::string directive = trimmedText(line);
        if (directive.empty() || directive[0] != '#') {
            text += line + "\n";
            continue;
        }
        std::istringstream words(directive.substr(1));
        std::string keyword, id, value;
        words >> keyword >> id >> value;
        const auto open = value.find("_GLOBAL(");
        if (keyword == "define" && open != std::string::npos)
            fortranName[id] = value.substr(open + 8, value.find(',') - open - 8);
    }
    std::map<std::string, PublishedPrototype> prototypes;
    for (const auto& [id, name] : fortranName) {
        std::size_t at = text.find(id + "(");
        while (at != std::string::npos && at > 0 && isWordCharacter(text[at - 1])) at = text.find(id + "(", at + 1);
        if (at == std::string::npos) continue;
        PublishedPrototype& prototype = prototypes[name];
        const std::size_t statement = text.find_last_of(";}", at) + 1;  // 0 where there is none
        prototype.returned = lastIdentifier(text.substr(statement, at - statement));
        std::string parameter;
        int depth = 1;
        for (std::size_t i = at + id.size() + 1; i < text.size() && depth > 0; ++i) {
            depth += text[i] == '(' ? 1 : text[i] == ')' ? -1 : 0;
            if (depth > 1 || (depth == 1 && text[i] != ',')) {
                parameter += text[i];
                continue;
            }
            const std::string written = trimmedText(parameter);
            if (written == "size_t") ++prototype.hiddenLengths;
            else if (!written.empty() && written != "void") prototype.parameters.push_back(written);
            parameter.clear();
        }
    }
    return prototypes;
}

#ifdef VORN_LAPACK_HEADER
// Both headers' prototypes; a name both declare keeps lapack.h's.
inline std::map<std::string, PublishedPrototype> publishedPrototypes() {
    auto prototypes = readPublishedPrototypes(VORN_LAPACK_HEADER);
    prototypes.merge(readPublishedPrototypes(VORN_BLAS_HEADER));
    return prototypes;
}
#endif

#if !defined(_WIN32)
// The dynamic symbols a library defines, as `nm -D --defined-only` lists them.
inline std::multiset<std::string> definedDynamicSymbols(const std::string& nm, const std::string& library) {
    std::multiset<std::string> names;
    FILE* listing = popen((nm + " -D --defined-only " + library).c_str(), "r");
    if (listing == nullptr) return names;
    for (char line[512]; std::fgets(line, sizeof line, listing) != nullptr;) {
        std::istringstream fields(line);
        std::string address, type, name;
        fields >> address >> type >> name;
        names.insert(name);
    }
    if (pclose(listing) != 0) names.insert("(nm failed)");
    return names;
}
#endif
