// Forms and the fields of file dialogs, used by key and mouse events.

#include "qt/offscreen.h"
#include "support/test_files.h"

#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTimer>

#include <map>

namespace {

enum : int { PLAIN = 1, OWN, MODEL, CLOCK, PATH, BROWSE, LEVEL, NUMBER, BEAM, OK, CANCEL, LABEL };

FormDescription everything() {
    using enum ControlKind;
    return {"Everything",
            {{.kind = radio, .id = PLAIN, .text = "&Standard"},
             {.kind = radio, .id = OWN, .text = "&Custom"},
             {.kind = grid,
              .children = {{.kind = row,
                            .children = {{.kind = label, .text = "&Model:"},
                                         {.kind = list, .id = MODEL, .items = {"A", "B", "C"}}}},
                           {.kind = row,
                            .children = {{.kind = label, .id = LABEL, .text = "Clock:"},
                                         {.kind = combo,
                                          .id = CLOCK,
                                          .text = "7",
                                          .limit = 4,
                                          .items = {"2215", "2216"}}}}}},
             {.kind = row,
              .children = {{.kind = label, .text = "Pa&th:"},
                           {.kind = edit, .id = PATH, .limit = 3},
                           {.kind = button, .id = BROWSE, .text = "...", .name = "Browse"}}},
             {.kind = group,
              .text = "&Level",
              .children = {{.kind = slider, .id = LEVEL, .highest = 100, .page = 7},
                           {.kind = edit, .id = NUMBER}}},
             {.kind = check, .id = BEAM, .text = "&Beam"},
             {.kind = buttons,
              .children = {{.kind = default_button, .id = OK, .text = "&OK"},
                           {.kind = cancel_button, .id = CANCEL, .text = "Cancel"}}}}};
}

class QtFormsTest : public OffscreenTest {
protected:
    std::unique_ptr<Form> make() {
        return host->forms().create(everything(), [this](Form&, const FormEvent& event) {
            heard += "cpax"[int(event.kind)] + std::to_string(event.control) + " ";
        });
    }
    static QDialog* shown() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* dialog = qobject_cast<QDialog*>(widget);
            if (dialog && dialog->isVisible()) return dialog;
        }
        return nullptr;
    }
    static void key(QWidget* widget, int code, const QString& text = {}) {
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, code, Qt::NoModifier, text);
            QApplication::sendEvent(widget, &event);
        }
    }
    /// Moves with Tab, as often as it takes, to the control with the name.
    static QWidget* reach(const QString& name) {
        for (int n = 0; n < 20; ++n) {
            QApplication::processEvents();
            QWidget* focus = shown()->focusWidget();
            if (!focus) continue;
            if (spoken(*focus) == name) return focus;
            key(focus, Qt::Key_Tab);
        }
        ADD_FAILURE() << "not reached: " << name.toStdString();
        return shown();
    }
    std::string take_heard() { return std::exchange(heard, {}); }

    std::string heard;
};

TEST_F(QtFormsTest, UserActsAreHeardAndRead) {
    const auto form = make();
    form->show();
    ASSERT_TRUE(form->is_open());
    key(reach("Level"), Qt::Key_PageUp);
    EXPECT_EQ(take_heard() + std::to_string(form->value(LEVEL)), "c7 7");
    key(reach("Model:"), Qt::Key_Down);
    EXPECT_EQ(take_heard() + form->text(MODEL), "c3 B");
    key(reach("Path:"), Qt::Key_X, "x");
    EXPECT_EQ(take_heard() + form->text(PATH), "c5 x");
    key(reach("Beam"), Qt::Key_Space);
    EXPECT_EQ(take_heard() + std::to_string(form->value(BEAM)), "c9 1");
    key(reach("Browse"), Qt::Key_Space);
    EXPECT_EQ(take_heard(), "p6 ");
    EXPECT_TRUE(form->is_open());
    QWidget* clock = reach("Clock:");
    key(clock, Qt::Key_End);
    key(clock, Qt::Key_2, "2"); // nothing is added to what is typed
    EXPECT_EQ(take_heard() + form->text(CLOCK), "c4 72");
    EXPECT_EQ(form->value(CLOCK), -1);
    form->set_value(PLAIN, 1);
    key(reach("Standard"), Qt::Key_Down);
    EXPECT_EQ(take_heard(), "c2 ");
    EXPECT_EQ(form->value(PLAIN) * 2 + form->value(OWN), 1);
    form->close();
    EXPECT_FALSE(form->is_open());
    EXPECT_EQ(form->text(PATH), "x");
    EXPECT_EQ(take_heard(), "");
}

TEST_F(QtFormsTest, ProgramSetsInSilence) {
    const auto form = make();
    EXPECT_EQ(form->text(CLOCK), "7");
    form->set_value(LEVEL, 150);
    EXPECT_EQ(form->value(LEVEL), 100);
    form->set_text(PATH, "12345");
    EXPECT_EQ(form->text(PATH), "123");
    form->set_value(MODEL, 2);
    EXPECT_EQ(form->text(MODEL), "C");
    form->set_items(MODEL, {"D"});
    EXPECT_EQ(form->text(MODEL), "D");
    form->set_items(CLOCK, {"5", "7"});
    EXPECT_EQ(form->value(CLOCK), 1);
    form->set_value(BEAM, 1);
    form->set_enabled(LABEL, false);
    EXPECT_FALSE(form->is_enabled(LABEL));
    EXPECT_TRUE(form->is_enabled(CLOCK));
    form->set_value(99, 1);
    EXPECT_EQ(form->text(99) + std::to_string(form->value(99)), "0");
    EXPECT_EQ(heard, "");
    for (const auto& [text, number] : std::map<std::string, uint32_t>{
             {"  42x", 42}, {"", 0}, {"-5", 0}, {"4294967296", 0}, {"4294967295", 4294967295}}) {
        form->set_text(NUMBER, text);
        EXPECT_EQ(form->number(NUMBER), number) << text;
    }
}

TEST_F(QtFormsTest, KeysAndButtonsEndTheForm) {
    const struct {
        const char* focus;
        int key; ///< 0: the window's close button
        int result;
        const char* heard;
    } cases[] = {
        {"Path:", Qt::Key_Return, OK, "p10 "},      {"Clock:", Qt::Key_Enter, OK, "p10 "},
        {"Level", Qt::Key_Return, OK, "p10 "},      {"Path:", Qt::Key_Escape, CANCEL, "p11 "},
        {"Cancel", Qt::Key_Return, CANCEL, "p11 "}, {"Path:", 0, FORM_CLOSED, "x0 "}};
    const auto form = make();
    for (const auto& c : cases) {
        QTimer::singleShot(0, [&c] {
            QWidget* focus = reach(c.focus);
            if (c.key) {
                key(focus, c.key);
            } else {
                shown()->close();
            }
        });
        form->run([&c](int id) { EXPECT_EQ(id, c.result) << c.focus << " " << c.key; });
        EXPECT_EQ(take_heard(), c.heard) << c.focus << " " << c.key;
    }
}

TEST_F(QtFormsTest, TabFollowsTheDescriptionAndEveryControlHasAName) {
    const auto form = make();
    form->set_value(OWN, 1); // of radio buttons, Tab reaches the chosen one
    form->show();
    reach("Custom");
    QStringList order;
    for (int n = 0; n < 10; ++n) {
        order += spoken(*shown()->focusWidget());
        key(shown()->focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(order.join("|").toStdString(),
              "Custom|Model:|Clock:|Path:|Browse|Level|Level|Beam|OK|Cancel");
    std::map<QString, QString> buddies;
    for (const QLabel* label : shown()->findChildren<QLabel*>()) {
        if (label->buddy()) buddies[label->text()] = spoken(*label->buddy());
    }
    EXPECT_EQ(buddies, (std::map<QString, QString>{
                           {"&Model:", "Model:"}, {"Clock:", "Clock:"}, {"Pa&th:", "Path:"}}));
}

TEST_F(QtFormsTest, PicturesAreChosenWithArrowsAndTakenWithEnterOrADoubleClick) {
    using enum ControlKind;
    FormControl pictures = {.kind = grid};
    for (const int first : {1, 3}) {
        pictures.children.push_back({.kind = row});
        for (const int id : {first, first + 1}) {
            pictures.children.back().children.push_back({.kind = picture,
                                                         .id = id,
                                                         .text = std::to_string(id) + " R&B\nlate",
                                                         .picture_area = {40, 30}});
        }
    }
    const auto form = host->forms().create(
        {"Pictures", {pictures, {.kind = default_button, .id = OK, .text = "OK"}}},
        [this](Form&, const FormEvent& event) {
            heard += "cpax"[int(event.kind)] + std::to_string(event.control) + " ";
        });
    form->set_value(1, 1);
    form->set_picture(4, {2, 1, {0xFF0000, 0x0000FF}});
    QTimer::singleShot(0, [&] {
        QWidget* const chosen = reach("1 R&B, late");
        key(chosen, Qt::Key_Right);
        key(shown()->focusWidget(), Qt::Key_Down);
        EXPECT_EQ(spoken(*shown()->focusWidget()), "4 R&B, late");
        const QImage drawn = shown()->focusWidget()->grab().toImage();
        EXPECT_GT(qRed(drawn.pixel(14, 20)), 200);
        EXPECT_GT(qBlue(drawn.pixel(drawn.width() - 14, 20)), 200);
        key(shown()->focusWidget(), Qt::Key_Return);
    });
    form->run([](int id) { EXPECT_EQ(id, OK); });
    EXPECT_EQ(take_heard() + form->text(4), "c2 c4 p10 4 R&B\nlate");
    QTimer::singleShot(0, [] {
        const QPointF place(20, 20);
        QMouseEvent click(QEvent::MouseButtonDblClick, place, place, Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(shown()->focusWidget(), &click);
    });
    form->run([](int id) { EXPECT_EQ(id, OK); });
    EXPECT_EQ(form->value(4), 1);
}

TEST_F(QtFormsTest, AKeyThatIsAwaitedComesFromAnyControlAndDoesNothingElse) {
    using enum ControlKind;
    int ticks = 0;
    const auto form = host->forms().create(
        {"Keys",
         {{.kind = list_box, .id = MODEL, .name = "Inputs", .items = {"A\tone", "B\ttwo"}},
          {.kind = table,
           .id = 50,
           .name = "Files",
           .items = {"A\t1", "B\t22"},
           .headings = {"Name", "Bytes"}},
          {.kind = cancel_button, .id = CANCEL, .text = "Cancel"}},
         5},
        [&](Form&, const FormEvent& event) {
            if (event.kind == FormEvent::Kind::ticked) return void(++ticks);
            heard += std::to_string(int(event.kind)) + "." + std::to_string(event.control) + "." +
                     std::to_string(event.key) + " ";
        });
    form->show();
    EXPECT_EQ(shown()->focusWidget(), reach("Files"));
    key(reach("Files"), Qt::Key_Down);
    key(reach("Files"), Qt::Key_Return);
    form->set_items(50, {"C\t3", "D\t4", "E\t5"});
    EXPECT_EQ(take_heard() + form->text(50), "0.50.0 2.50.0 D\t4");
    QWidget* box = reach("Inputs");
    key(box, Qt::Key_Down);
    EXPECT_EQ(take_heard() + form->text(MODEL), "0.3.0 B\ttwo");
    for (const auto& [code, heard_key] :
         {std::pair{Qt::Key_Up, "38"}, {Qt::Key_Escape, "27"}, {Qt::Key_Tab, "9"}}) {
        form->await_key();
        key(box, code);
        EXPECT_EQ(take_heard(), std::string("5.0.") + heard_key + " ");
    }
    EXPECT_TRUE(form->is_open() && form->value(MODEL) == 1 && box->hasFocus());
    form->set_items(MODEL, {"C\tthree"});
    form->set_value(MODEL, 0);
    EXPECT_EQ(form->text(MODEL), "C\tthree");
    while (ticks == 0) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    form->await_key();
    form->close();
    key(box, Qt::Key_Q);
    EXPECT_EQ(take_heard(), "");
}

TEST_F(QtFormsTest, PictureButtonsArePressedAndScrollIntoSight) {
    using enum ControlKind;
    const Folder folder;
    const std::string file = folder / "red.png";
    QImage red(QSize(8, 6), QImage::Format_RGB32);
    red.fill(Qt::red);
    red.save(QString::fromStdString(file));
    FormControl part = {.kind = scroll};
    for (int id = 1; id < 30; ++id) {
        part.children.push_back({picture_button, id, std::to_string(id)});
        part.children.back().picture.file = file;
        part.children.back().picture_area = {40, 30};
    }
    const auto form =
        host->forms().create({"Start", {part}}, [this](Form&, const FormEvent& event) {
            heard += "cpax"[int(event.kind)] + std::to_string(event.control) + " ";
        });
    form->show();
    QWidget* focus = reach("1");
    EXPECT_EQ(QAccessible::queryAccessibleInterface(focus)->role(), QAccessible::Button);
    for (int n = 1; n < 29; ++n) key(shown()->focusWidget(), Qt::Key_Down);
    focus = shown()->focusWidget();
    EXPECT_EQ(focus->visibleRegion().boundingRect(), focus->rect());
    EXPECT_GT(qRed(focus->grab().toImage().pixel(focus->width() / 2, 20)), 200);
    key(focus, Qt::Key_Return);
    key(focus, Qt::Key_Space);
    EXPECT_EQ(take_heard(), "p29 p29 ");
}

TEST_F(QtFormsTest, FileDialogHasFields) {
    FileDialog dialog{"Save", {{"All (*.*)", "*.*"}}, 0, true, {}};
    dialog.fields = {{"&From:", 5, "5801"}, {"End:", 5, "C9AB"}};
    QTimer::singleShot(0, [] {
        for (QLineEdit* edit : shown()->findChildren<QLineEdit*>()) {
            if (spoken(*edit) == "From:") {
                edit->selectAll();
                for (const char c : {'1', '2', '3', '4', '5', '6'}) key(edit, 0, QChar(c));
            } else if (spoken(*edit) != "End:") {
                edit->setText("/nowhere/x.cas");
            }
        }
        static_cast<QDialog*>(shown())->QDialog::done(QDialog::Accepted);
    });
    std::optional<FileChoice> choice;
    host->dialogs().choose_file(dialog, [&choice](const auto& chosen) { choice = chosen; });
    ASSERT_TRUE(choice);
    EXPECT_EQ(choice->field_texts, (std::vector<std::string>{"12345", "C9AB"}));
}

} // namespace
