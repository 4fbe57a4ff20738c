#pragma once

#include "Platform/Clock.h"

#include <QString>

#include <memory>

namespace vesk {

class Compositing;
class HUDPanel;

/// The listening indicator: a small pill near the bottom of the screen that holds the mouse pointer, with the
/// loudness of the microphone or a short message. Each show replaces what was there at once. While it is
/// hidden nothing of it runs. Main thread.
class HUD {
public:
    /// Both outlive it. Needs a QApplication.
    HUD(Clock &clock, const Compositing &compositing);
    ~HUD();
    HUD(const HUD &) = delete;
    HUD &operator=(const HUD &) = delete;

    /// `locked` is hands-free dictation, `command` a voice command.
    void showListening(bool locked, bool command);

    /// One level of the microphone, 0 to 1; seen while listening is shown.
    void setLevel(float level);

    void showText(const QString &text, bool spinning);

    /// A message that hides itself, unless something else is shown before.
    void flash(const QString &text, std::chrono::milliseconds time);

    void hide();

private:
    struct Shared;

    void present();
    void place();
    static Task<> hideLater(Clock &clock, std::chrono::milliseconds time, std::weak_ptr<Shared> weak,
                            quint64 number);

    Clock &m_clock;
    const Compositing &m_compositing;
    std::shared_ptr<Shared> m_shared;
};

} // namespace vesk
