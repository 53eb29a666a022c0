#pragma once
/// A picture with lines of text below it that can be chosen, as one of several, or pressed.

#include "platform/forms.h"

#include <QImage>
#include <QRadioButton>

#include <cstdint>
#include <functional>

/// A radio button in all but its looks, or one that is pressed, to screen readers too.
class QtPictureButton final : public QRadioButton {
public:
    enum class Use : uint8_t { chosen, pressed };
    QtPictureButton(QWidget* parent, QSize area, Use use);

    void set_caption(const QString& lines);
    const QString& caption() const { return caption_; }
    void set_picture(const FormPicture& picture);
    void set_scale(int percent);         ///< of the picture's area
    std::function<void()> on_activation; ///< Enter or a double click

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool hitButton(const QPoint& point) const override { return rect().contains(point); }

private:
    QFont heading_font() const;
    bool is_marked() const { return isCheckable() ? isChecked() : hasFocus(); }

    QString caption_;
    QSize whole_;    ///< the picture's area where there is room
    QSize area_;     ///< of the picture
    QImage picture_; ///< null for an empty one
};
