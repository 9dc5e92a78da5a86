#include "core/ObjectCollection.h"

#include "base/Runtime.h"

#include <algorithm>

varnoObject &ObjectCollection::Add(std::unique_ptr<varnoObject> object, const QString &key)
{
    if (!object)
        rt::raise(rt::InvalidCall);
    if (m_index.contains(key))
        rt::raise(rt::DuplicateKey);
    m_items.emplace_back(key, std::move(object));
    m_index.insert(key, int(m_items.size()) - 1);
    return *m_items.back().second;
}

const varnoObject &ObjectCollection::Item(const QString &key) const
{
    const varnoObject *o = Find(key);
    if (!o)
        rt::raise(rt::InvalidCall);
    return *o;
}

const varnoObject *ObjectCollection::Find(const QString &key) const
{
    const auto it = m_index.constFind(key);
    return it == m_index.constEnd() ? nullptr : m_items[size_t(*it)].second.get();
}

const varnoObject &ObjectCollection::At(int index) const
{
    rt::checkIndex(index, 0, Count() - 1);
    return *m_items[size_t(index)].second;
}

const QString &ObjectCollection::KeyAt(int index) const
{
    rt::checkIndex(index, 0, Count() - 1);
    return m_items[size_t(index)].first;
}

std::unique_ptr<varnoObject> ObjectCollection::Remove(const QString &key)
{
    const auto it = m_index.find(key);
    if (it == m_index.end())
        rt::raise(rt::InvalidCall);
    const int pos = *it;
    m_index.erase(it);
    std::unique_ptr<varnoObject> out = std::move(m_items[size_t(pos)].second);
    m_items.erase(m_items.begin() + pos);
    // Entries behind the removed one moved up by one place.
    for (int i = pos; i < Count(); ++i)
        m_index[m_items[size_t(i)].first] = i;
    return out;
}

void ObjectCollection::Clear()
{
    m_items.clear();
    m_index.clear();
}
