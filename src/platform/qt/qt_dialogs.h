#pragma once
#include "platform/dialogs.h"
#include "platform/qt/qt_signals.h"
#include "platform/qt/qt_window.h"

/// Each blocks until it is answered, and hands its answer over then.
class QtDialogs final : public Dialogs {
public:
    QtDialogs(QtWindow& window, const QtSignals& given) : window_(window), signals_(given) {}
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
    int ask(const std::string& title, const std::string& text,
            const std::vector<std::string>& answers);
    std::optional<FileChoice> ask_for_file(const FileDialog& dialog);

    QtWindow& window_;
    const QtSignals& signals_;
};
