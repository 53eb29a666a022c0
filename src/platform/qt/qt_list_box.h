#pragma once
#include <QTreeWidget>

#include <functional>
#include <string>
#include <vector>

/// A list with two columns, of which one item is chosen.
class QtListBox final : public QTreeWidget {
public:
    explicit QtListBox(QWidget* parent);

    /// The first one is then chosen.
    void set_items(const std::vector<std::string>& items);
    int item() const; ///< -1 without one
    QString text() const;
    void choose(int item); ///< without on_choice

    std::function<void()> on_choice; ///< the user has chosen another item
};
