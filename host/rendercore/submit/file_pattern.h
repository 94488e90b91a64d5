#pragma once

#include <QString>
#include <QVector>

/// A file name in which tokens stand for numbers: tiles (`<UDIM>`, `1001`, `<u>`, `<v>`, `<uvtile>`) and frames (`<f>`,
/// `<f4>`, `<frame>`, `####`, `%04d`). Matching takes time in proportion to the length of the name.
class FilePattern
{
public:
    /// @param isSequence whether the last number of the name stands for frames as well.
    explicit FilePattern(const QString& name, bool isSequence = false);

    bool HasTokens() const;

    /// The beginning that all matching names share.
    QString Prefix() const;

    bool Matches(const QString& name) const;

private:
    /// A text without digits, or a number.
    struct Piece
    {
        QString text; ///< a text, or a number's digits before the token
        QString tail; ///< a number's digits behind the token
        bool isNumber = false;
        bool isOpen = false; ///< the number holds a token
        bool isTile = false; ///< the token stands for a tile from 1001 on
        int width = 0;       ///< the fewest digits of the token
    };

    int ReadToken(const QString& name, int from);
    bool AddNamedToken(const QString& token);
    void AddToken(int width, bool isTile = false);
    void AddText(const QString& text);
    void AddDigit(QChar digit);
    void OpenTiles();
    static bool Fits(const Piece& piece, const QStringRef& number);

    QVector<Piece> m_pieces;
};
