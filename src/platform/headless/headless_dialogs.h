#pragma once
/// Dialogs and clipboard without a screen: what was asked is recorded, what is answered is set by
/// the driver.

#include "platform/clipboard.h"
#include "platform/dialogs.h"

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

struct HeadlessMessage {
    std::string title;
    std::string text;
    MessageIcon icon = MessageIcon::none;  ///< of a message
    std::vector<std::string> answers = {}; ///< of a question
};

struct HeadlessAbout {
    std::string title;
    std::vector<std::string> lines;
    std::string link;
    std::string target;
};

/// When the answers of dialogs and modal forms come.
struct HeadlessAnswers {
    /// Hands an answer over: now, or in `later` mode when the program asks for messages next.
    void give(std::function<void()> answer);
    /// Hands over the next answer that waits; false when there is none.
    bool deliver();

    bool later = false; ///< set by the driver
    std::deque<std::function<void()>> waiting;
};

struct HeadlessDialogs final : public Dialogs {
    explicit HeadlessDialogs(HeadlessAnswers& given) : answers_(given) {}

    void message(const std::string& title, const std::string& text, MessageIcon icon,
                 std::function<void()> done) override;
    void choose(const std::string& title, const std::string& text,
                const std::vector<std::string>& offered, std::function<void(int)> done) override;
    void choose_file(const FileDialog& dialog,
                     std::function<void(std::optional<FileChoice>)> done) override;
    void about(const std::string& title, const std::vector<std::string>& lines,
               const std::string& link, const std::string& target,
               std::function<void()> done) override;
    bool open_page(const std::string& url) override;

    /// Answers, the next one in front. Without one a question has no answer and a file dialog is
    /// cancelled. Fields that a choice has no text for keep theirs.
    std::deque<int> answers;
    std::deque<std::optional<FileChoice>> choices;

    std::vector<HeadlessMessage> messages, questions;
    std::vector<FileDialog> file_dialogs;
    std::vector<HeadlessAbout> abouts;
    bool has_browser = false; ///< set by the driver
    std::vector<std::string> pages;

private:
    HeadlessAnswers& answers_;
};

struct HeadlessClipboard final : public Clipboard {
    std::optional<std::string> text() override { return available ? content : std::nullopt; }
    bool set_text(const std::string& text) override;

    std::optional<std::string> content;
    bool available = true; ///< off: the clipboard cannot be used
};
