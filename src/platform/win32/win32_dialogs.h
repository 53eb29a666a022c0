#pragma once
#include "platform/dialogs.h"
#include "platform/win32/win32_context.h"

#include <string>

class Win32Dialogs final : public Dialogs {
public:
    explicit Win32Dialogs(Win32Context& context) : context_(context) {}

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

private:
    Win32Context& context_;
    std::wstring folder_; ///< of the file that was chosen last
};
