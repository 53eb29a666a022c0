// The window without a screen, driven by Qt events.

#include "platform/qt/qt_accessible.h"
#include "platform/qt/qt_pane.h"
#include "platform/qt/qt_pixels.h"
#include "qt/offscreen.h"
#include "support/test_files.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDropEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QPointingDevice>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>
#include <QTouchEvent>
#include <QWheelEvent>

#include <functional>
#include <map>

namespace {

constexpr Qt::KeyboardModifiers NO_MODIFIERS;

struct Told final : EventSink {
    void loop_begins() override { menus += "("; }
    void loop_ends() override { menus += ")"; }
    void menu_opens() override { menus += "m"; }
    void item_highlighted(int id) override { menus += std::to_string(id); }
    void paint(PaneId pane) override { paints += pane == PaneId::debugger; }
    void draw_status() override { ++status_draws; }
    void session_ends() override {}
    std::string menus;
    int status_draws = 0, paints = 0;
} told;

class QtPlatformTest : public OffscreenTest {
protected:
    static void SetUpTestSuite() {
        OffscreenTest::SetUpTestSuite();
        host->events().set_sink(told);
        host->window().set_menu(
            {{0, "&Menu", {{7, "&Item\tAlt+T", {}, true}, {8, "Other", {}, false}}, false}});
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* window = qobject_cast<QMainWindow*>(widget)) frame = window;
        }
    }
    void SetUp() override {
        fit({40, 30});
        drain();
    }

    static void fit(Size client) {
        host->window().set_fixed_size(host->window().outer_size(client));
    }
    static std::vector<Event> drain() {
        std::vector<Event> events;
        for (Event event = host->events().poll(); event.kind != Event::Kind::none;
             event = host->events().poll()) {
            events.push_back(event);
        }
        return events;
    }
    /// What came of one kind since the last look.
    static std::vector<Event> drain(Event::Kind kind) {
        std::vector<Event> events = drain();
        std::erase_if(events, [kind](const Event& event) { return event.kind != kind; });
        return events;
    }
    static QWidget& client() { return *frame->centralWidget(); }
    static unsigned pixel(int x, int y) { return client().grab().toImage().pixel(x, y) & 0xFFFFFF; }
    static bool send_key(QEvent::Type type, int key, Qt::KeyboardModifiers modifiers = NO_MODIFIERS,
                         QWidget& to = client()) {
        QKeyEvent event(type, key, modifiers);
        event.ignore();
        QApplication::sendEvent(&to, &event);
        return event.isAccepted();
    }

    static inline QMainWindow* frame = nullptr;
};

TEST_F(QtPlatformTest, WindowHasTheSizeForItsClientArea) {
    Window& window = host->window();
    EXPECT_EQ(window.client_size(), (Size{40, 30}));
    EXPECT_EQ(client().size(), QSize(40, 30));
    const Rectangle place = window.outer_rectangle();
    EXPECT_EQ(place.height(), 30 + frame->menuBar()->height());

    window.move({place.left + 9, place.top + 5, place.right + 100, place.bottom + 100});
    EXPECT_EQ(window.outer_rectangle().left, place.left + 9);
    EXPECT_EQ(window.client_size(), (Size{40, 30})) << "a fixed size does not give way";

    window.set_full_screen(true);
    drain();
    EXPECT_EQ(window.client_size(), window.screen_size());
    fit({50, 60});
    window.set_full_screen(false);
    EXPECT_EQ(window.client_size(), (Size{50, 60}));
    EXPECT_EQ(window.outer_rectangle().left, place.left + 9);
}

TEST_F(QtPlatformTest, DrawsEveryDepthCutOffAtTheEdges) {
    const uint8_t palette[1024] = {1, 2, 3, 0, 0x10, 0x20, 0x30, 0};
    const uint8_t eight[] = {0, 1, 1, 0, 0, 0, 0, 1};
    const uint8_t one[] = {0x40, 0x81}; // two rows of eight
    const uint8_t true_colour[] = {0x33, 0x22, 0x11, 0, 0x66, 0x55, 0x44, 0};
    Pane& drawing = host->pane(PaneId::picture);
    drawing.fill_rectangle({-5, -5, 100, 100}, 0xABCDEF);
    drawing.copy_bitmap({4, 2, 8, eight, palette}, -1, 0);
    drawing.copy_bitmap({8, 2, 1, one, palette}, 10, 20);
    drawing.copy_bitmap({2, 1, 32, true_colour, nullptr}, 39, 29);
    const std::map<std::pair<int, int>, unsigned> expected = {
        {{0, 0}, 0x302010},   {{1, 0}, 0x302010},   {{2, 0}, 0x030201},   {{2, 1}, 0x302010},
        {{3, 0}, 0xABCDEF},   {{10, 20}, 0x030201}, {{11, 20}, 0x302010}, {{10, 21}, 0x302010},
        {{17, 21}, 0x302010}, {{18, 21}, 0xABCDEF}, {{39, 29}, 0x112233}, {{38, 29}, 0xABCDEF}};
    for (const auto& [place, colour] : expected) {
        EXPECT_EQ(pixel(place.first, place.second), colour) << place.first << "," << place.second;
    }
}

TEST_F(QtPlatformTest, WritesTextIntoCells) {
    fit({200, 60});
    drain();
    Pane& drawing = host->pane(PaneId::picture);
    const Size cell = drawing.cell_size();
    const auto lit = [&](int column, Colour colour) { // pixels of the cell at (3, 5)
        int count = 0;
        for (int y = 5; y < 5 + cell.height; ++y) {
            for (int x = 0; x < cell.width; ++x) {
                count += pixel(3 + column * cell.width + x, y) == colour;
            }
        }
        return count;
    };
    drawing.fill_rectangle({0, 0, 200, 60}, 0x0000FF);
    drawing.text(3, 5, "M M\tM", 0xFFFFFF, 0);
    const int all = cell.width * cell.height;
    for (const int column : {0, 2, 8}) {
        EXPECT_GT(lit(column, 0), all / 4) << column;
        EXPECT_LT(lit(column, 0), all - 5) << column;
        EXPECT_EQ(lit(column, 0x0000FF), 0) << column;
    }
    for (const int column : {1, 3, 7}) EXPECT_EQ(lit(column, 0), all) << column;
    EXPECT_EQ(lit(9, 0x0000FF), all) << "behind the text";
    drawing.line(4, 50, 3, 0xFFFFFF);
    const Colour row[] = {0x0000FF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0x0000FF};
    for (int x = 0; x < 5; ++x) EXPECT_EQ(pixel(3 + x, 50), row[x]) << x;
}

TEST_F(QtPlatformTest, StretchesOverTheScreenWithBlackAround) {
    const uint8_t pixels[] = {0, 0, 0xFF, 0, 0, 0xFF, 0, 0}; // red, green
    host->pane(PaneId::picture).fill_rectangle({0, 0, 40, 30}, 0xFFFFFF);
    ASSERT_EQ(host->surface().create({2, 1}), "");
    const Rectangle origin = host->window().client_on_screen();
    const Rectangle target = {origin.left + 10, origin.top + 5, origin.left + 30, origin.top + 25};
    host->surface().present({2, 1, 32, pixels, nullptr}, target, {}, true);
    EXPECT_EQ(pixel(9, 10), 0u);
    EXPECT_EQ(pixel(10, 5), 0xFF0000u);
    EXPECT_EQ(pixel(19, 24), 0xFF0000u);
    EXPECT_EQ(pixel(20, 24), 0x00FF00u);
    EXPECT_EQ(pixel(20, 25), 0u);
    Pane& monitor = host->pane(PaneId::monitor);
    monitor.fill_rectangle({0, 0, 20, 20}, 0x123456);
    EXPECT_EQ(pixel(10, 5), 0xFF0000u) << "behind the picture";
    monitor.show(true);
    EXPECT_EQ(pixel(10, 5), 0x123456u);
    monitor.show(false);
    EXPECT_EQ(pixel(10, 5), 0xFF0000u);
    host->surface().release();
    EXPECT_EQ(pixel(9, 10), 0xFFFFFFu);
}

TEST_F(QtPlatformTest, OnlyWhatChangesOfAStretchedPictureIsPaintedAgain) {
    constexpr int WIDTH = 4, HEIGHT = 8;
    std::vector<uint8_t> pixels(size_t{WIDTH} * HEIGHT * 4, 0x20);
    const BitmapView picture = {WIDTH, HEIGHT, 32, pixels.data(), nullptr};
    for (const double ratio : {1.0, 1.25, 2.0}) {
        for (const Scaling how : {Scaling{}, {.smooth = true}, {.whole = true}}) {
            QImage screen = plain_picture(QSize(50, 70) * ratio, Qt::red);
            screen.setDevicePixelRatio(ratio);
            QtStretch stretch;
            const auto paint = [&](QImage& image, const QRect& part) {
                QPainter painter(&image);
                painter.setClipRect(part);
                stretch.paint(painter, part, ratio);
            };
            stretch.set(picture, {3, 5, 30, 58}, how, ratio);
            paint(screen, {0, 0, 50, 70});
            EXPECT_TRUE(stretch.set(picture, {3, 5, 30, 58}, how, ratio).isEmpty());
            pixels[(4 * WIDTH + 1) * 4] ^= 0xFF;
            const QRect changed = stretch.set(picture, {3, 5, 30, 58}, how, ratio);
            EXPECT_LT(changed.height(), 40);
            QImage anew = screen;
            paint(screen, changed);
            paint(anew, {0, 0, 50, 70});
            EXPECT_EQ(screen, anew) << ratio << how.smooth << how.whole;
        }
    }
}

TEST_F(QtPlatformTest, MenuReportsChoicesAndLeavesTheMarkToTheProgram) {
    QMenu& menu = *frame->menuBar()->actions()[0]->menu();
    QAction& item = *menu.actions()[0];
    item.trigger();
    const std::vector<Event> events = drain(Event::Kind::command);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].value, 7);
    EXPECT_TRUE(item.isChecked());
    host->window().check_item(7, false);
    host->window().set_item_text(7, "&New\tF1");
    host->window().check_item(99, true);
    EXPECT_FALSE(item.isChecked());
    EXPECT_EQ(item.text(), "&New\tF1");
    for (const auto state : {ItemState::greyed, ItemState::hidden, ItemState::usual}) {
        host->window().set_item_state(7, state);
        EXPECT_EQ(item.isEnabled(), state == ItemState::usual);
        EXPECT_EQ(item.isVisible(), state != ItemState::hidden);
    }
    told.menus.clear();
    menu.popup({0, 0});
    item.activate(QAction::Hover);
    menu.menuAction()->activate(QAction::Hover);
    EXPECT_EQ(told.menus, "m70");
    menu.close();
    host->window().popup_menu({{0, "&More", {{9, "&One", {}, true, ItemState::greyed}}}}, 5, 5);
    QAction& other =
        *static_cast<QMenu*>(QApplication::activePopupWidget())->actions()[0]->menu()->actions()[0];
    EXPECT_TRUE(other.isChecked() && !other.isEnabled());
    other.setEnabled(true);
    other.trigger();
    EXPECT_EQ(drain(Event::Kind::command)[0].value, 9);
    QApplication::activePopupWidget()->close();
    drain();
}

TEST_F(QtPlatformTest, ClaimedKeysComeBeforeTheMenuAndAreNotTheMachines) {
    const KeyChord chords[] = {{'T', MODIFIER_ALT}};
    host->window().claim_keys(chords);
    EXPECT_TRUE(send_key(QEvent::ShortcutOverride, Qt::Key_T, Qt::AltModifier));
    EXPECT_FALSE(send_key(QEvent::ShortcutOverride, Qt::Key_M, Qt::AltModifier));
    EXPECT_FALSE(
        send_key(QEvent::ShortcutOverride, Qt::Key_T, Qt::AltModifier | Qt::ShiftModifier));
    send_key(QEvent::KeyPress, Qt::Key_T, Qt::AltModifier);
    EXPECT_FALSE(host->keyboard().is_down('T'));
    const std::vector<Event> events = drain(Event::Kind::key_down);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].value, 'T');
    EXPECT_EQ(events[0].modifiers, MODIFIER_ALT);
}

TEST_F(QtPlatformTest, TapIsDownUntilTheProgramHasRun) {
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QApplication::postEvent(&client(), new QKeyEvent(type, Qt::Key_A, NO_MODIFIERS));
    }
    EXPECT_EQ(drain(Event::Kind::key_up).size(), 1u);
    for (int look = 0; look < 2; ++look) {
        EXPECT_TRUE(host->keyboard().is_down('A'));
        host->keyboard().release_tapped();
    }
    EXPECT_FALSE(host->keyboard().is_down('A'));

    send_key(QEvent::KeyPress, Qt::Key_B);
    QFocusEvent focus(QEvent::FocusOut);
    QApplication::sendEvent(&client(), &focus);
    EXPECT_FALSE(host->keyboard().is_down('B'));
}

TEST_F(QtPlatformTest, KeysComeWithRepeatsTextAndTheirEnd) {
    const auto send = [](QEvent::Type type, const char* text, bool repeat) {
        QKeyEvent event(type, Qt::Key_A, NO_MODIFIERS, text, repeat);
        QApplication::sendEvent(&client(), &event);
    };
    send(QEvent::KeyPress, "\xC3\xA4", false);
    send(QEvent::KeyRelease, "", true);
    send(QEvent::KeyPress, "\x1B", true);
    send(QEvent::KeyRelease, "", false);
    const std::vector<Event> events = drain();
    ASSERT_EQ(events.size(), 4u);
    using enum Event::Kind;
    const Event::Kind kinds[] = {key_down, text, key_down, key_up};
    for (size_t n = 0; n < 4; ++n) {
        EXPECT_EQ(events[n].kind, kinds[n]) << n;
        EXPECT_EQ(events[n].repeat, n == 2);
        EXPECT_EQ(events[n].value, n == 1 ? 0 : 'A');
    }
    EXPECT_EQ(events[1].text, "\xC3\xA4");
}

TEST_F(QtPlatformTest, TheDebuggersWindowHasKeysAndPictureOfItsOwn) {
    const KeyChord chords[] = {{'T', MODIFIER_ALT}};
    host->window().claim_keys(chords);
    send_key(QEvent::KeyPress, Qt::Key_B);
    EXPECT_TRUE(host->keyboard().is_down('B'));
    const Rectangle wanted{100, 90, 500, 390};
    host->window().place_debugger(true, wanted, 9);
    EXPECT_EQ(host->window().debugger_rectangle(), wanted);
    drain();
    EXPECT_FALSE(host->keyboard().is_down('B')) << "which the main window no longer sees go up";
    QWidget& debugger = *QApplication::activeWindow();
    EXPECT_TRUE(send_key(QEvent::ShortcutOverride, Qt::Key_F, Qt::AltModifier, debugger));
    for (const auto& [key, modifiers, value] : {std::tuple{Qt::Key_T, Qt::AltModifier, int('T')},
                                                {Qt::Key_F9, Qt::ShiftModifier, 0x78},
                                                {Qt::Key_Tab, Qt::NoModifier, 0x09},
                                                {Qt::Key_PageUp, Qt::ControlModifier, 0x21}}) {
        send_key(QEvent::KeyPress, key, modifiers, debugger);
        const auto events = drain(Event::Kind::key_down);
        ASSERT_EQ(events.size(), 1u) << value;
        EXPECT_TRUE(events[0].value == value && events[0].pane == PaneId::debugger) << value;
        EXPECT_FALSE(host->keyboard().is_down(uint8_t(value)));
    }
    Pane& pane = host->pane(PaneId::debugger);
    pane.fill_rectangle({0, 0, 400, 300}, 0x123456);
    const int paints = told.paints;
    EXPECT_EQ(debugger.grab().toImage().pixel(399, 299), 0xFF123456);
    EXPECT_EQ(told.paints, paints) << "the window keeps its picture";
    pane.set_message("PC 1234", 1);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&debugger)->text(QAccessible::Description),
              "PC 1234");
    debugger.close();
    const auto commands = drain(Event::Kind::command);
    ASSERT_EQ(commands.size(), 1u);
    EXPECT_TRUE(commands[0].value == 9 && debugger.isVisible()) << "the program closes it";
    host->window().place_debugger(false, {}, 9);
    drain();
    EXPECT_EQ(QApplication::activeWindow(), frame);
}

TEST_F(QtPlatformTest, PointerIsAtAPlaceInThePaneShown) {
    host->pane(PaneId::monitor).show(true);
    QMouseEvent event(QEvent::MouseButtonPress, {7, 5}, {0, 0}, Qt::RightButton,
                      Qt::LeftButton | Qt::RightButton, NO_MODIFIERS);
    QApplication::sendEvent(&client(), &event);
    host->pane(PaneId::monitor).show(false);
    const std::vector<Event> events = drain(Event::Kind::pointer);
    ASSERT_EQ(events.size(), 1u);
    const Pointer& used = events[0].pointer;
    EXPECT_EQ(used.act, Pointer::Act::press);
    EXPECT_EQ(used.pane, PaneId::monitor);
    EXPECT_EQ(used.x * 100 + used.y, 705);
    EXPECT_EQ(used.button, BUTTON_RIGHT);
    EXPECT_EQ(used.buttons, BUTTON_LEFT | BUTTON_RIGHT);
    EXPECT_FALSE(used.touch);
    for (const auto act : {Pointer::Act::press, Pointer::Act::double_click}) {
        QMouseEvent second(QEvent::MouseButtonDblClick, {7, 5}, {0, 0}, Qt::LeftButton,
                           Qt::LeftButton, NO_MODIFIERS);
        second.setTimestamp(5000); // the first one was at a window that is gone
        QApplication::sendEvent(&client(), &second);
        EXPECT_EQ(drain(Event::Kind::pointer).at(0).pointer.act, act);
    }
}

TEST_F(QtPlatformTest, ACancelledTouchLetsTheKeysGo) {
    host->window().place_keyboard(KeyboardPlace::docked, {0, 0, 40, 10}, 0);
    QWidget& keys = *client().childAt(3, 25);
    const QPointingDevice screen("", 1, QInputDevice::DeviceType::TouchScreen,
                                 QPointingDevice::PointerType::Finger, {}, 5, 0);
    drain();
    QTouchEvent begin(QEvent::TouchBegin, &screen, {}, {{7, QEventPoint::Pressed, {3, 4}, {}}});
    QApplication::sendEvent(&keys, &begin);
    QTouchEvent cancel(QEvent::TouchCancel, &screen);
    QApplication::sendEvent(&keys, &cancel);
    const auto events = drain(Event::Kind::pointer);
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].pointer.act, Pointer::Act::press);
    EXPECT_EQ(events[1].pointer.act, Pointer::Act::release);
    EXPECT_EQ(events[1].pointer.finger, events[0].pointer.finger);
    host->window().place_keyboard(KeyboardPlace::hidden, {}, 0);
}

TEST_F(QtPlatformTest, FilmBarLiesOverTheLowestLinesAndHasPointerAndReaderOfItsOwn) {
    fit({80, 100});
    Pane& bar = host->pane(PaneId::film_bar);
    host->pane(PaneId::picture).fill_rectangle({0, 0, 80, 100}, 0x0000FF);
    bar.show(true);
    const Size size = bar.size();
    EXPECT_EQ(size.width, 80);
    bar.fill_rectangle({0, 0, 80, size.height}, 0x00FF00);
    EXPECT_EQ(pixel(5, 99 - size.height), 0x0000FFu);
    EXPECT_EQ(pixel(5, 100 - size.height), 0x00FF00u);
    QMouseEvent event(QEvent::MouseButtonPress, {7, 5}, {0, 0}, Qt::LeftButton, Qt::LeftButton,
                      NO_MODIFIERS);
    QApplication::sendEvent(client().childAt(5, 99), &event);
    const std::vector<Event> events = drain(Event::Kind::pointer);
    ASSERT_EQ(events.size(), 1u) << "the pane behind gets none";
    EXPECT_EQ(events[0].pointer.pane, PaneId::film_bar);
    EXPECT_EQ(events[0].pointer.x * 100 + events[0].pointer.y, 705);
    bar.set_reading({"Time", "-0:01.0 of 0:02", -1, -2, 0});
    QAccessibleInterface* reader = QAccessible::queryAccessibleInterface(client().childAt(5, 99));
    EXPECT_EQ(reader->text(QAccessible::Value), "-0:01.0 of 0:02");
    EXPECT_EQ(reader->valueInterface()->currentValue().toDouble(), -1);
    bar.show(false);
    EXPECT_EQ(pixel(5, 99), 0x0000FFu);
}

TEST_F(QtPlatformTest, TakesTheFilesDroppedByteForByte) {
    QMimeData data;
    data.setData("text/uri-list", "http://host/x\r\nfile:///a%20b/%E4.cas\r\nfile:///c\r\n");
    QDragEnterEvent enter({1, 1}, Qt::CopyAction, &data, Qt::LeftButton, NO_MODIFIERS);
    QApplication::sendEvent(frame, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({1, 1}, Qt::CopyAction, &data, Qt::LeftButton, NO_MODIFIERS);
    QApplication::sendEvent(frame, &drop);
    const std::vector<Event> events = drain(Event::Kind::drop);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].text, "/a b/\xE4.cas");
    EXPECT_EQ(events[0].more, std::vector<std::string>{"/c"});
}

TEST_F(QtPlatformTest, CollectsWheelStepsToNotches) {
    std::vector<int> turned;
    for (const int angle : {-60, -30, -60, 150}) {
        QWheelEvent event({1, 1}, {1, 1}, {}, {0, angle}, Qt::NoButton, NO_MODIFIERS,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&client(), &event);
        for (const Event& message : drain(Event::Kind::pointer)) turned.push_back(message.value);
    }
    EXPECT_EQ(turned, (std::vector<int>{-120, 120}));
}

TEST_F(QtPlatformTest, ClosingIsTheProgramsDecision) {
    frame->close();
    EXPECT_TRUE(frame->isVisible());
    host->events().post_quit(3);
    EXPECT_EQ(host->events().poll().kind, Event::Kind::close);
    const Event quit = host->events().poll();
    EXPECT_EQ(quit.kind, Event::Kind::quit);
    EXPECT_EQ(quit.value, 3);
}

TEST_F(QtPlatformTest, AQuestionCanBeLeftWithoutAnAnswer) {
    const auto press = [](QWidget& box, int key) {
        QKeyEvent event(QEvent::KeyPress, key, NO_MODIFIERS);
        QApplication::sendEvent(box.focusWidget(), &event);
    };
    const std::pair<int, std::function<void(QWidget&)>> ways[] = {
        {0, [&](QWidget& box) { press(box, Qt::Key_Return); }},
        {2, [](QWidget& box) { box.findChildren<QPushButton*>().last()->click(); }},
        {NO_ANSWER, [&](QWidget& box) { press(box, Qt::Key_Escape); }},
        {NO_ANSWER, [](QWidget& box) { box.close(); }}};
    for (const auto& way : ways) {
        QTimer::singleShot(0, [&way] { way.second(*QApplication::activeModalWidget()); });
        host->dialogs().choose("Title", "Text", {"&One", "&Two", "&Last"},
                               [&way](int answer) { EXPECT_EQ(answer, way.first); });
    }
}

TEST_F(QtPlatformTest, SaveDialogAsksAboutTheFileThatItWillBe) {
    const Folder folder;
    write_text(folder / "game.bmp", "precious");
    const FileDialog dialog = {
        "Save", {{"G (*.gif)", "*.gif", "gif"}, {"B (*.bmp)", "*.bmp", "bmp"}}, 0, true};
    for (const bool other_filter : {false, true}) {
        bool asked = false;
        QTimer::singleShot(0, [&] {
            auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, NO_MODIFIERS);
            if (other_filter)
                QApplication::sendEvent(box->findChild<QComboBox*>("fileTypeCombo"), &down);
            box->findChild<QLineEdit*>("fileNameEdit")->setText((folder / "game").c_str());
            QTimer::singleShot(0, box, [&asked, box] {
                auto* question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                asked = question != nullptr;
                if (question) question->reject();
                box->reject();
            });
            box->accept();
        });
        std::optional<FileChoice> choice;
        host->dialogs().choose_file(dialog, [&choice](const auto& chosen) { choice = chosen; });
        EXPECT_EQ(asked, other_filter);
        EXPECT_EQ(choice ? choice->path : "", other_filter ? "" : folder / "game.gif");
    }
}

TEST_F(QtPlatformTest, ClipboardTextIsInTheMachinesBytes) {
    EXPECT_TRUE(host->clipboard().set_text("A\xE4\r\nB\r\n"));
    EXPECT_EQ(host->clipboard().text(), "A\xE4\r\nB\r\n");
}

TEST_F(QtPlatformTest, ScreenReadersFindTheTextAndHearWhatChanges) {
    host->window().set_readable("Screen", [] { return ReadableText{"READY\n>    \n", 7}; });
    QAccessibleInterface* reader = QAccessible::queryAccessibleInterface(&client());
    EXPECT_EQ(reader->role(), QAccessible::Terminal);
    EXPECT_EQ(reader->text(QAccessible::Name), "Screen");
    QAccessibleTextInterface& text = *reader->textInterface();
    int start = 0, end = 0;
    EXPECT_EQ(text.textAtOffset(text.cursorPosition(), QAccessible::LineBoundary, &start, &end),
              ">    \n");
    for (const int offset : {0, 4, 6, 9}) {
        EXPECT_EQ(text.offsetAtPoint(text.characterRect(offset).center()), offset);
    }
    host->window().set_readable("", nullptr);
    const QString changes[][4] = {{"", "ab", "", "ab"},
                                  {"> _", "> X_", "", "X"},
                                  {"aab", "ab", "a", ""},
                                  {"R 1\n", "R 2\n", "1", "2"}};
    for (const auto& [before, after, removed, inserted] : changes) {
        const TextChange change = text_change(before, after);
        EXPECT_EQ(QString(before).replace(change.place, removed.size(), inserted), after);
        EXPECT_EQ(change.removed + "|" + change.inserted, removed + "|" + inserted);
    }
}

TEST_F(QtPlatformTest, StatusBarIsTheBottomOfTheClientArea) {
    const int edges[] = {10, 20, -1};
    StatusBar& bar = host->status_bar();
    bar.create(edges, 1);
    const int height = bar.height();
    bar.set_text(2, "Tape & more");
    const QAccessibleInterface* all = QAccessible::queryAccessibleInterface(&client());
    const QAccessibleInterface* reader = all->child(all->childCount() - 1);
    EXPECT_EQ(reader->role(), QAccessible::StatusBar);
    EXPECT_EQ(reader->text(QAccessible::Name), "Status bar");
    EXPECT_EQ(reader->child(3)->text(QAccessible::Name), "Tape & more");
    fit({40, 60});
    EXPECT_GT(told.status_draws, 0);
    bar.fill_rectangle({5, 6, 15, 8}, 0xFF0000);
    EXPECT_EQ(pixel(12, 60 - height + 7), 0xFF0000u);
    EXPECT_NE(pixel(7, 60 - height + 7), 0xFF0000u) << "another part";
    std::string tip = "none";
    bar.set_buttons({{{12, 0, 18, height}, "Lamp", [&] { return tip; }}});
    tip = "now";
    QToolButton& button = *client().findChild<QToolButton*>();
    QAccessibleInterface* lamp = QAccessible::queryAccessibleInterface(&button);
    EXPECT_EQ(lamp->text(QAccessible::Name) + lamp->text(QAccessible::Description), "Lampnow");
    lamp->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(client().childAt(15, 59), &button) << "the part lets the pointer through";
    EXPECT_NE(client().childAt(25, 59), &button);
    EXPECT_EQ(drain(Event::Kind::status_button).size(), 1u);
    bar.show_over("x");
    EXPECT_NE(pixel(12, 60 - height + 7), 0xFF0000u);
    bar.show_over("");
    EXPECT_EQ(pixel(12, 60 - height + 7), 0xFF0000u);
    bar.destroy();
    EXPECT_EQ(bar.height(), 0);
}

} // namespace
