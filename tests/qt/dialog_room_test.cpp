// Every dialog of the program on a small screen, at each scale, with longer texts: the menu is gone
// through item by item, and what opens is looked at and closed.

#include "host/dialogs/dialogs.h"
#include "host/shell.h"
#include "platform/qt/qt_room.h"
#include "platform/qt/qt_text.h"
#include "qt/offscreen.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QDialog>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollBar>
#include <QStyle>
#include <QTimer>
#include <QToolButton>

#include <functional>
#include <memory>
#include <set>

namespace {

constexpr int LOOK = 15; ///< ms until a dialog is there

/// As long as other languages make it, in words.
QString longer(const QString& text) {
    QStringList lines = text.split('\n');
    for (QString& line : lines) {
        const qsizetype end = line.contains('\t') ? line.indexOf('\t') : line.size();
        QString more;
        for (qsizetype n = 0; n < (end * 3 + 9) / 10; ++n)
            more += n % 7 == 0 && end > 9 ? ' ' : 'n';
        line.insert(end, more);
    }
    return lines.join('\n');
}

class DialogRoomTest : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        write_text(files / "screen.json",
                   R"({"screens":[{"name":"small","width":1280,"height":800}]})");
        qputenv("QT_QPA_PLATFORM",
                "offscreen:configfile=" + QByteArray((files / "screen.json").c_str()));
        qputenv("QT_SCALE_FACTOR", GetParam());
        qputenv("SDL_AUDIODRIVER", "dummy");
        for (const char* folder : {"XDG_CONFIG_HOME", "XDG_DATA_HOME"}) {
            qputenv(folder, files.path().c_str());
        }
        std::filesystem::current_path(files.path()); // for screenshots
        host = std::make_unique<QtPlatform>(argc, argv);
        install_platform(*host);
        QDesktopServices::setUrlHandler("file", &no_browser, "none");
    }
    void TearDown() override {
        shown_text = nullptr;
        host.reset();
        for (const char* variable : {"QT_SCALE_FACTOR", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
            qunsetenv(variable);
    }

    static QDialog* open_dialog() {
        QDialog* found = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (!found && widget->isVisible()) found = qobject_cast<QDialog*>(widget);
        }
        return found;
    }

    /// The room that its text needs.
    static QSize needed(const QWidget& widget) {
        if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
            if (label->wordWrap()) return {0, label->heightForWidth(label->width())};
            return label->sizeHint();
        }
        if (const auto* list = qobject_cast<const QComboBox*>(&widget)) {
            return list->isEditable() || !list->toolTip().isEmpty() ? QSize() : list->sizeHint();
        }
        if (const auto* group = qobject_cast<const QGroupBox*>(&widget)) {
            return group->minimumSizeHint();
        }
        if (qobject_cast<const QToolButton*>(&widget)) return {}; // pictures
        if (const auto* push = qobject_cast<const QPushButton*>(&widget)) {
            return push->fontMetrics().size(Qt::TextShowMnemonic, push->text()) +
                   QSize(push->style()->pixelMetric(QStyle::PM_ButtonMargin, nullptr, push), 0);
        }
        return qobject_cast<const QAbstractButton*>(&widget) ? widget.sizeHint() : QSize();
    }
    void look_at(QDialog& dialog) {
        const std::string title = dialog.windowTitle().toStdString();
        const QSize room = dialog.screen()->availableSize();
        const int bar = dialog.style()->pixelMetric(QStyle::PM_TitleBarHeight);
        EXPECT_LE(dialog.width(), room.width()) << title;
        EXPECT_LE(dialog.height() + bar, room.height()) << title;
        const bool of_qt = qobject_cast<const QFileDialog*>(&dialog);
        std::set<QChar> keys;
        for (QWidget* widget : dialog.findChildren<QWidget*>()) {
            const QSize size = needed(*widget);
            if (!widget->isVisible()) continue;
            const std::string what = title + ": " + widget->metaObject()->className() + " " +
                                     widget->property("text").toString().toStdString() +
                                     widget->objectName().toStdString();
            if (!of_qt) {
                EXPECT_FALSE(widget->focusPolicy() & Qt::TabFocus && spoken(*widget).isEmpty())
                    << what << " has no name";
                const QString label =
                    widget->property(qobject_cast<QGroupBox*>(widget) ? "title" : "text")
                        .toString();
                const qsizetype mark = label.indexOf('&') + 1;
                if (mark && mark < label.size() && label[mark] != '&' &&
                    !label.startsWith("&Cycle")) {
                    EXPECT_TRUE(keys.insert(label[mark].toLower()).second) << what << ": key twice";
                }
            }
            if (const auto* scroll = qobject_cast<const QScrollBar*>(widget); scroll && !of_qt) {
                EXPECT_EQ(scroll->orientation(), Qt::Vertical) << title << " scrolls to the side";
            }
            if (!size.isValid()) continue;
            EXPECT_GE(widget->width(), size.width()) << what;
            EXPECT_GE(widget->height(), size.height()) << what;
            const bool buttons = dynamic_cast<const QtButtonRows*>(widget->parentWidget());
            EXPECT_FALSE(buttons && widget->visibleRegion().boundingRect() != widget->rect())
                << what;
        }
        seen.insert(title);
        if (const char* pictures = std::getenv("DIALOG_PICTURES")) {
            dialog.grab().save(
                QString("%1/%2 %3.png").arg(pictures, dialog.windowTitle(), GetParam()));
        }
    }

    void collect_acts(QMainWindow& frame) {
        for (QAction* action : frame.findChildren<QAction*>()) {
            if (action->menu() || action->isSeparator() || action->text().startsWith("E&xit"))
                continue;
            acts.push_back([action] { action->trigger(); });
        }
        const std::string answer = "Keep what is in memory and write it";
        std::string lines;
        for (int n = 0; n < 60; ++n) lines += answer + "\n";
        acts.push_back(
            [=, this] { host->dialogs().message("Long", lines, MessageIcon::error, [] {}); });
        acts.push_back([=, this] {
            host->dialogs().choose("Choice", "?", {answer, answer, answer, answer}, [](int) {});
        });
        acts.push_back([] { ui_machine_set_breakpoint([] {}); });
        acts.push_back([&frame] { frame.close(); });
    }
    void step() {
        QTimer::singleShot(LOOK, [this] { step(); });
        if (QDialog* dialog = open_dialog()) {
            look_at(*dialog);
            dialog->reject();
        } else if (next < acts.size()) {
            acts[next++]();
        }
    }

    static inline int argc = 1;
    static inline char program_name[] = "test";
    static inline char* argv[] = {program_name, nullptr};
    Folder files;
    QObject no_browser;
    std::unique_ptr<QtPlatform> host;
    std::vector<std::function<void()>> acts;
    size_t next = 0;
    std::set<std::string> seen;
};

TEST_P(DialogRoomTest, EveryDialogFitsAndCutsNoText) {
    shown_text = longer;
    QTimer::singleShot(0, [this] {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* frame = qobject_cast<QMainWindow*>(widget)) collect_acts(*frame);
        }
        step();
    });
    run_shell({});
    EXPECT_GT(seen.size(), 20u);
}

INSTANTIATE_TEST_SUITE_P(Scales, DialogRoomTest, testing::Values("1", "1.25", "1.5", "2"));

} // namespace
