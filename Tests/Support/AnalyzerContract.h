#pragma once

#include "Platform/SpeechModels.h"

#include <functional>
#include <gtest/gtest.h>
#include <ostream>

namespace vesk::test {

/// Something that can be said, and an answer to SpeechModels that hears it.
struct AnalyzerRig {
    std::string name;
    std::function<std::unique_ptr<SpeechAnalyzer>()> make;
    std::function<std::unique_ptr<SpeechAnalyzer>()> makeWithoutModel;
    std::function<AudioBlock()> sound;
    QStringList words; ///< small letters only
};

/// What every answer to SpeechAnalyzer has to do while a person speaks. The cases stand in
/// AnalyzerContract.cpp; a program that builds it instantiates them over its rigs.
class AnalyzerContract : public testing::TestWithParam<AnalyzerRig> {};

inline void PrintTo(const AnalyzerRig &rig, std::ostream *out) { *out << rig.name; }

/// Feeds the sound in pieces as they come from a sound server.
void feedInBlocks(SpeechAnalyzer &analyzer, const AudioBlock &sound);

} // namespace vesk::test
