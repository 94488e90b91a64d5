#pragma once

#include <QElapsedTimer>

#include <memory>

class QSoundEffect;

/// The chime of a finished download, on the default audio device; nothing where there is none.
class FinishSound
{
public:
    FinishSound();
    ~FinishSound();

    /// Returns at once. Asked for again within a second it stays silent.
    void Play();

private:
    std::unique_ptr<QSoundEffect> m_effect; // made when it is first needed
    QElapsedTimer m_played;
};
