// SPDX-License-Identifier: Apache-2.0
#include "TestProgram.h"

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace
{

std::map<std::string, support::TestFunction>& tests()
{
    static std::map<std::string, support::TestFunction> all;
    return all;
}

} // namespace

support::TestRegistration::TestRegistration(const char* sourceFile, TestFunction run)
{
    tests()[QFileInfo(QString::fromUtf8(sourceFile)).completeBaseName().toStdString()] = run;
}

int main(int argc, char** argv)
{
    const auto chosen = tests().find(argc > 1 ? argv[1] : "");
    if (chosen == tests().end()) {
        std::fprintf(stderr, "Usage: %s <test> [options of Qt Test]\nTests:\n", argv[0]);
        for (const auto& test : tests()) {
            std::fprintf(stderr, "  %s\n", test.first.c_str());
        }
        return 2;
    }
    std::vector<char*> arguments(argv, argv + argc + 1); // with the null pointer at the end
    arguments.erase(arguments.begin() + 1);
    return chosen->second(argc - 1, arguments.data());
}
