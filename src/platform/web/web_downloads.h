#pragma once
/// Files handed to the user as downloads of the browser.

#include "platform/downloads.h"

struct WebDownloads final : public Downloads {
    bool offer(const std::string& name, std::span<const uint8_t> bytes) override;
    void saved(const std::string& path) override;
};
