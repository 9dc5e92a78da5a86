#include "cli/Json.h"

void JsonWriter::separator()
{
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (m_needComma)
        m_text += u',';
}

JsonWriter &JsonWriter::beginObject()
{
    separator();
    m_text += u'{';
    m_needComma = false;
    return *this;
}

JsonWriter &JsonWriter::endObject()
{
    m_text += u'}';
    m_needComma = true;
    return *this;
}

JsonWriter &JsonWriter::beginArray(const QString &name)
{
    if (!name.isNull())
        key(name);
    separator();
    m_text += u'[';
    m_needComma = false;
    return *this;
}

JsonWriter &JsonWriter::endArray()
{
    m_text += u']';
    m_needComma = true;
    return *this;
}

JsonWriter &JsonWriter::key(const QString &name)
{
    separator();
    m_text += quote(name) + u':';
    m_afterKey = true;
    return *this;
}

JsonWriter &JsonWriter::value(const QString &text)
{
    separator();
    m_text += quote(text);
    m_needComma = true;
    return *this;
}

JsonWriter &JsonWriter::value(long long number)
{
    separator();
    m_text += QString::number(number);
    m_needComma = true;
    return *this;
}

JsonWriter &JsonWriter::value(bool flag)
{
    separator();
    m_text += flag ? QStringLiteral("true") : QStringLiteral("false");
    m_needComma = true;
    return *this;
}

JsonWriter &JsonWriter::stringArray(const QString &name, const QStringList &items)
{
    beginArray(name);
    for (const QString &s : items)
        value(s);
    return endArray();
}

QString JsonWriter::quote(const QString &s)
{
    QString out = QStringLiteral("\"");
    for (QChar c : s) {
        switch (c.unicode()) {
        case '"': out += QStringLiteral("\\\""); break;
        case '\\': out += QStringLiteral("\\\\"); break;
        case '\n': out += QStringLiteral("\\n"); break;
        case '\r': out += QStringLiteral("\\r"); break;
        case '\t': out += QStringLiteral("\\t"); break;
        default:
            if (c.unicode() < 0x20)
                out += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
            else
                out += c;
        }
    }
    return out + u'"';
}
