#include "host/services/finish_sound.h"

#include <QAudioDeviceInfo>
#include <QFileInfo>
#include <QSoundEffect>
#include <QUrl>

static void InitSounds()
{
    Q_INIT_RESOURCE(sounds);
}

namespace {

constexpr qint64 ShortestPause = 1000; // ms

/// Checked before Qt Multimedia is used, which prints warnings without a sound server.
bool IsSoundServerThere()
{
    if (!qEnvironmentVariableIsEmpty("PULSE_SERVER"))
        return true;
    const QString own = qEnvironmentVariable("PULSE_RUNTIME_PATH");
    const QString folder
        = own.isEmpty() ? QString(qEnvironmentVariable("XDG_RUNTIME_DIR") + QLatin1String("/pulse")) : own;
    return QFileInfo::exists(folder + QLatin1String("/native"));
}

} // namespace

FinishSound::FinishSound() = default;
FinishSound::~FinishSound() = default;

void FinishSound::Play()
{
    if (m_played.isValid() && !m_played.hasExpired(ShortestPause))
        return;
    m_played.start();
    if (!IsSoundServerThere() || QAudioDeviceInfo::defaultOutputDevice().isNull())
        return;
    if (!m_effect) {
        InitSounds();
        m_effect = std::make_unique<QSoundEffect>();
        m_effect->setSource(QUrl(QStringLiteral("qrc:/sounds/finish.wav")));
    }
    m_effect->play();
}
