#include "platform/qt/qt_status_bar.h"

#include "platform/qt/qt_pixels.h"
#include "platform/qt/qt_text.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QToolTip>

#include <algorithm>

namespace {

constexpr int LEAST_HEIGHT = 24;
constexpr int USUAL_SPACING = 6; ///< where the style leaves it to the layout

Colour colour_of(const QColor& colour) { return colour.rgb() & 0xFFFFFF; }

int spacing_of(const QWidget& widget) {
    const int spacing = widget.style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing);
    return spacing < 0 ? USUAL_SPACING : spacing;
}

} // namespace

// ---- buttons -----------------------------------------------------------------------------------

QtStatusBarWidget::Button::Button(QtStatusBarWidget& bar, int number) : QToolButton(&bar) {
    setAutoRaise(true);
    setFocusPolicy(Qt::NoFocus); // the keyboard stays the machine's
    setContextMenuPolicy(Qt::CustomContextMenu);
    const auto pressed = [&bar, number] { bar.events_.post(Event::Kind::status_button, number); };
    connect(this, &QToolButton::clicked, pressed);
    connect(this, &QWidget::customContextMenuRequested, pressed);
    show();
}

void QtStatusBarWidget::Button::set(const StatusButton& button) {
    const Rectangle& area = button.area;
    setGeometry(area.left, area.top, area.width(), area.height());
    setAccessibleName(to_qt(button.name));
    tip_ = button.tip;
}

QString QtStatusBarWidget::Button::tip() const { return tip_ ? to_qt(tip_()) : QString(); }

bool QtStatusBarWidget::Button::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QToolButton::event(event);
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), tip(), this);
    return true;
}

// ---- parts -------------------------------------------------------------------------------------

QtStatusBarWidget::Part::Part(QtStatusBarWidget& bar, int edge, bool is_drawn)
    : QLabel(&bar), right_edge(edge), bar_(bar), is_drawn_(is_drawn) {
    setTextFormat(Qt::PlainText);
    show();
}

QRect QtStatusBarWidget::Part::room() const {
    const int spacing = spacing_of(*this);
    return rect().adjusted(spacing, 0, -spacing, 0);
}

bool QtStatusBarWidget::Part::is_cut() const {
    return fontMetrics().horizontalAdvance(text()) > room().width();
}

void QtStatusBarWidget::Part::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (is_drawn_) return painter.drawImage(rect(), bar_.drawing_, geometry());
    const QRect area = room();
    const QString shown =
        fontMetrics().elidedText(text(), Qt::ElideRight, area.width(), Qt::TextSingleLine);
    style()->drawItemText(&painter, area, Qt::AlignVCenter | Qt::TextSingleLine, palette(),
                          isEnabled(), shown, foregroundRole());
}

// ---- the bar -----------------------------------------------------------------------------------

QtStatusBarWidget::QtStatusBarWidget(QtCanvas& canvas, QtEvents& events,
                                     std::span<const int> right_edges, int drawn_part)
    : QStatusBar(&canvas), events_(events), over_(*this, -1, false) {
    for (const int edge : right_edges) {
        const bool is_drawn = int(parts_.size()) == drawn_part;
        parts_.push_back(std::make_unique<Part>(*this, edge, is_drawn));
    }
    setSizeGripEnabled(false);
    setAutoFillBackground(true);
    setAttribute(Qt::WA_NoMousePropagation);
    over_.setAutoFillBackground(true);
    over_.hide();
    canvas.installEventFilter(this);
    lay_out();
    show();
}

void QtStatusBarWidget::lay_out() {
    const int margin = spacing_of(*this) / 2;
    const int height = std::max(LEAST_HEIGHT, fontMetrics().height() + 2 * margin);
    const QSize client = parentWidget()->size();
    setGeometry(0, client.height() - height, client.width(), height);
    for (int part = 0; has(part); ++part) parts_[size_t(part)]->setGeometry(area_of(part));
    over_.setGeometry(rect());
    update();
}

QRect QtStatusBarWidget::area_of(int part) const {
    const int left = part == 0 ? 0 : parts_[size_t(part) - 1]->right_edge;
    const int edge = parts_[size_t(part)]->right_edge;
    return {left, 0, (edge < 0 ? width() : edge) - left, height()};
}

void QtStatusBarWidget::set_text(int part, const QString& text) {
    if (!has(part) || parts_[size_t(part)]->text() == text) return;
    parts_[size_t(part)]->setText(text);
    QAccessibleEvent event(parts_[size_t(part)].get(), QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
}

void QtStatusBarWidget::set_tip(int part, const QString& text) {
    if (has(part)) parts_[size_t(part)]->setToolTip(text);
}

void QtStatusBarWidget::set_buttons(const std::vector<StatusButton>& buttons) {
    while (buttons_.size() > buttons.size()) buttons_.pop_back();
    while (buttons_.size() < buttons.size()) {
        buttons_.push_back(std::make_unique<Button>(*this, int(buttons_.size())));
        buttons_.back()->lower();
    }
    for (size_t n = 0; n < buttons.size(); ++n) buttons_[n]->set(buttons[n]);
    // The parts before them let the pointer through.
    for (int part = 0; has(part); ++part) {
        const bool has_button = std::ranges::any_of(buttons_, [&](const auto& button) {
            return button->geometry().intersects(area_of(part));
        });
        parts_[size_t(part)]->setAttribute(Qt::WA_TransparentForMouseEvents, has_button);
    }
}

void QtStatusBarWidget::show_over(const QString& text) {
    over_.setText(text);
    over_.setVisible(!text.isEmpty());
    over_.raise();
    if (over_.is_cut()) {
        QToolTip::showText(mapToGlobal(QPoint(0, -3 * height())), text, this);
    } else {
        QToolTip::hideText();
    }
}

void QtStatusBarWidget::fill(const Rectangle& area, Colour colour) {
    if (area_has_colour(drawing_, area, colour)) return;
    fill_area(drawing_, area, colour);
    update(area.left, area.top, area.width(), area.height());
}

bool QtStatusBarWidget::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::Resize) lay_out();
    return false;
}

void QtStatusBarWidget::changeEvent(QEvent* event) {
    QStatusBar::changeEvent(event);
    const bool looks_different = event->type() == QEvent::PaletteChange ||
                                 event->type() == QEvent::StyleChange ||
                                 event->type() == QEvent::FontChange;
    if (!looks_different || parts_.empty()) return;
    lay_out();
    draw_anew();
}

void QtStatusBarWidget::resizeEvent(QResizeEvent*) { draw_anew(); }

void QtStatusBarWidget::draw_anew() {
    drawing_ = QImage(size(), QImage::Format_ARGB32_Premultiplied);
    drawing_.fill(Qt::transparent);
    events_.draw_status();
}

void QtStatusBarWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_PanelStatusBar, &option, &painter, this);
    // Few styles still frame the parts, but all have a line to stand between buttons.
    option.state |= QStyle::State_Horizontal;
    const int width = style()->pixelMetric(QStyle::PM_ToolBarSeparatorExtent, &option, this);
    for (int part = 1; has(part); ++part) {
        option.rect = QRect(area_of(part).left() - width / 2, 0, width, height());
        style()->drawPrimitive(QStyle::PE_IndicatorToolBarSeparator, &option, &painter, this);
    }
}

// ---- for the program ---------------------------------------------------------------------------

bool QtStatusBar::create(std::span<const int> right_edges, int drawn_part) {
    bar_ = std::make_unique<QtStatusBarWidget>(canvas_, events_, right_edges, drawn_part);
    return true;
}

void QtStatusBar::destroy() { bar_.reset(); }

bool QtStatusBar::exists() { return bar_ != nullptr; }

int QtStatusBar::height() { return bar_ ? bar_->height() : 0; }

void QtStatusBar::set_text(int part, const std::string& text) {
    if (bar_) bar_->set_text(part, to_qt(text));
}

void QtStatusBar::set_tip(int part, const std::string& text) {
    if (bar_) bar_->set_tip(part, to_qt(text));
}

void QtStatusBar::set_buttons(const std::vector<StatusButton>& buttons) {
    if (bar_) bar_->set_buttons(buttons);
}

void QtStatusBar::show_over(const std::string& text) {
    if (bar_) bar_->show_over(to_qt(text));
}

void QtStatusBar::fill_rectangle(const Rectangle& area, Colour colour) {
    if (bar_) bar_->fill(area, colour);
}

Colour QtStatusBar::background_colour() {
    return colour_of(canvas_.palette().color(QPalette::Window));
}

Colour QtStatusBar::shadow_colour() { return colour_of(canvas_.palette().color(QPalette::Dark)); }

Colour QtStatusBar::highlight_colour() {
    return colour_of(canvas_.palette().color(QPalette::Light));
}

void QtStatusBar::redraw() {
    if (bar_) bar_->lay_out();
}
