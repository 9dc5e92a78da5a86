#pragma once
// A small JSON writer that keeps keys in the order they are written: varno-cli's output
// has a fixed shape that scripts rely on.

#include <QString>
#include <QStringList>

class JsonWriter {
public:
    JsonWriter &beginObject();
    JsonWriter &endObject();
    JsonWriter &beginArray(const QString &key = QString());
    JsonWriter &endArray();
    JsonWriter &key(const QString &name);
    JsonWriter &value(const QString &text);
    JsonWriter &value(long long number);
    JsonWriter &value(bool flag);
    template <typename T> JsonWriter &field(const QString &name, const T &v)
    {
        key(name);
        return value(v);
    }
    JsonWriter &field(const QString &name, int v) { return field(name, static_cast<long long>(v)); }
    JsonWriter &field(const QString &name, const char *v) { return field(name, QString::fromUtf8(v)); }
    JsonWriter &stringArray(const QString &name, const QStringList &items);
    const QString &text() const { return m_text; }

    static QString quote(const QString &s);

private:
    void separator();
    QString m_text;
    bool m_needComma = false;
    bool m_afterKey = false;
};
