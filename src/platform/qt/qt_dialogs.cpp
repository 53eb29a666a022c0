#include "platform/qt/qt_dialogs.h"

#include "platform/qt/qt_preview.h"
#include "platform/qt/qt_room.h"
#include "platform/qt/qt_text.h"

#include <QApplication>
#include <QComboBox>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QStyle>
#include <QTreeView>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>

namespace {

constexpr int DARK = 128;           ///< lightness: windows below it are dark
constexpr int LIGHT_LINK = 185;     ///< lightness
constexpr double HEADING = 1.6;     ///< size of the letters of a heading
constexpr int WIDEST_MESSAGE = 700; ///< pixels; Qt cuts the buttons of wider boxes
constexpr int TEXT_WIDTH = 60;      ///< characters in a line of a text that scrolls

QMessageBox::Icon icon_of(MessageIcon icon) {
    switch (icon) {
    case MessageIcon::none: return QMessageBox::NoIcon;
    case MessageIcon::information: return QMessageBox::Information;
    case MessageIcon::warning: return QMessageBox::Warning;
    case MessageIcon::error: return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

/// Lines may end with CR.
QString message_text(const std::string& text) {
    return to_qt(text).replace("\r\n", "\n").replace('\r', '\n');
}

/// "Name (*.a *.b)". Here every name matches "*", with a point in it or not.
QString name_filter(const FileFilter& filter) {
    QString pattern = to_qt(filter.pattern).replace(';', ' ');
    if (pattern == "*.*") pattern = "*";
    const QString text = to_qt(filter.text);
    return text.left(text.lastIndexOf('(')).trimmed() + " (" + pattern + ")";
}

QStringList name_filters(const FileDialog& dialog) {
    QStringList filters;
    for (const FileFilter& filter : dialog.filters) filters += name_filter(filter);
    return filters;
}

/// Adds the fields below those of Qt's own file dialog.
std::vector<QLineEdit*> add_fields(QFileDialog& box, const std::vector<FileDialogField>& fields) {
    std::vector<QLineEdit*> edits;
    if (fields.empty()) return edits;
    auto* row = std::make_unique<QHBoxLayout>().release();
    for (const FileDialogField& field : fields) {
        auto* label = std::make_unique<QLabel>(to_qt(field.label)).release();
        auto* edit = std::make_unique<QLineEdit>(to_qt(field.text)).release();
        edit->setMaxLength(field.limit);
        edit->setMaximumWidth(edit->fontMetrics().horizontalAdvance('0') * (field.limit + 3));
        edit->setAccessibleName(plain(label->text()));
        label->setBuddy(edit);
        row->addWidget(label);
        row->addWidget(edit);
        row->addSpacing(box.style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing));
        edits.push_back(edit);
    }
    row->addStretch();
    auto* grid = qobject_cast<QGridLayout*>(box.layout());
    grid->addLayout(row, grid->rowCount(), 0, 1, grid->columnCount()); // owns the row now
    return edits;
}

/// Qt's own dialog within the screen, and without cut texts; the desktop's own has no layout here.
void fit_file_dialog(QFileDialog& box) {
    if (!box.layout()) return;
    fit_on_screen(box);
    if (auto* types = box.findChild<QComboBox*>("fileTypeCombo")) {
        types->view()->setTextElideMode(Qt::ElideNone);
        const auto tell = [types] { types->setToolTip(types->currentText()); };
        tell();
        QObject::connect(types, &QComboBox::currentIndexChanged, types, tell);
    }
    if (auto* files = box.findChild<QTreeView*>("treeView")) {
        files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    }
}

/// A question or message that is too long for the screen scrolls, and has its buttons below each
/// other where they are too wide.
void fit_message(QMessageBox& box) {
    box.ensurePolished();
    auto* label = box.findChild<QLabel*>("qt_msgbox_label");
    auto* buttons = box.findChild<QDialogButtonBox*>();
    if (!label || !buttons) return;
    const QSize room = room_on_screen(box);
    const int margin = 2 * box.style()->pixelMetric(QStyle::PM_LayoutLeftMargin);
    const int widest = std::min(room.width(), WIDEST_MESSAGE) - margin;
    if (buttons->sizeHint().width() > widest) buttons->setOrientation(Qt::Vertical);

    const int icon = box.style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    const int bar = box.style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    const QSize most(std::min(label->fontMetrics().averageCharWidth() * TEXT_WIDTH,
                              room.width() - icon - bar - 3 * margin),
                     room.height() - buttons->sizeHint().height() - 2 * margin);
    label->setWordWrap(true);
    const bool fits = label->heightForWidth(most.width()) <= most.height();
    label->setWordWrap(false);
    if (fits) return;
    auto* area = std::make_unique<QtFittingArea>(&box, [=] {
                     return QSize(most.width() + bar, most.height());
                 }).release();
    area->setFocusPolicy(Qt::StrongFocus); // the keyboard scrolls it
    area->setAccessibleName(label->text());
    const std::unique_ptr<QLayoutItem> place(box.layout()->replaceWidget(label, area));
    auto* text = std::make_unique<QLabel>(label->text()).release();
    text->setTextFormat(label->textFormat());
    text->setTextInteractionFlags(label->textInteractionFlags());
    text->setWordWrap(true);
    text->setFixedWidth(most.width());
    text->setMinimumHeight(text->heightForWidth(most.width()));
    area->setWidget(text);
    text->setAutoFillBackground(false);
    label->hide();
    if (box.defaultButton()) box.defaultButton()->setFocus();
}

/// Not every dark desktop has a colour of its own for links; Qt's is for light ones.
QPalette with_legible_links(QPalette palette) {
    const QColor link = palette.color(QPalette::Link);
    if (palette.color(QPalette::Window).lightness() < DARK && link.lightness() < LIGHT_LINK) {
        palette.setColor(QPalette::Link,
                         QColor::fromHsl(link.hslHue(), link.hslSaturation(), LIGHT_LINK));
    }
    return palette;
}

} // namespace

void QtDialogs::message(const std::string& title, const std::string& text, MessageIcon icon,
                        std::function<void()> done) {
    if (!signals_.ending()) {
        QMessageBox box(icon_of(icon), to_qt(title), message_text(text), QMessageBox::Ok,
                        window_.owner());
        box.setTextFormat(Qt::PlainText);
        box.setDefaultButton(QMessageBox::Ok);
        fit_message(box);
        box.exec();
    }
    done();
}

void QtDialogs::choose(const std::string& title, const std::string& text,
                       const std::vector<std::string>& answers, std::function<void(int)> done) {
    done(ask(title, text, answers));
}

void QtDialogs::choose_file(const FileDialog& dialog,
                            std::function<void(std::optional<FileChoice>)> done) {
    done(ask_for_file(dialog));
}

int QtDialogs::ask(const std::string& title, const std::string& text,
                   const std::vector<std::string>& answers) {
    if (signals_.ending()) return NO_ANSWER;
    QMessageBox box(QMessageBox::Question, to_qt(title), message_text(text), QMessageBox::NoButton,
                    window_.owner());
    box.setTextFormat(Qt::PlainText);
    // A box of Qt's cannot be closed unless a button stands for that.
    QPushButton* const nothing = box.addButton(QMessageBox::Cancel);
    std::vector<QAbstractButton*> buttons;
    buttons.reserve(answers.size());
    for (const std::string& answer : answers) { // of one role, which keeps their order
        buttons.push_back(box.addButton(to_qt(answer), QMessageBox::ActionRole));
    }
    box.setDefaultButton(qobject_cast<QPushButton*>(buttons.front()));
    box.setEscapeButton(nothing);
    fit_message(box); // shows all buttons
    nothing->hide();
    box.exec();
    const auto chosen = std::ranges::find(buttons, box.clickedButton());
    return chosen == buttons.end() ? NO_ANSWER : int(chosen - buttons.begin());
}

std::optional<FileChoice> QtDialogs::ask_for_file(const FileDialog& dialog) {
    if (signals_.ending()) return std::nullopt;
    QWidget* form = QApplication::activeModalWidget(); // a form's button may have asked for it
    QFileDialog box(form ? form : window_.owner(), to_qt(dialog.title));
    // The desktop's own dialog has no place for fields; this comes before all other settings.
    box.setOption(QFileDialog::DontUseNativeDialog, !dialog.fields.empty());
    box.setAcceptMode(dialog.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    box.setFileMode(dialog.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    const QStringList filters = name_filters(dialog);
    const auto chosen_filter = [&] {
        return std::max(0, int(filters.indexOf(box.selectedNameFilter())));
    };
    box.setNameFilters(filters);
    if (dialog.filter_index >= 0 && dialog.filter_index < filters.size()) {
        box.selectNameFilter(filters[dialog.filter_index]);
    }
    // So that Qt's question before replacing a file is about the right one. To a desktop's own
    // dialog, which has no layout here, Qt would add the extension only after its question.
    if (dialog.save && box.layout()) {
        const auto take_extension = [&] {
            box.setDefaultSuffix(to_qt(dialog.filters[size_t(chosen_filter())].extension));
        };
        take_extension();
        QObject::connect(&box, &QFileDialog::filterSelected, &box, take_extension);
    }
    const std::vector<QLineEdit*> edits = add_fields(box, dialog.fields);
    add_preview(box, dialog);
    fit_file_dialog(box);
    if (box.exec() != QDialog::Accepted || box.selectedFiles().isEmpty()) return std::nullopt;
    FileChoice choice{path_from_qt(box.selectedFiles().first()), chosen_filter()};
    for (const QLineEdit* edit : edits) choice.field_texts.push_back(edit->text().toStdString());
    return choice;
}

void QtDialogs::about(const std::string& title, const std::vector<std::string>& lines,
                      const std::string& link, const std::string& target,
                      std::function<void()> done) {
    QDialog box(window_.owner());
    box.setWindowTitle(to_qt(title));
    QLabel picture;
    const int icon_size = 2 * box.style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    picture.setPixmap(box.windowIcon().pixmap(QSize(icon_size, icon_size), box.devicePixelRatio()));
    picture.setAlignment(Qt::AlignCenter);
    QStringList text;
    for (const std::string& line : lines) text += to_qt(line);
    QLabel heading(text.takeFirst());
    QFont large = heading.font();
    large.setBold(true);
    large.setPointSizeF(large.pointSizeF() * HEADING);
    heading.setFont(large);
    QLabel words(text.join('\n'));
    for (QLabel* label : {&heading, &words}) {
        label->setTextFormat(Qt::PlainText);
        label->setAlignment(Qt::AlignCenter);
    }
    QLabel page("<a href=\"" + to_qt(target).toHtmlEscaped() + "\">" + to_qt(link).toHtmlEscaped() +
                "</a>");
    page.setAlignment(Qt::AlignCenter);
    page.setPalette(with_legible_links(page.palette()));
    page.setTextInteractionFlags(Qt::TextBrowserInteraction);
    QObject::connect(&page, &QLabel::linkActivated, [this, target] { open_page(target); });
    QDialogButtonBox buttons(QDialogButtonBox::Ok);
    QObject::connect(&buttons, &QDialogButtonBox::accepted, &box, &QDialog::accept);

    QVBoxLayout layout;
    for (QWidget* row :
         std::initializer_list<QWidget*>{&picture, &heading, &words, &page, &buttons}) {
        layout.addWidget(row);
    }
    layout.setSizeConstraint(QLayout::SetFixedSize);
    box.setLayout(&layout);
    buttons.button(QDialogButtonBox::Ok)->setFocus();
    box.exec();
    done();
}

bool QtDialogs::open_page(const std::string& url) {
    return QDesktopServices::openUrl(QUrl(to_qt(url)));
}
