#include "app/RecentFiles.h"

RecentFiles::RecentFiles() : m_items{QString()} {}

void RecentFiles::RecentAdd(const QString &fileName)
{
    if (fileName.isEmpty())
        return;
    RecentRemove(fileName);
    if (m_items.size() < MaxItems)
        m_items.append(QString());
    for (qsizetype i = m_items.size() - 1; i >= 1; --i)
        m_items[i] = m_items[i - 1];
    m_items[0] = fileName;
}

void RecentFiles::RecentRemove(const QString &fileName)
{
    for (qsizetype i = m_items.size() - 1; i >= 0; --i) {
        if (i >= m_items.size() || m_items[i] != fileName)
            continue;
        for (qsizetype j = i + 1; j < m_items.size(); ++j)
            m_items[j - 1] = m_items[j];
        if (m_items.size() > 1)
            m_items.removeLast();
        else
            m_items[0].clear();
    }
}

QStringList RecentFiles::paths() const
{
    QStringList out;
    for (const QString &s : m_items)
        if (!s.isEmpty())
            out << s;
    return out;
}
