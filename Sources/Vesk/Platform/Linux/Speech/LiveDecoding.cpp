#include "Platform/Linux/Speech/LiveDecoding.h"

#include "Foundation/Log.h"

#include <algorithm>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

AudioDuration seconds(std::int64_t samples)
{
    return AudioDuration(static_cast<double>(samples) / LiveStretches::SampleRate);
}

} // namespace

QString LiveFacts::description(AudioDuration sound) const
{
    const auto since = [this](const std::optional<TimePoint> &time) {
        return time ? QString::number(std::chrono::duration<double>(*time - started).count(), 'f', 3)
                    : u"-"_s;
    };
    return u"live speech=%1 stretches=%2 speculative=%3 decodes=%4 first=%5 released=%6 finished=%7"_s
        .arg(QString::number(sound.count(), 'f', 2))
        .arg(stretches)
        .arg(speculative)
        .arg(decodes)
        .arg(since(firstDecode), since(ended), since(finished));
}

LiveDecoding::LiveDecoding(Decode decode, Execute execute, SentenceJoin join)
    : m_decode(std::move(decode))
    , m_execute(std::move(execute))
    , m_join(std::move(join))
{
    m_facts.started = std::chrono::steady_clock::now();
}

bool LiveDecoding::needsSamples(const LiveStep &step) const
{
    const std::lock_guard lock(m_mutex);
    if (m_isOver || step.kind == LiveStep::Kind::settle) {
        return false;
    }
    return step.kind == LiveStep::Kind::speculate || m_jobs.empty()
        || m_jobs.back()->step.stretch != step.stretch;
}

void LiveDecoding::add(const LiveStep &step, std::vector<float> samples)
{
    const std::lock_guard lock(m_mutex);
    if (m_isOver) {
        return;
    }
    switch (step.kind) {
    case LiveStep::Kind::speculate:
        dropSpeculation();
        enqueue(step, std::move(samples));
        break;
    case LiveStep::Kind::complete:
        m_isSettled = false;
        if (!m_jobs.empty() && m_jobs.back()->step.stretch == step.stretch) {
            m_jobs.back()->step = step;
            deliver();
        } else {
            dropSpeculation();
            enqueue(step, std::move(samples));
        }
        break;
    case LiveStep::Kind::settle:
        m_isSettled = true;
        deliver();
        break;
    }
}

void LiveDecoding::end(AudioDuration sound, std::exception_ptr failure)
{
    const std::lock_guard lock(m_mutex);
    if (m_isOver) {
        return;
    }
    m_isEnding = true;
    m_sound = sound;
    m_failure = std::move(failure);
    m_facts.ended = std::chrono::steady_clock::now();
    dropSpeculation();
    deliver();
}

void LiveDecoding::abandon()
{
    const std::lock_guard lock(m_mutex);
    m_held.reset();
    finish({});
}

bool LiveDecoding::isOver() const
{
    const std::lock_guard lock(m_mutex);
    return m_isOver;
}

void LiveDecoding::enqueue(const LiveStep &step, std::vector<float> samples)
{
    auto job = std::make_shared<Job>();
    job->step = step;
    job->samples = std::move(samples);
    job->wasSpeculation = step.kind == LiveStep::Kind::speculate;
    m_jobs.push_back(std::move(job));
    m_execute([self = shared_from_this()] { self->runNext(); });
}

void LiveDecoding::dropSpeculation()
{
    if (!m_jobs.empty() && m_jobs.back()->step.kind == LiveStep::Kind::speculate) {
        m_jobs.back()->isWanted = false;
        m_jobs.pop_back();
    }
}

/// Called once for each job that was ever queued; a dropped one leaves a call with nothing to do.
void LiveDecoding::runNext()
{
    const std::shared_ptr<Job> job = takeNext();
    if (!job) {
        return;
    }
    try {
        const QString text = m_decode(job->samples);
        const std::lock_guard lock(m_mutex);
        job->text = text;
        job->state = Job::State::done;
        job->samples = {};
        deliver();
    } catch (...) {
        const std::lock_guard lock(m_mutex);
        if (job->isWanted) {
            releaseHeld();
            finish(std::current_exception());
        }
    }
}

std::shared_ptr<LiveDecoding::Job> LiveDecoding::takeNext()
{
    const std::lock_guard lock(m_mutex);
    const auto next = std::ranges::find(m_jobs, Job::State::waiting, &Job::state);
    if (next == m_jobs.end()) {
        return nullptr;
    }
    (*next)->state = Job::State::running;
    ++m_facts.decodes;
    if (!m_facts.firstDecode) {
        m_facts.firstDecode = std::chrono::steady_clock::now();
    }
    return *next;
}

/// Hands out what is recognised and whose surroundings are known.
void LiveDecoding::deliver()
{
    while (!m_isOver && !m_jobs.empty() && m_jobs.front()->state == Job::State::done
           && m_jobs.front()->step.kind == LiveStep::Kind::complete) {
        const std::shared_ptr<Job> job = m_jobs.front();
        m_jobs.pop_front();
        ++m_facts.stretches;
        m_facts.speculative += job->wasSpeculation ? 1 : 0;
        if (m_held) {
            m_join.repair(m_held->text, job->text, seconds(job->step.pauseBefore));
        }
        releaseHeld();
        m_held = SpeechResult{job->text, seconds(job->step.stretch.begin), seconds(job->step.stretch.end)};
    }
    const bool hasUnfinished = std::ranges::any_of(
        m_jobs, [](const auto &job) { return job->step.kind == LiveStep::Kind::complete; });
    if (m_isSettled && !hasUnfinished) {
        releaseHeld();
    }
    if (m_isEnding && m_jobs.empty()) {
        releaseHeld();
        finish(m_failure);
    }
}

void LiveDecoding::releaseHeld()
{
    if (m_held && !m_isOver) {
        m_results.push(std::move(*m_held));
    }
    m_held.reset();
}

void LiveDecoding::finish(std::exception_ptr failure)
{
    if (m_isOver) {
        return;
    }
    m_isOver = true;
    for (const auto &job : m_jobs) {
        job->isWanted = false;
    }
    m_jobs.clear();
    m_facts.finished = std::chrono::steady_clock::now();
    if (m_isEnding) {
        Log::write(m_facts.description(m_sound));
    }
    m_results.finish(std::move(failure));
}

} // namespace vesk
