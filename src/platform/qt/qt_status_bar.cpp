#include "platform/qt/qt_status_bar.h"

#include "platform/qt/qt_pixels.h"
#include "platform/qt/qt_text.h"

#include <QAccessible>
#include <QEvent>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int LEAST_HEIGHT = 24;
constexpr int TEXT_MARGIN = 4;

Colour colour_of(const QColor& colour) { return colour.rgb() & 0xFFFFFF; }

} // namespace

QtStatusBarWidget::QtStatusBarWidget(QtCanvas& canvas, QtEvents& events,
                                     std::span<const int> right_edges, int drawn_part)
    : QWidget(&canvas), events_(events), drawn_part_(drawn_part) {
    for (const int edge : right_edges) parts_.push_back(std::make_unique<Part>(this, edge));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoMousePropagation);
    canvas.installEventFilter(this);
    lay_out();
    show();
}

void QtStatusBarWidget::lay_out() {
    const int height = std::max(LEAST_HEIGHT, fontMetrics().height() + 2 * TEXT_MARGIN);
    const QSize client = parentWidget()->size();
    setGeometry(0, client.height() - height, client.width(), height);
    for (int part = 0; has(part); ++part) parts_[size_t(part)]->setGeometry(area_of(part));
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

void QtStatusBarWidget::fill(const Rectangle& area, Colour colour) {
    if (area_has_colour(drawing_, area, colour)) return;
    fill_area(drawing_, area, colour);
    update(area.left, area.top, area.width(), area.height());
}

bool QtStatusBarWidget::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::Resize) lay_out();
    return false;
}

void QtStatusBarWidget::resizeEvent(QResizeEvent*) {
    drawing_ = plain_picture(size(), palette().color(QPalette::Window));
    events_.draw_status();
}

void QtStatusBarWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    for (int part = 0; has(part); ++part) {
        const QRect area = area_of(part);
        if (part == drawn_part_) painter.drawImage(area, drawing_, area);
        painter.setPen(palette().color(QPalette::Mid));
        if (part > 0) painter.drawLine(area.left(), 4, area.left(), height() - 5);
    }
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(0, 0, width() - 1, 0);
}

void QtStatusBarWidget::Part::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect area = rect().adjusted(TEXT_MARGIN, 0, -TEXT_MARGIN, 0);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(
        area, Qt::AlignVCenter | Qt::TextSingleLine,
        fontMetrics().elidedText(text(), Qt::ElideRight, area.width(), Qt::TextSingleLine));
}

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
