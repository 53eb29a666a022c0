#pragma once
/// Modal dialogs, as elements of the page. Each answer comes later.

#include "platform/dialogs.h"

struct WebDialogs final : public Dialogs {
    void message(const std::string& title, const std::string& text, MessageIcon icon,
                 std::function<void()> done) override;
    void choose(const std::string& title, const std::string& text,
                const std::vector<std::string>& answers, std::function<void(int)> done) override;
    void choose_file(const FileDialog& dialog,
                     std::function<void(std::optional<FileChoice>)> done) override;
    void about(const std::string& title, const std::vector<std::string>& lines,
               const std::string& link, const std::string& target,
               std::function<void()> done) override;
    bool open_page(const std::string& url) override;
};
