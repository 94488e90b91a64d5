// Stands in for libFuzzer where a target is built as a test: runs each file of a folder once.
#include "fuzz/fuzz_support.h"

#include <QDir>

#include <cstdio>

int main(int argc, char** argv)
{
    const QDir corpus(argc == 2 ? QFile::decodeName(argv[1]) : QString());
    const QStringList names = corpus.entryList(QDir::Files, QDir::Name);
    if (argc != 2 || names.isEmpty()) {
        std::fputs("usage: fuzz_<what> <folder of inputs>\n", stderr);
        return 2;
    }
    for (const QString& name : names) {
        QFile file(corpus.filePath(name));
        if (!file.open(QIODevice::ReadOnly)) {
            std::fprintf(stderr, "%s cannot be read\n", qPrintable(name));
            return 2;
        }
        std::printf("%s\n", qPrintable(name));
        std::fflush(stdout);
        const QByteArray input = file.readAll();
        LLVMFuzzerTestOneInput(
            reinterpret_cast<const std::uint8_t*>(input.constData()), static_cast<std::size_t>(input.size()));
    }
    return 0;
}
