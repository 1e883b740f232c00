// e2e_test.exe PROGRAM STAND-IN-SERVER PLANTED-LIBRARY [GoogleTest's options]

#include "utility.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (argc != 4) {
        std::cerr << "e2e_test: which program, which server, which library?\n";
        return EXIT_FAILURE;
    }
    e2e::program_under_test = std::filesystem::absolute(argv[1]).u16string();
    e2e::server_under_test = std::filesystem::absolute(argv[2]).u16string();
    e2e::planted_library = std::filesystem::absolute(argv[3]).u16string();
    return RUN_ALL_TESTS();
}
