#include "platform/qt/qt_forms.h"

#include "platform/qt/qt_form_window.h"
#include "platform/qt/qt_picture_button.h"
#include "platform/qt/qt_room.h"
#include "platform/qt/qt_table.h"
#include "platform/qt/qt_text.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QSignalBlocker>
#include <QSlider>
#include <QStyle>
#include <QTimer>

#include <algorithm>
#include <map>
#include <utility>

namespace {

constexpr double HEADING_SCALE = 1.6; ///< of its letters
constexpr int SLIDER_LENGTH = 30;     ///< characters, at least
constexpr int NOTE_WIDTH = 40;        ///< characters in a line
constexpr int VIEW_WIDTH = 80;        ///< characters in a line of a text view
constexpr int VIEW_LINES = 16;
constexpr QSize LIST_BOX(30, 10);    ///< characters across, items that are seen
constexpr int WIDEST_FIELD = 40;     ///< characters; fields of longer texts scroll
constexpr int UNLIMITED_FIELD = 6;   ///< characters
constexpr int SMALLEST_PICTURE = 40; ///< percent, on a small screen
constexpr int PICTURE_STEP = 1;
constexpr int SMALL_BUTTON_TEXT = 3; ///< such a button stands at the field it belongs to

int characters_wide(const QWidget& widget, int characters) {
    return widget.fontMetrics().horizontalAdvance('0') * characters;
}

class QtForm final : public Form {
public:
    QtForm(const FormDescription& description, FormHandler handler, QtWindow& owner,
           const QtKeyboard& keyboard);

    int value(int id) override;
    void set_value(int id, int value) override;
    std::string text(int id) override;
    void set_text(int id, const std::string& text) override;
    void set_items(int id, const std::vector<std::string>& items) override;
    void set_picture(int id, const FormPicture& picture) override;
    bool is_enabled(int id) override;
    void set_enabled(int id, bool enabled) override;
    void await_key() override { catcher_.start(); }
    void run(std::function<void(int)> done) override;
    void show() override;
    void close() override {
        catcher_.stop();
        dialog_.hide();
    }
    bool is_open() override { return dialog_.isVisible(); }
    Size size() override;
    void move(int left, int top) override;

private:
    /// Texts that stand before a control and may serve as its name.
    struct Naming {
        QLabel* label = nullptr; ///< the last label, until its control comes
        QString name;
    };

    template <typename Widget>
    Widget* control(int id) const {
        const auto found = controls_.find(id);
        return found == controls_.end() ? nullptr : dynamic_cast<Widget*>(found->second);
    }

    void fit();
    void fit_scroll(int height);
    QSize room_for_contents() const;
    void add_buttons(const FormControl& described, QBoxLayout& box);
    void add_all(const std::vector<FormControl>& controls, QBoxLayout& box, QWidget& parent,
                 Naming& naming);
    void add(const FormControl& described, QBoxLayout& box, QWidget& parent, Naming& naming);
    void add_grid(const FormControl& described, QBoxLayout& box, QWidget& parent,
                  const Naming& naming);
    QLayout* arrangement(const FormControl& described, QWidget& parent, const Naming& naming);
    QWidget* make(const FormControl& described, QWidget& parent, Naming& naming);
    QWidget* make_button(const FormControl& described, QWidget& parent);
    QWidget* make_picture(const FormControl& described, QWidget& parent);
    QWidget* make_group(const FormControl& described, QWidget& parent);
    QWidget* make_scroll(const FormControl& described, QWidget& parent, Naming& naming);
    QWidget* make_label(const FormControl& described, QWidget& parent, Naming& naming);
    QWidget* make_text_view(const FormControl& described, QWidget& parent);
    QWidget* make_list(const FormControl& described, QWidget& parent);
    QWidget* make_list_box(const FormControl& described, QWidget& parent);
    QWidget* make_table(const FormControl& described, QWidget& parent);
    QWidget* make_edit(const FormControl& described, QWidget& parent);
    QWidget* make_slider(const FormControl& described, QWidget& parent);
    void enter_tab_order(QWidget& widget);
    void focus_first();

    void raise(FormEvent::Kind kind, int id) { handler_(*this, {kind, id}); }
    std::function<void()> raiser(int id) {
        return [this, id] { raise(FormEvent::Kind::changed, id); };
    }
    void finish(int closing_id);

    QtWindow& owner_;
    FormHandler handler_;
    QtFormWindow dialog_;
    QtFittingArea* area_ = nullptr;   ///< all but the buttons at the end
    QtFittingArea* scroll_ = nullptr; ///< a part of that
    int scroll_height_ = QWIDGETSIZE_MAX;
    QtButtonRows* buttons_ = nullptr;
    QtKeyCatcher catcher_;
    QTimer timer_;
    QButtonGroup radios_, pictures_, picture_buttons_;
    std::map<int, QWidget*> controls_;
    QtTable* table_ = nullptr; ///< the last one
    QWidget* first_in_tab_order_ = nullptr;
    QWidget* last_in_tab_order_ = nullptr;
    QPushButton* default_ = nullptr;
    QPushButton* cancel_ = nullptr;
    int closing_id_ = FORM_CLOSED;
};

/// Parents own their children.
template <typename Widget>
Widget* child_of(QWidget& parent) {
    return std::make_unique<Widget>(&parent).release();
}

QtForm::QtForm(const FormDescription& description, FormHandler handler, QtWindow& owner,
               const QtKeyboard& keyboard)
    : owner_(owner), handler_(std::move(handler)), dialog_(owner.owner()),
      catcher_(dialog_, keyboard) {
    catcher_.on_key = [this](uint8_t key) { handler_(*this, {FormEvent::Kind::key, 0, key}); };
    if (description.tick) {
        timer_.start(description.tick);
        QObject::connect(&timer_, &QTimer::timeout, &dialog_, [this] {
            if (is_open()) raise(FormEvent::Kind::ticked, 0);
        });
    }
    dialog_.setWindowTitle(to_qt(description.title));
    dialog_.on_escape = [this] { cancel_ ? cancel_->click() : dialog_.on_close_button(); };
    dialog_.on_close_button = [this] {
        raise(FormEvent::Kind::closed, FORM_CLOSED);
        finish(FORM_CLOSED);
    };
    auto* layout = std::make_unique<QVBoxLayout>(&dialog_).release();
    layout->setSizeConstraint(QLayout::SetFixedSize);
    area_ =
        std::make_unique<QtFittingArea>(&dialog_, [this] { return room_for_contents(); }).release();
    layout->addWidget(area_);
    QWidget& contents = *child_of<QWidget>(*area_);
    auto* box = std::make_unique<QVBoxLayout>(&contents).release();
    box->setContentsMargins(0, 0, 0, 0);
    Naming naming;
    for (const FormControl& control : description.controls) {
        if (&control == &description.controls.back() && control.kind == ControlKind::buttons) {
            add_buttons(control, *layout);
        } else {
            add(control, *box, contents, naming);
        }
    }
    area_->setWidget(&contents);
    contents.setAutoFillBackground(false);
}

/// What the screen leaves beside the buttons and the margins.
QSize QtForm::room_for_contents() const {
    const QLayout& layout = *dialog_.layout();
    const QMargins margins = layout.contentsMargins();
    QSize room = room_on_screen(dialog_) -
                 QSize(margins.left() + margins.right(), margins.top() + margins.bottom());
    if (buttons_) room.rheight() -= buttons_->sizeHint().height() + layout.spacing();
    return room;
}

/// Small screens get more rows of buttons, and smaller pictures.
void QtForm::fit() {
    dialog_.ensurePolished();
    if (buttons_) buttons_->fit(room_for_contents().width());
    const QSize room = room_for_contents();
    for (int percent = 100; percent >= SMALLEST_PICTURE; percent -= PICTURE_STEP) {
        for (const QButtonGroup* group : {&pictures_, &picture_buttons_}) {
            for (QAbstractButton* picture : group->buttons()) {
                static_cast<QtPictureButton*>(picture)->set_scale(percent);
            }
        }
        fit_scroll(QWIDGETSIZE_MAX);
        const int excess = area_->wanted().height() - room.height();
        if (scroll_ && excess > 0) fit_scroll(scroll_->wanted().height() - excess);
        if (area_->sizeHint().width() < room.width()) break;
    }
}

/// Gives that part so much height at most, and arranges all anew.
void QtForm::fit_scroll(int height) {
    scroll_height_ = height;
    for (QtFittingArea* area : {scroll_, area_}) {
        if (!area) continue;
        area->widget()->layout()->invalidate();
        area->widget()->layout()->activate(); // also the arrangements in it
        area->updateGeometry();
    }
}

void QtForm::add_buttons(const FormControl& described, QBoxLayout& box) {
    buttons_ = child_of<QtButtonRows>(dialog_);
    Naming naming;
    for (const FormControl& button : described.children) {
        buttons_->add(*make(button, *buttons_, naming));
    }
    box.addWidget(buttons_);
}

void QtForm::add_all(const std::vector<FormControl>& controls, QBoxLayout& box, QWidget& parent,
                     Naming& naming) {
    for (const FormControl& control : controls) add(control, box, parent, naming);
}

void QtForm::add(const FormControl& described, QBoxLayout& box, QWidget& parent, Naming& naming) {
    switch (described.kind) {
    case ControlKind::grid: return add_grid(described, box, parent, naming);
    case ControlKind::column:
    case ControlKind::row:
    case ControlKind::buttons: {
        QLayout* inner = arrangement(described, parent, naming);
        box.addLayout(inner);
        if (described.kind == ControlKind::buttons) box.setAlignment(inner, Qt::AlignBottom);
        return;
    }
    default: return box.addWidget(make(described, parent, naming));
    }
}

QLayout* QtForm::arrangement(const FormControl& described, QWidget& parent, const Naming& naming) {
    const bool column = described.kind == ControlKind::column;
    auto box =
        std::make_unique<QBoxLayout>(column ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    if (described.kind == ControlKind::buttons) box->addStretch();
    Naming inner = naming;
    add_all(described.children, *box, parent, inner);
    return box.release();
}

void QtForm::add_grid(const FormControl& described, QBoxLayout& box, QWidget& parent,
                      const Naming& naming) {
    auto grid = std::make_unique<QGridLayout>();
    int row = 0;
    for (const FormControl& cells : described.children) {
        Naming row_naming{nullptr, naming.name};
        int column = 0;
        for (const FormControl& cell : cells.children) {
            grid->addWidget(make(cell, parent, row_naming), row, column++);
        }
        ++row;
    }
    box.addLayout(grid.release());
}

QWidget* QtForm::make(const FormControl& described, QWidget& parent, Naming& naming) {
    QWidget* widget = nullptr;
    switch (described.kind) {
    case ControlKind::group: widget = make_group(described, parent); break;
    case ControlKind::scroll: return make_scroll(described, parent, naming);
    case ControlKind::heading:
    case ControlKind::label:
    case ControlKind::note: widget = make_label(described, parent, naming); break;
    case ControlKind::text_view: widget = make_text_view(described, parent); break;
    case ControlKind::list_box: widget = make_list_box(described, parent); break;
    case ControlKind::list:
    case ControlKind::combo: widget = make_list(described, parent); break;
    case ControlKind::table: widget = make_table(described, parent); break;
    case ControlKind::edit: widget = make_edit(described, parent); break;
    case ControlKind::slider: widget = make_slider(described, parent); break;
    case ControlKind::picture:
    case ControlKind::picture_button: widget = make_picture(described, parent); break;
    default: widget = make_button(described, parent);
    }
    if (described.id) controls_[described.id] = widget;
    if (qobject_cast<QLabel*>(widget) || qobject_cast<QGroupBox*>(widget)) return widget;

    enter_tab_order(*widget);
    widget->setToolTip(to_qt(described.tip));
    // A screen reader takes the name of a combo box from its label only.
    if (naming.label) std::exchange(naming.label, nullptr)->setBuddy(widget);
    if (!described.name.empty()) {
        widget->setAccessibleName(to_qt(described.name));
    } else if (!qobject_cast<QAbstractButton*>(widget)) {
        widget->setAccessibleName(naming.name);
    }
    auto* combo = qobject_cast<QComboBox*>(widget);
    if (combo && combo->isEditable()) combo->lineEdit()->setAccessibleName(naming.name);
    return widget;
}

QWidget* QtForm::make_group(const FormControl& described, QWidget& parent) {
    auto* group = child_of<QGroupBox>(parent);
    group->setTitle(to_qt(described.text));
    auto* box = std::make_unique<QVBoxLayout>(group).release();
    Naming naming{nullptr, plain(group->title())};
    add_all(described.children, *box, *group, naming);
    return group;
}

QWidget* QtForm::make_scroll(const FormControl& described, QWidget& parent, Naming& naming) {
    const auto room = [this] { return QSize(QWIDGETSIZE_MAX, scroll_height_); };
    scroll_ = std::make_unique<QtFittingArea>(&parent, room).release();
    QWidget& contents = *child_of<QWidget>(*scroll_);
    auto* box = std::make_unique<QVBoxLayout>(&contents).release();
    box->setContentsMargins(0, 0, 0, 0);
    add_all(described.children, *box, contents, naming);
    scroll_->setWidget(&contents);
    contents.setAutoFillBackground(false);
    return scroll_;
}

QWidget* QtForm::make_label(const FormControl& described, QWidget& parent, Naming& naming) {
    auto* label = child_of<QLabel>(parent);
    label->setTextFormat(Qt::PlainText);
    label->setText(to_qt(described.text));
    if (described.kind == ControlKind::heading) {
        QFont large = label->font();
        large.setPointSizeF(large.pointSizeF() * HEADING_SCALE);
        label->setFont(large);
    } else if (described.kind == ControlKind::note) {
        label->setWordWrap(true);
        label->setMinimumWidth(characters_wide(*label, NOTE_WIDTH));
    } else {
        label->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
        naming = {label, plain(label->text())};
    }
    return label;
}

/// Opens at the end, where the newest lines are.
QWidget* QtForm::make_text_view(const FormControl& described, QWidget& parent) {
    auto* view = child_of<QPlainTextEdit>(parent);
    view->setReadOnly(true);
    view->setTabChangesFocus(true);
    view->setPlainText(to_qt(described.text));
    const QSize wanted(characters_wide(*view, VIEW_WIDTH),
                       view->fontMetrics().lineSpacing() * VIEW_LINES);
    const QSize room = room_on_screen(dialog_);
    view->setMinimumSize(wanted.boundedTo({room.width() * 9 / 10, room.height() * 2 / 3}));
    dialog_.layout()->setSizeConstraint(QLayout::SetDefaultConstraint); // it may become larger
    view->moveCursor(QTextCursor::End);
    return view;
}

QWidget* QtForm::make_button(const FormControl& described, QWidget& parent) {
    QAbstractButton* button = nullptr;
    FormEvent::Kind kind = FormEvent::Kind::changed;
    if (described.kind == ControlKind::radio) {
        button = child_of<QRadioButton>(parent);
        radios_.addButton(button);
    } else if (described.kind == ControlKind::check) {
        button = child_of<QCheckBox>(parent);
    } else {
        auto* push = child_of<QPushButton>(parent);
        if (described.kind == ControlKind::default_button) {
            default_ = push;
            push->setDefault(true);
        }
        if (described.kind == ControlKind::cancel_button) cancel_ = push;
        button = push;
        kind = FormEvent::Kind::pressed;
    }
    button->setText(to_qt(described.text));
    if (described.kind == ControlKind::button && described.text.size() <= SMALL_BUTTON_TEXT) {
        button->setFixedWidth(button->sizeHint().height() * 3 / 2);
    }
    const int closing = described.kind > ControlKind::button ? described.id : FORM_CLOSED;
    QObject::connect(button, &QAbstractButton::clicked, &dialog_,
                     [this, kind, closing, id = described.id] {
                         raise(kind, id);
                         if (closing) finish(closing);
                     });
    return button;
}

QWidget* QtForm::make_picture(const FormControl& described, QWidget& parent) {
    using enum QtPictureButton::Use;
    const bool is_pressed = described.kind == ControlKind::picture_button;
    const auto [width, height] = described.picture_area;
    const QSize area(width, height);
    auto* button =
        std::make_unique<QtPictureButton>(&parent, area, is_pressed ? pressed : chosen).release();
    (is_pressed ? picture_buttons_ : pictures_).addButton(button);
    button->set_picture(described.picture);
    button->set_caption(to_qt(described.text));
    button->on_activation = [this, button, is_pressed] {
        if (is_pressed) return button->click();
        if (default_) default_->click();
    };
    const auto kind = is_pressed ? FormEvent::Kind::pressed : FormEvent::Kind::changed;
    QObject::connect(button, &QAbstractButton::clicked, &dialog_,
                     [this, kind, id = described.id] { raise(kind, id); });
    return button;
}

QWidget* QtForm::make_list(const FormControl& described, QWidget& parent) {
    auto* box = child_of<QComboBox>(parent);
    for (const std::string& item : described.items) box->addItem(to_qt(item));
    const auto changed = raiser(described.id);
    QObject::connect(box, &QComboBox::activated, &dialog_, [changed](int) { changed(); });
    if (described.kind == ControlKind::list) return box;

    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->setCompleter(nullptr); // it would add to what is typed
    if (described.limit) box->lineEdit()->setMaxLength(described.limit);
    box->setEditText(to_qt(described.text));
    QObject::connect(box->lineEdit(), &QLineEdit::textEdited, &dialog_, changed);
    return box;
}

QWidget* QtForm::make_list_box(const FormControl& described, QWidget& parent) {
    auto* box = std::make_unique<QtTable>(&parent, std::vector<std::string>(), LIST_BOX).release();
    box->keeps_row = false;
    box->set_rows(described.items);
    box->on_choice = raiser(described.id);
    return box;
}

QWidget* QtForm::make_table(const FormControl& described, QWidget& parent) {
    const auto [width, rows] = described.table_area;
    auto* table =
        std::make_unique<QtTable>(&parent, described.headings, QSize(width, rows)).release();
    table->set_rows(described.items);
    table->on_choice = raiser(described.id);
    table->on_activation = [this, id = described.id] { raise(FormEvent::Kind::activated, id); };
    return table_ = table;
}

QWidget* QtForm::make_edit(const FormControl& described, QWidget& parent) {
    auto* edit = child_of<QLineEdit>(parent);
    if (described.limit) edit->setMaxLength(described.limit);
    const int characters = described.limit ? described.limit : UNLIMITED_FIELD;
    // Two more for the frame, the cursor and letters that are wider than a digit.
    edit->setMinimumWidth(characters_wide(*edit, std::min(characters, WIDEST_FIELD) + 2));
    if (characters < WIDEST_FIELD) edit->setMaximumWidth(edit->minimumWidth());
    edit->setText(to_qt(described.text));
    QObject::connect(edit, &QLineEdit::textEdited, &dialog_, raiser(described.id));
    return edit;
}

QWidget* QtForm::make_slider(const FormControl& described, QWidget& parent) {
    auto* slider = child_of<QSlider>(parent);
    slider->setOrientation(Qt::Horizontal);
    slider->setRange(described.lowest, described.highest);
    slider->setPageStep(described.page);
    slider->setMinimumWidth(characters_wide(*slider, SLIDER_LENGTH));
    QObject::connect(slider, &QSlider::valueChanged, &dialog_, raiser(described.id));
    return slider;
}

void QtForm::enter_tab_order(QWidget& widget) {
    if (last_in_tab_order_) QWidget::setTabOrder(last_in_tab_order_, &widget);
    if (!first_in_tab_order_) first_in_tab_order_ = &widget;
    last_in_tab_order_ = &widget;
}

/// Gives the focus to the table, or to the first control. Of radio buttons and pictures that is the
/// chosen one, or the arrow keys would start at another.
void QtForm::focus_first() {
    QWidget* first = table_ ? static_cast<QWidget*>(table_) : first_in_tab_order_;
    const auto* radio = qobject_cast<QRadioButton*>(first);
    if (radio && radio->group()->checkedButton()) first = radio->group()->checkedButton();
    if (first) first->setFocus();
}

int QtForm::value(int id) {
    if (const auto* button = control<QAbstractButton>(id)) return button->isChecked();
    if (const auto* slider = control<QSlider>(id)) return slider->value();
    if (const auto* table = control<QtTable>(id)) return table->row();
    const auto* list = control<QComboBox>(id);
    if (!list) return 0;
    return list->isEditable() ? list->findText(list->currentText()) : list->currentIndex();
}

void QtForm::set_value(int id, int value) {
    if (auto* button = control<QAbstractButton>(id)) button->setChecked(value != 0);
    if (auto* list = control<QComboBox>(id)) list->setCurrentIndex(value);
    if (auto* table = control<QtTable>(id)) table->choose(value);
    if (auto* slider = control<QSlider>(id)) {
        const QSignalBlocker silent(slider);
        slider->setValue(value);
    }
}

std::string QtForm::text(int id) {
    QString text;
    if (const auto* edit = control<QLineEdit>(id)) text = edit->text();
    if (const auto* list = control<QComboBox>(id)) text = list->currentText();
    if (const auto* table = control<QtTable>(id)) text = table->text();
    if (const auto* label = control<QLabel>(id)) text = label->text();
    if (const auto* button = control<QAbstractButton>(id)) text = button->text();
    if (const auto* picture = control<QtPictureButton>(id)) text = picture->caption();
    if (const auto* group = control<QGroupBox>(id)) text = group->title();
    return text.toStdString();
}

void QtForm::set_text(int id, const std::string& text) {
    const QString shown = to_qt(text);
    if (auto* edit = control<QLineEdit>(id)) edit->setText(shown);
    if (auto* list = control<QComboBox>(id); list && list->isEditable()) list->setEditText(shown);
    if (auto* label = control<QLabel>(id)) label->setText(shown);
    if (auto* picture = control<QtPictureButton>(id)) {
        picture->set_caption(shown);
    } else if (auto* button = control<QAbstractButton>(id)) {
        button->setText(shown);
        fit();
    }
    if (auto* group = control<QGroupBox>(id)) group->setTitle(shown);
}

void QtForm::set_items(int id, const std::vector<std::string>& items) {
    if (auto* table = control<QtTable>(id)) table->set_rows(items);
    auto* list = control<QComboBox>(id);
    if (!list) return;
    const QString before = list->currentText();
    list->clear();
    for (const std::string& item : items) list->addItem(to_qt(item));
    if (list->isEditable()) list->setEditText(before);
}

void QtForm::set_picture(int id, const FormPicture& picture) {
    if (auto* button = control<QtPictureButton>(id)) button->set_picture(picture);
}

bool QtForm::is_enabled(int id) {
    const auto* widget = control<QWidget>(id);
    return widget && widget->isEnabled();
}

void QtForm::set_enabled(int id, bool enabled) {
    if (auto* widget = control<QWidget>(id)) widget->setEnabled(enabled);
}

void QtForm::run(std::function<void(int)> done) {
    closing_id_ = FORM_CLOSED;
    fit();
    focus_first();
    dialog_.exec();
    done(closing_id_);
}

void QtForm::show() {
    if (!is_open()) {
        fit();
        focus_first();
    }
    dialog_.show();
    dialog_.raise();
    dialog_.activateWindow();
}

void QtForm::finish(int closing_id) {
    closing_id_ = closing_id;
    catcher_.stop();
    dialog_.done(closing_id);
}

Size QtForm::size() {
    dialog_.ensurePolished();
    const QSize size = dialog_.isVisible() ? dialog_.frameSize() : dialog_.sizeHint();
    return {size.width(), size.height()};
}

void QtForm::move(int left, int top) {
    // Like the main window's, the place is that of what is inside the frame. A form that has not
    // been shown yet has no frame.
    const QPoint frame = dialog_.geometry().topLeft() - dialog_.pos();
    dialog_.move(owner_.screen()->geometry().topLeft() + QPoint(left, top) - frame);
}

} // namespace

std::unique_ptr<Form> QtForms::create(const FormDescription& description, FormHandler handler) {
    return std::make_unique<QtForm>(description, std::move(handler), window_, keyboard_);
}
