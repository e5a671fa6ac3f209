// main() of the test programs whose tests depend on start-up or on the
// environment. The library starts up once per process, so ctest runs each test of
// these programs as a process of its own; a second test in the same process would
// see the first one's start-up, and fails at once instead of misleading.
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#if defined(_WIN32)
// msvcrt: environ is a macro for the C library's own table, and _putenv with an
// empty value removes a variable.
static void unsetenv(const char* name) { _putenv((std::string(name) + "=").c_str()); }
#else
extern char** environ;
#endif

namespace {

class OneTestPerProcess : public testing::EmptyTestEventListener {
    int started_ = 0;
    void OnTestStart(const testing::TestInfo&) override {
        if (++started_ > 1)
            ADD_FAILURE() << "each test of this program must run in its own process: run it "
                             "through ctest, or select one test with --gtest_filter";
    }
};

// The tests set the variables they need; none may come from the caller's shell.
void clearVornEnvironment() {
    std::vector<std::string> names;
    for (char** entry = environ; *entry != nullptr; ++entry)
        if (std::strncmp(*entry, "VORN_", 5) == 0) names.emplace_back(*entry, std::strchr(*entry, '=') - *entry);
    for (const auto& name : names) unsetenv(name.c_str());
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    clearVornEnvironment();
    testing::UnitTest::GetInstance()->listeners().Append(new OneTestPerProcess);
    return RUN_ALL_TESTS();
}
