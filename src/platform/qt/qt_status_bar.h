#pragma once
#include "platform/qt/qt_canvas.h"
#include "platform/status_bar.h"

#include <QImage>
#include <QLabel>
#include <QStatusBar>
#include <QString>
#include <QToolButton>

#include <memory>
#include <vector>

/// The bar itself, at the bottom of the client area. It looks as the desktop's style wants it, but
/// the places of its parts are the program's.
class QtStatusBarWidget final : public QStatusBar {
public:
    /// Says and offers what is at a place of the bar. It lies behind the parts, and shows itself
    /// only under the pointer.
    class Button final : public QToolButton {
    public:
        Button(QtStatusBarWidget& bar, int number);
        void set(const StatusButton& button);
        QString tip() const;

    protected:
        bool event(QEvent* event) override;

    private:
        std::function<std::string()> tip_;
    };

    QtStatusBarWidget(QtCanvas& canvas, QtEvents& events, std::span<const int> right_edges,
                      int drawn_part);

    void lay_out();
    void set_text(int part, const QString& text);
    void set_tip(int part, const QString& text);
    void set_buttons(const std::vector<StatusButton>& buttons);
    void show_over(const QString& text);
    void fill(const Rectangle& area, Colour colour);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    /// A label that ends in "..." where its text is too long, or the program's drawing.
    class Part final : public QLabel {
    public:
        Part(QtStatusBarWidget& bar, int edge, bool is_drawn);
        bool is_cut() const;
        const int right_edge; ///< -1: the bar's

    protected:
        void paintEvent(QPaintEvent* event) override;

    private:
        QRect room() const;

        QtStatusBarWidget& bar_;
        const bool is_drawn_;
    };

    bool has(int part) const { return part >= 0 && size_t(part) < parts_.size(); }
    QRect area_of(int part) const;
    void draw_anew();

    QtEvents& events_;
    std::vector<std::unique_ptr<Button>> buttons_;
    std::vector<std::unique_ptr<Part>> parts_;
    Part over_;      ///< over all of them
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
    void set_buttons(const std::vector<StatusButton>& buttons) override;
    void show_over(const std::string& text) override;
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
