#pragma once

#include "Support/SoundRig.h"

#include <gtest/gtest.h>
#include <ostream>

namespace vesk::test {

/// What every answer to AudioDevices and AudioEngine has to do, seen through AudioInput. The cases stand in
/// SoundContract.cpp; a program that builds it instantiates them over its rigs.
class SoundContract : public testing::TestWithParam<SoundRigKind> {
protected:
    SoundRig &rig() { return *m_rig; }

private:
    std::unique_ptr<SoundRig> m_rig = GetParam().make();
};

inline void PrintTo(const SoundRigKind &kind, std::ostream *out) { *out << kind.name; }

} // namespace vesk::test
