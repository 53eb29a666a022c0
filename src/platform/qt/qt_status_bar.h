#pragma once
#include "platform/qt/qt_canvas.h"
#include "platform/status_bar.h"

#include <QImage>
#include <QLabel>
#include <QString>
#include <QWidget>

#include <memory>
#include <vector>

/// The bar itself, at the bottom of the client area. Each part is a label over its area.
class QtStatusBarWidget final : public QWidget {
public:
    QtStatusBarWidget(QtCanvas& canvas, QtEvents& events, std::span<const int> right_edges,
                      int drawn_part);

    void lay_out();
    void set_text(int part, const QString& text);
    void set_tip(int part, const QString& text);
    void fill(const Rectangle& area, Colour colour);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    /// A label that ends in "..." where its text is too long.
    class Part final : public QLabel {
    public:
        Part(QWidget* bar, int edge) : QLabel(bar), right_edge(edge) {
            setTextFormat(Qt::PlainText);
        }
        const int right_edge; ///< -1: the bar's

    protected:
        void paintEvent(QPaintEvent* event) override;
    };

    bool has(int part) const { return part >= 0 && size_t(part) < parts_.size(); }
    QRect area_of(int part) const;

    QtEvents& events_;
    std::vector<std::unique_ptr<Part>> parts_;
    int drawn_part_;
    QImage drawing_; ///< of the whole bar; its drawn part is shown
};

class QtStatusBar final : public StatusBar {
public:
    QtStatusBar(QtCanvas& canvas, QtEvents& events) : canvas_(canvas), events_(events) {}
    bool create(std::span<const int> right_edges, int drawn_part) override;
    void destroy() override;
    bool exists() override;
    int height() override;
    void set_text(int part, const std::string& text) override;
    void set_tip(int part, const std::string& text) override;
    void fill_rectangle(const Rectangle& area, Colour colour) override;
    Colour background_colour() override;
    Colour shadow_colour() override;
    Colour highlight_colour() override;
    void redraw() override;

private:
    QtCanvas& canvas_;
    QtEvents& events_;
    std::unique_ptr<QtStatusBarWidget> bar_;
};
