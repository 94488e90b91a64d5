#include "host/rendercore/submit/scene_contents.h"

#include "host/farmclient/farm_numbers.h"
#include "host/rendercore/submit/submit_text.h"

#include <QFileInfo>
#include <QTextCodec>

#include <algorithm>

namespace {

bool IsControl(QChar character)
{
    return character.unicode() < 0x20 || character.unicode() == 0x7f;
}

} // namespace

TaskMessage TooManyFiles()
{
    return {SubmitText::MoreFiles, {QString::number(MostSceneFiles)}};
}

bool IsSendablePath(const QString& path)
{
    return !path.isEmpty() && !path.contains(QLatin1Char('\\')) && !path.contains(QLatin1Char(':'))
        && std::none_of(path.cbegin(), path.cend(), IsControl);
}

QString SceneText(const QByteArray& bytes)
{
    static QTextCodec* const utf8 = QTextCodec::codecForName("UTF-8");
    QTextCodec::ConverterState state;
    const QString text = utf8->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars > 0 || state.remainingChars > 0 ? QString::fromLatin1(bytes) : text;
}

bool LiesIn(const QString& folder, const QString& file)
{
    const QString path = QFileInfo(file).canonicalFilePath();
    const QString within = folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
    return path.startsWith(within) && path.indexOf(QLatin1String("/."), within.size() - 1) < 0;
}

QString FirstReadable(const QStringList& candidates)
{
    for (const QString& candidate : candidates) {
        const QFileInfo file(candidate);
        if (file.isFile() && file.isReadable())
            return file.absoluteFilePath();
    }
    return {};
}

void SetFrames(SceneAnalysis& analysis, int first, int last)
{
    analysis.firstFrame = std::clamp(first, 1, FarmNumbers::LastFrame);
    analysis.lastFrame = std::clamp(last, analysis.firstFrame,
        std::min(FarmNumbers::LastFrame, analysis.firstFrame + FarmNumbers::MostFrames - 1));
    if (first >= analysis.firstFrame && last <= analysis.lastFrame)
        return;
    QVector<TaskMessage> frames;
    for (const int frame : {first, last, analysis.firstFrame, analysis.lastFrame})
        frames.append(QString::number(frame));
    analysis.remarks.append(TaskMessage(SubmitText::FramesLeftOut, frames));
}

void SetSize(SceneAnalysis& analysis, int width, int height)
{
    if (width >= 1 && width <= FarmNumbers::LongestSide)
        analysis.width = width;
    if (height >= 1 && height <= FarmNumbers::LongestSide)
        analysis.height = height;
}
