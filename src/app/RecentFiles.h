#pragma once
// The recent-files list behind the Open button's pop-up: at most ten paths, most recent
// first. Like the menu it drives, it always has an item 0, whose caption is empty when
// the list is empty.

#include <QStringList>

class RecentFiles {
public:
    static constexpr int MaxItems = 10;

    RecentFiles();
    // Puts a path at the head; an empty path is ignored and a known one moves up.
    void RecentAdd(const QString &fileName);
    // Takes every item equal to the path (exact, case-sensitive) out of the list.
    void RecentRemove(const QString &fileName);

    // The captions of the menu items, item 0 first; never empty.
    const QStringList &items() const { return m_items; }
    // The non-empty paths.
    QStringList paths() const;

private:
    QStringList m_items;
};
