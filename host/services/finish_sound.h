#pragma once

#include <QElapsedTimer>

#include <memory>

class QSoundEffect;

/// Plays the chime of a finished download on the default audio device; silent without one.
class FinishSound
{
public:
    FinishSound();
    ~FinishSound();

    /// Returns at once. Calls within a second of the last sound are ignored.
    void Play();

private:
    std::unique_ptr<QSoundEffect> m_effect; // created on first use
    QElapsedTimer m_played;
};
