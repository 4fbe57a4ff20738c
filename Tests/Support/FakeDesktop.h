#pragma once

#include "Platform/DesktopServices.h"
#include "Platform/LoginItem.h"
#include "Support/FakeAccessibility.h"
#include "Support/FakeKeyEvents.h"
#include "Support/FakeKeyPoster.h"
#include "Support/FakePasteboard.h"
#include "Support/FakeSound.h"

namespace vesk {

/// Everything that is asked of a desktop, as a test wants it to answer. Main thread.
class FakeDesktop final : public DesktopServices, private Permissions {
public:
    explicit FakeDesktop(Clock &clock, test::FakeSound::Source source = test::FakeSound::Source::test)
        : poster(clock)
        , sound(source)
    {
    }

    KeyEvents &keyEvents() override { return keys; }
    KeyPoster &keyPoster() override { return poster; }
    Pasteboard &pasteboard() override { return board; }
    Accessibility &accessibility() override { return programs; }
    const AudioDevices &audioDevices() override { return sound; }
    AudioEngines &audioEngines() override { return sound; }
    const Permissions &permissions() override { return *this; }
    void setLockHandler(std::function<void()> handler) override { lock = std::move(handler); }

    FakeKeyEvents keys;
    FakeKeyPoster poster;
    FakePasteboard board;
    FakeAccessibility programs;
    test::FakeSound sound;
    Availability keyboard = Availability::available();
    Availability recording = Availability::available();

    std::function<void()> lock; ///< the screen's

private:
    Availability accessibility() const override { return keyboard; }
    Availability microphone() const override { return recording; }
};

/// A session that starts what it is told to, or cannot be told.
class FakeLoginItem final : public LoginItem {
public:
    Availability availability() const override { return state; }
    bool isEnabled() const override { return isOn; }
    void setEnabled(bool isEnabled) override { isOn = isEnabled; }

    Availability state = Availability::available();
    bool isOn = false;
};

} // namespace vesk
