#pragma once
/// A table or list box of a form: rows of cells, one of which is chosen.

#include <QTreeWidget>

#include <functional>
#include <string>
#include <vector>

class QtTable final : public QTreeWidget {
public:
    /// `area` in characters across and rows that are seen. Without headings there are two columns.
    QtTable(QWidget* parent, const std::vector<std::string>& headings, QSize area);

    /// Each row with a tab before each further cell. The number of the chosen row stays as long as
    /// there are so many, or the first row is chosen.
    void set_rows(const std::vector<std::string>& rows);
    int row() const; ///< the one chosen; -1 without one
    void choose(int row);
    QString text() const; ///< of the chosen row

    bool keeps_row = true;                   ///< behind set_rows
    std::function<void()> on_choice = [] {}; ///< by the user
    /// Without it, Enter is the form's.
    std::function<void()> on_activation = {};

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void set_cells(QTreeWidgetItem& row, const QStringList& texts);
    void fit_columns();
};
