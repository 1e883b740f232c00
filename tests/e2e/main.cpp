// e2e_test.exe PROGRAM [GoogleTest's options]

#include "utility.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (argc != 2) {
        std::cerr << "e2e_test: which program?\n";
        return EXIT_FAILURE;
    }
    e2e::program_under_test = std::filesystem::absolute(argv[1]).u16string();
    return RUN_ALL_TESTS();
}
