// POV-Ray texts: the references in a text do not depend on the blocks in which it is read.
#include "fuzz/fuzz_support.h"
#include "host/rendercore/submit/povray_lexer.h"

#include <QStringList>

namespace {

QStringList References(const QByteArray& text, int blockBytes)
{
    QStringList references;
    PovRayLexer lexer(
        [&references](PovRayLexer::Kind, const QString& reference) { references.append(reference); });
    for (int from = 0; from < text.size(); from += blockBytes)
        lexer.Feed(text.mid(from, blockBytes));
    lexer.Feed("\n");
    return references;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray text = Bytes(data, size);
    const QStringList references = References(text, text.size() + 1);
    for (const int blockBytes : {1, 7})
        Require(References(text, blockBytes) == references, "blocks of any size give the same references");
    return 0;
}
