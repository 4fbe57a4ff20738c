#pragma once

#include "Foundation/Channel.h"
#include "Platform/Linux/Speech/LiveStretches.h"
#include "Platform/Linux/Speech/SentenceJoin.h"
#include "Platform/SpeechModels.h"

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <span>

namespace vesk {

/// What one live recognition did, for the log.
struct LiveFacts {
    using TimePoint = std::chrono::steady_clock::time_point;

    int stretches = 0;   ///< delivered
    int speculative = 0; ///< of these, recognised before it was known that they were over
    int decodes = 0;     ///< runs of the recogniser, those in vain included
    TimePoint started;
    std::optional<TimePoint> firstDecode; ///< began
    std::optional<TimePoint> ended;       ///< the sound
    std::optional<TimePoint> finished;    ///< the last result was delivered

    /// Lengths and times only.
    QString description(AudioDuration sound) const;
};

/// The recognitions that one person's speech asks for, run one at a time by a worker that may serve others
/// too, and their texts in the order of speech. At most one speculation waits; a newer one takes its place,
/// and what one that already runs finds out is dropped. The samples of a stretch are freed with its decode.
///
/// Shared by the thread that listens, the worker and the owner; all functions from any thread. It lives as
/// long as the last of them, so that an owner need not wait for a decode that nobody wants any more.
class LiveDecoding : public std::enable_shared_from_this<LiveDecoding> {
public:
    using Decode = std::function<QString(std::span<const float>)>;
    using Execute = std::function<void(std::function<void()>)>; ///< runs blocks in order, elsewhere

    LiveDecoding(Decode decode, Execute execute, SentenceJoin join);

    /// Whether a step's samples are of use: not when it completes what was speculated on.
    bool needsSamples(const LiveStep &step) const;

    void add(const LiveStep &step, std::vector<float> samples);

    /// The sound is over, after so much of it: after the last text, or with the failure, the results end.
    void end(AudioDuration sound, std::exception_ptr failure = {});

    /// Results end now and what waits is dropped. A decode that runs goes on in vain.
    void abandon();

    /// Nothing that is added can lead to a result any more.
    bool isOver() const;

    /// See SpeechAnalyzer.
    Task<std::optional<SpeechResult>> nextResult() { return m_results.next(); }

private:
    struct Job {
        LiveStep step;
        std::vector<float> samples;
        enum class State { waiting, running, done } state = State::waiting;
        bool isWanted = true;
        bool wasSpeculation = false;
        QString text;
    };

    void enqueue(const LiveStep &step, std::vector<float> samples);
    void dropSpeculation();
    void runNext();
    std::shared_ptr<Job> takeNext();
    void decode(Job &job);
    void deliver();
    void releaseHeld();
    void finish(std::exception_ptr failure);

    const Decode m_decode;
    const Execute m_execute;
    const SentenceJoin m_join;

    mutable std::mutex m_mutex;              ///< guards all below but m_results
    std::deque<std::shared_ptr<Job>> m_jobs; ///< in the order of speech; a speculation can only be the last
    std::optional<SpeechResult> m_held;      ///< recognised; how it ends depends on what follows
    bool m_isSettled = false;                ///< nothing more is joined to the last completed job
    bool m_isEnding = false;
    bool m_isOver = false;
    std::exception_ptr m_failure;
    AudioDuration m_sound{0};
    LiveFacts m_facts;
    Channel<SpeechResult> m_results;
};

} // namespace vesk
