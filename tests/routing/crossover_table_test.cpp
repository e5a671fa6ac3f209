// The crossover table held against the counts and values that its definition
// states, reading the names the table actually holds.
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>

#include "routing/crossover_table.h"

namespace {

int32_t defaultOf(const std::string& name) {
    for (const auto& pair : crossoverNames)
        if (name == pair.name) return crossoverTable.*pair.entry;
    ADD_FAILURE() << "no entry " << name;
    return 0;
}

// A name's root: without its precision letter. dsgesv and zcgesv are roots of one.
std::string rootOf(const std::string& name) {
    return name == "dsgesv" || name == "zcgesv" ? name : name.substr(1);
}

}  // namespace

TEST(CrossoverTable, RootsAndPrecisionsAddUpTo204Names) {
    std::set<std::string> names;
    std::map<std::string, std::string> precisionsOfRoot;
    for (const auto& pair : crossoverNames) {
        EXPECT_TRUE(names.insert(pair.name).second) << "twice: " << pair.name;
        EXPECT_NE(std::string("sdcz").find(pair.name[0]), std::string::npos) << pair.name;
        precisionsOfRoot[rootOf(pair.name)] += pair.name[0];
    }
    EXPECT_EQ(names.size(), 204u);

    std::map<std::size_t, int> rootsByPrecisionCount;
    for (auto& [root, precisions] : precisionsOfRoot) {
        std::sort(precisions.begin(), precisions.end());
        rootsByPrecisionCount[precisions.size()] += 1;
        if (precisions.size() == 4) {
            EXPECT_EQ(precisions, "cdsz") << root;
        }
        if (precisions.size() == 2) {
            EXPECT_TRUE(precisions == "ds" || precisions == "cz") << root;
        }
    }
    // 34 roots in four precisions, 33 in two, and two single names.
    EXPECT_EQ(rootsByPrecisionCount, (std::map<std::size_t, int>{{1, 2}, {2, 33}, {4, 34}}));
    EXPECT_EQ(precisionsOfRoot.count("dsgesv") + precisionsOfRoot.count("zcgesv"), 2u);
}

TEST(CrossoverTable, DefaultsArePowersOfTwoSharedByEachRoot) {
    const std::set<int32_t> stated{256, 512, 1024, 262144, 1048576, 4194304, 1073741824};
    std::map<std::string, int32_t> defaultOfRoot;
    for (const auto& pair : crossoverNames) {
        const int32_t value = crossoverTable.*pair.entry;
        EXPECT_TRUE(stated.count(value)) << pair.name << " = " << value;
        auto [it, first] = defaultOfRoot.emplace(rootOf(pair.name), value);
        EXPECT_TRUE(first || it->second == value) << pair.name << " differs from its root";
    }
    // The routed routines' defaults are the family tests' rows (tests/link).
    EXPECT_EQ(defaultOf("sstebz"), 256);
    for (const char* name : {"sggrqf", "dggrqf", "cggrqf", "zggrqf"}) EXPECT_EQ(defaultOf(name), 1073741824);
    int largest = 0;
    for (const auto& pair : crossoverNames) largest += (crossoverTable.*pair.entry == 1073741824);
    EXPECT_EQ(largest, 4);
    // Entries that no routine reads are ordinary entries all the same.
    for (const char* name : {"cherdb", "zherdb", "ssyrdb", "dsyrdb", "csymv", "zsymv"}) EXPECT_GT(defaultOf(name), 0);
}

TEST(CrossoverTable, LookUpComparesWholeNamesInTheirCase) {
    int32_t* sgemm = linkFindCrossover("sgemm");
    ASSERT_EQ(sgemm, &crossoverTable.sgemm);
    ASSERT_EQ(linkFindCrossover("zcgesv"), &crossoverTable.zcgesv);
    for (const char* name : {"SGEMM", "sgem", "sgemmx", " sgemm", "sgemm ", "", "gemm"})
        EXPECT_EQ(linkFindCrossover(name), nullptr) << "'" << name << "'";
}
