// The prototypes that the system's LAPACK and BLAS headers publish (lapack.h from
// liblapacke-dev, cblas_f77.h from libblas-dev), read at test time: the
// independent source that the routine tables are held against.
#pragma once

#include <cctype>
#include <fstream>
#include <map>
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

inline std::string trimmedText(const std::string& text) {
    const auto first = text.find_first_not_of(" \t\n");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t\n") - first + 1);
}

// The last identifier of a piece of C, "info" of "lapack_int* info".
inline std::string lastIdentifier(const std::string& text) {
    auto word = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; };
    std::size_t end = text.size();
    while (end > 0 && !word(text[end - 1])) --end;
    std::size_t begin = end;
    while (begin > 0 && word(text[begin - 1])) --begin;
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
        if (keyword == "define" && open != std::string::npos) {
            fortranName[id] = value.substr(open + 8, value.find(',') - open - 8);
        }
    }
    std::map<std::string, PublishedPrototype> prototypes;
    for (const auto& [id, name] : fortranName) {
        std::size_t at = text.find(id + "(");
        while (at != std::string::npos && at > 0 && (std::isalnum(static_cast<unsigned char>(text[at - 1])) ||
                                                    text[at - 1] == '_')) {
            at = text.find(id + "(", at + 1);
        }
        if (at == std::string::npos) continue;
        PublishedPrototype prototype;
        const std::size_t statement = text.find_last_of(";}", at);
        prototype.returned = lastIdentifier(text.substr(statement == std::string::npos ? 0 : statement + 1,
                                                        at - (statement == std::string::npos ? 0 : statement + 1)));
        std::string parameter;
        int depth = 1;
        auto finish = [&] {
            const std::string written = trimmedText(parameter);
            if (written == "size_t") {
                ++prototype.hiddenLengths;
            } else if (!written.empty() && written != "void") {
                prototype.parameters.push_back(written);
            }
            parameter.clear();
        };
        for (std::size_t i = at + id.size() + 1; i < text.size() && depth > 0; ++i) {
            const char c = text[i];
            depth += c == '(' ? 1 : c == ')' ? -1 : 0;
            if (depth == 0 || (depth == 1 && c == ',')) {
                finish();
            } else {
                parameter += c;
            }
        }
        prototypes[name] = prototype;
    }
    return prototypes;
}
