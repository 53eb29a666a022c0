#pragma once
/// A table of a form: rows of cells under headings, one of which is chosen.

#include <QTreeWidget>

#include <functional>
#include <string>
#include <vector>

class QtTable final : public QTreeWidget {
public:
    /// `area` in characters across and rows that are seen.
    QtTable(QWidget* parent, const std::vector<std::string>& headings, QSize area);

    /// Each row with a tab before each further cell. The number of the chosen row stays as long as
    /// there are so many.
    void set_rows(const std::vector<std::string>& rows);
    int row() const; ///< the one chosen; -1 without one
    void choose(int row);
    QString text() const; ///< of the chosen row

    std::function<void()> on_choice = [] {}; ///< by the user
    std::function<void()> on_activation = [] {};

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void fit_columns();
};
