#pragma once

#include <QString>

#include <functional>
#include <span>

namespace vesk {

/// One run of a speech model over 16 kHz sound, behind noise of this amplitude. What it throws comes out
/// below.
using DecodeOnce = std::function<QString(std::span<const float> samples, float noise)>;

/// What is said in a stretch in which somebody speaks, with a second look where the model has plainly left
/// something out: the Moonshine models return nothing at all for one in 20 clear passages of a synthetic
/// voice, and for some of people. Each of at most four further looks costs about as much as the first.
QString hearAll(std::span<const float> samples, const DecodeOnce &decode);

} // namespace vesk
