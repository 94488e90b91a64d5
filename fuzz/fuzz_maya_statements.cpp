// Maya texts: the statements of a text do not depend on the blocks in which it is read.
#include "fuzz/fuzz_support.h"
#include "host/rendercore/submit/maya_statements.h"

#include <QStringList>

namespace {

QVector<QStringList> Statements(const QByteArray& text, int blockBytes)
{
    QVector<QStringList> statements;
    MayaStatements reader([&statements](const MayaWords& words) {
        QStringList texts;
        for (int index = 0; index < words.Count(); ++index)
            texts.append(words.Text(index));
        statements.append(texts);
    });
    for (int from = 0; from < text.size(); from += blockBytes)
        reader.Feed(text.mid(from, blockBytes));
    return statements;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray text = Bytes(data, size);
    const QVector<QStringList> statements = Statements(text, text.size() + 1);
    // The blocks decide how much is kept of a word that exceeds all limits.
    constexpr int LongestText = 16 * 1024;
    for (const int blockBytes : {1, 7})
        Require(text.size() > LongestText || Statements(text, blockBytes) == statements,
            "blocks of any size give the same statements");
    return 0;
}
