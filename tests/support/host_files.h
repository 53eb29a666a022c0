#pragma once
/// A host without a display and a folder for tests that write files, new for each. The folder is
/// the current directory while the test runs.

#include "platform/headless/headless.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <memory>

class HostFilesTest : public testing::Test {
protected:
    void SetUp() override {
        install_host({});
        before_ = std::filesystem::current_path();
        std::filesystem::current_path(folder_.path());
    }
    void TearDown() override { std::filesystem::current_path(before_); }

    void install_host(const HeadlessOptions& options) {
        own_host_ = std::make_unique<HeadlessPlatform>(options);
        host = own_host_.get();
        install_platform(*host);
    }

    HeadlessPlatform* host = nullptr;

private:
    std::unique_ptr<HeadlessPlatform> own_host_;
    Folder folder_;
    std::filesystem::path before_;
};
