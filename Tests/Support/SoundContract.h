#pragma once

#include "Dictation/AudioInput.h"
#include "Support/Recording.h"
#include "Support/SoundRig.h"

#include <gtest/gtest.h>
#include <ostream>

namespace vesk::test {

/// What every answer to AudioDevices and AudioEngine has to do, seen through AudioInput. The cases stand in
/// SoundContract.cpp; a program that builds it instantiates them over its rigs.
class SoundContract : public testing::TestWithParam<SoundRigKind> {
protected:
    SoundRig &rig() { return *m_rig; }
    /// A microphone at which a tone is heard.
    void plug(const QString &name, double tone, AudioTransport transport = AudioTransport::other);
    /// One of them, "desk", and a speaker that plays something else; the recording has begun.
    void hearTheDesk();
    void expectNoMicrophone();

private:
    std::unique_ptr<SoundRig> m_rig = GetParam().make();

protected:
    Recording recording;
    AudioInput input{rig().devices(), rig().engines()};
};

inline void PrintTo(const SoundRigKind &kind, std::ostream *out) { *out << kind.name; }

} // namespace vesk::test
