#pragma once
// The document's objects: a keyed collection that owns them, keeps the order in which
// they were added, and finds any of them by key in constant time. Drawing, saving and
// the route numbering all rely on that order, so removal never reorders the rest.

#include "core/LayoutObject.h"

#include <QHash>
#include <QString>
#include <memory>
#include <utility>
#include <vector>

class ObjectCollection {
public:
    ObjectCollection() = default;
    ObjectCollection(const ObjectCollection &) = delete;
    ObjectCollection &operator=(const ObjectCollection &) = delete;

    int Count() const { return int(m_items.size()); }
    bool isEmpty() const { return m_items.empty(); }
    bool Contains(const QString &key) const { return m_index.contains(key); }

    // Takes ownership. A key that is already present is error 457 and the object is
    // dropped; the collection is unchanged.
    varnoObject &Add(std::unique_ptr<varnoObject> object, const QString &key);
    // The object stored under key; error 5 when there is none.
    varnoObject &Item(const QString &key) { return const_cast<varnoObject &>(std::as_const(*this).Item(key)); }
    const varnoObject &Item(const QString &key) const;
    // nullptr when there is no such key.
    varnoObject *Find(const QString &key) { return const_cast<varnoObject *>(std::as_const(*this).Find(key)); }
    const varnoObject *Find(const QString &key) const;
    // By position in insertion order, 0-based; error 9 outside.
    varnoObject &At(int index) { return const_cast<varnoObject &>(std::as_const(*this).At(index)); }
    const varnoObject &At(int index) const;
    // Position of a key in insertion order, or -1.
    int IndexOf(const QString &key) const { return m_index.value(key, -1); }
    // The key an entry was stored under (normally the object's own Key).
    const QString &KeyAt(int index) const;

    // Removes and hands back the object; error 5 when there is none.
    std::unique_ptr<varnoObject> Remove(const QString &key);
    void Clear();

    // Iterating a const collection gives const objects.
    template <typename Object, typename Inner> class basic_iterator {
    public:
        explicit basic_iterator(Inner it) : m_it(it) {}
        Object &operator*() const { return *m_it->second; }
        Object *operator->() const { return m_it->second.get(); }
        basic_iterator &operator++() { ++m_it; return *this; }
        bool operator==(const basic_iterator &o) const { return m_it == o.m_it; }
        bool operator!=(const basic_iterator &o) const { return m_it != o.m_it; }

    private:
        Inner m_it;
    };
    using Items = std::vector<std::pair<QString, std::unique_ptr<varnoObject>>>;
    using iterator = basic_iterator<varnoObject, Items::iterator>;
    using const_iterator = basic_iterator<const varnoObject, Items::const_iterator>;
    iterator begin() { return iterator(m_items.begin()); }
    iterator end() { return iterator(m_items.end()); }
    const_iterator begin() const { return const_iterator(m_items.cbegin()); }
    const_iterator end() const { return const_iterator(m_items.cend()); }

private:
    Items m_items;
    QHash<QString, int> m_index;
};
