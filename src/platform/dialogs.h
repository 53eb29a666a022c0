#pragma once
#include "wall/report.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

struct FileFilter {
    std::string text;           ///< shown
    std::string pattern;        ///< "*.a;*.b"
    std::string extension = {}; ///< of a file to save whose name is typed without a point
};

/// A text field that a file dialog shows below its own.
struct FileDialogField {
    std::string label; ///< with "&" before the access key
    int limit = 0;     ///< characters
    std::string text;
};

struct FileDialog {
    std::string title;
    std::vector<FileFilter> filters;
    int filter_index = 0; ///< chosen when the dialog opens
    bool save = false;    ///< and asks before a file is replaced
    std::vector<FileDialogField> fields = {};
    /// Lines about the file with this path, for a panel beside the list of files; it is asked for
    /// whenever another one is marked. Not every desktop's dialog has such a panel.
    std::function<std::vector<std::string>(const std::string& path)> preview = {};
};

struct FileChoice {
    std::string path;
    int filter_index = 0;
    std::vector<std::string> field_texts = {}; ///< in the order of the dialog's fields
};

constexpr int NO_ANSWER = -1;

/// Modal dialogs of the main window. Each hands its answer to `done`, before the call returns or
/// later; several that are open at a time are answered in the order that the host shows them in.
struct Dialogs {
    virtual ~Dialogs() = default;
    virtual void message(const std::string& title, const std::string& text, MessageIcon icon,
                         std::function<void()> done) = 0;
    /// A question with a button for each answer ("&" before the access key); Enter gives the first.
    /// The answer is its place in the list. NO_ANSWER: the box was left with Escape or its close
    /// button, the program is being ended by a signal, or there is nobody to answer.
    virtual void choose(const std::string& title, const std::string& text,
                        const std::vector<std::string>& answers, std::function<void(int)> done) = 0;
    /// Nothing when cancelled. Not every desktop's dialog adds the extension to a name.
    virtual void choose_file(const FileDialog& dialog,
                             std::function<void(std::optional<FileChoice>)> done) = 0;
    /// The program's own box: its picture, lines of text, a link line that opens `target`, OK.
    virtual void about(const std::string& title, const std::vector<std::string>& lines,
                       const std::string& link, const std::string& target,
                       std::function<void()> done) = 0;
    /// Opens the page in the user's browser. False when the host has no way to do that.
    virtual bool open_page(const std::string& url) = 0;
};
