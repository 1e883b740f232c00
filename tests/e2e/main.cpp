// e2e_test.exe PROGRAM STAND-IN-SERVER [GoogleTest's options]
// e2e_update_test.exe PROGRAM FOLDER-OF-THE-WEB-SERVER [GoogleTest's options]

#include "utility_driver/utility.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (argc != 3) {
        std::cerr << "Which program, which server?\n";
        return EXIT_FAILURE;
    }
    utility_driver::program_under_test = std::filesystem::absolute(argv[1]).u16string();
    utility_driver::server_under_test = std::filesystem::absolute(argv[2]).u16string();
    return RUN_ALL_TESTS();
}
