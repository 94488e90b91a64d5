#include "json/read_object.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>
#include <QVector>

namespace {

constexpr int DeepestNesting = 1024; // Qt refuses deeper texts

/// Finds the strings and brackets of a text. Everything else is left to Qt, which stops at the first fault.
class KeyScan
{
public:
    explicit KeyScan(const QByteArray& text)
        : m_text(text)
    {
    }

    bool FindsRepeatedKey()
    {
        for (; m_place < m_text.size() && m_levels.size() <= DeepestNesting; ++m_place) {
            switch (m_text.at(m_place)) {
            case '{':
            case '[':
                m_levels.append({m_text.at(m_place) == '{', true, {}});
                break;
            case '}':
            case ']':
                if (!m_levels.isEmpty())
                    m_levels.removeLast();
                break;
            case ',':
                if (!m_levels.isEmpty())
                    m_levels.last().awaitsKey = true;
                break;
            case '"':
                if (!AddString(ReadString()))
                    return true;
                break;
            default:
                break;
            }
        }
        return false;
    }

private:
    struct Level
    {
        bool isObject;
        bool awaitsKey;
        QSet<QByteArray> keys;
    };

    /// @return the string that begins at the current place, without its quotation marks; stops at the closing one.
    QByteArray ReadString()
    {
        const int begin = ++m_place;
        bool isEscaped = false;
        for (; m_place < m_text.size() && m_text.at(m_place) != '"'; ++m_place) {
            if (m_text.at(m_place) != '\\')
                continue;
            isEscaped = true;
            ++m_place;
        }
        const QByteArray raw = m_text.mid(begin, m_place - begin);
        if (!isEscaped)
            return raw;
        return QJsonDocument::fromJson("[\"" + raw + "\"]").array().at(0).toString().toUtf8();
    }

    /// @return false when the string is a key that the object already has.
    bool AddString(const QByteArray& string)
    {
        if (m_levels.isEmpty() || !m_levels.last().isObject || !m_levels.last().awaitsKey)
            return true;
        Level& level = m_levels.last();
        level.awaitsKey = false;
        const int before = level.keys.size();
        level.keys.insert(string);
        return level.keys.size() > before;
    }

    const QByteArray& m_text;
    int m_place = 0;
    QVector<Level> m_levels;
};

} // namespace

JsonRead ReadJsonObject(const QByteArray& text)
{
    if (KeyScan(text).FindsRepeatedKey())
        return {{}, "has the same key twice in one object"};
    const QJsonDocument document = QJsonDocument::fromJson(text);
    if (!document.isObject())
        return {{}, "must be a JSON object"};
    return {document.object(), nullptr};
}
