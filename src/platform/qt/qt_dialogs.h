#pragma once
#include "platform/dialogs.h"
#include "platform/qt/qt_signals.h"
#include "platform/qt/qt_window.h"

class QtDialogs final : public Dialogs {
public:
    QtDialogs(QtWindow& window, const QtSignals& given) : window_(window), signals_(given) {}
    void message(const std::string& title, const std::string& text, MessageIcon icon) override;
    int choose(const std::string& title, const std::string& text,
               const std::vector<std::string>& answers) override;
    std::optional<FileChoice> choose_file(const FileDialog& dialog) override;
    void about(const std::string& title, const std::vector<std::string>& lines,
               const std::string& link, const std::string& target) override;

private:
    QtWindow& window_;
    const QtSignals& signals_;
};
