#pragma once

#include "fixture.h"

#include <filesystem>

namespace e2e {

/// The program in a folder of its own, whose folder of language packs is empty at first.
class program_folder_test : public machine_test {
protected:
    void SetUp() override
    {
        machine_test::SetUp();
        built_program_ = program_under_test;
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(packs());
        std::filesystem::copy_file(built_program_, folder_ / "tl_server_config.exe");
        program_under_test = (folder_ / "tl_server_config.exe").u16string();
    }

    void TearDown() override
    {
        program_under_test = built_program_;
        machine_test::TearDown();
    }

    std::filesystem::path packs() const { return folder_ / "languages"; }
    std::filesystem::path built_packs() const
    {
        return std::filesystem::path(built_program_).parent_path() / "languages";
    }

    const std::filesystem::path folder_ = std::filesystem::temp_directory_path() / "tidelink program";

private:
    std::u16string built_program_;
};

} // namespace e2e
