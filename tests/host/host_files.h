#pragma once
/// A host without a display and a folder of its own for tests that write files. The folder is the
/// current directory while the test runs.

#include "platform/headless/headless.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

class HostFilesTest : public testing::Test {
protected:
    void SetUp() override {
        static HeadlessPlatform headless{HeadlessOptions{}};
        host = &headless;
        install_platform(headless);
        before_ = std::filesystem::current_path();
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        folder_ = std::filesystem::path(testing::TempDir()) /
                  ("tarvelin-" + std::to_string(getpid()) + "-" + test->test_suite_name() + "-" +
                   test->name());
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        std::filesystem::current_path(folder_);
    }

    void TearDown() override {
        std::filesystem::current_path(before_);
        std::filesystem::remove_all(folder_);
    }

    static std::vector<uint8_t> read_file(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    HeadlessPlatform* host = nullptr;

private:
    std::filesystem::path before_;
    std::filesystem::path folder_;
};
