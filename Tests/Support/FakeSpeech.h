#pragma once

#include "Foundation/Channel.h"
#include "Foundation/VeskError.h"
#include "Platform/SpeechModels.h"

#include <QTimer>

#include <algorithm>
#include <mutex>

namespace vesk {

/// A recogniser that says what it is told to, a little late, and can fail half-way. It says nothing when it
/// heard nothing but silence.
class FakeSpeechAnalyzer final : public SpeechAnalyzer {
public:
    explicit FakeSpeechAnalyzer(QList<SpeechResult> results, std::exception_ptr failure)
        : m_script(std::move(results))
        , m_failure(std::move(failure))
    {
    }

    void setContextualStrings(const QStringList &strings) override { contextualStrings = strings; }

    void start(AudioFileReader &file) override
    {
        while (file.read()) {}
        sayAll();
    }

    void start() override { isLive = true; }

    void feed(AudioBlock block) override
    {
        const std::lock_guard lock(m_mutex);
        if (isLive && !m_isOver) {
            heard.format = block.format;
            heard.samples.insert(heard.samples.end(), block.samples.begin(), block.samples.end());
        }
    }

    void finish() override
    {
        const std::lock_guard lock(m_mutex);
        m_isOver = true;
        const bool isSilent = std::ranges::all_of(heard.samples, [](float sample) { return sample == 0; });
        QTimer::singleShot(0, &m_later, [this, isSilent] {
            if (!isCancelled && !isSilent) {
                sayAll();
            } else if (!isCancelled) {
                m_results.finish();
            }
        });
    }

    void cancelAndFinishNow() override
    {
        isCancelled = true;
        m_results.finish();
    }

    Task<std::optional<SpeechResult>> nextResult() override { return m_results.next(); }

    std::optional<QStringList> contextualStrings;
    bool isLive = false;
    bool isCancelled = false;
    AudioBlock heard; ///< all that was fed

private:
    void sayAll()
    {
        for (const SpeechResult &result : m_script) {
            m_results.push(result);
        }
        m_results.finish(m_failure);
    }

    QList<SpeechResult> m_script;
    std::exception_ptr m_failure;
    std::mutex m_mutex; ///< guards what feed() touches
    bool m_isOver = false;
    Channel<SpeechResult> m_results;
    QObject m_later; ///< whose end ends what is still to come
};

/// Hears English and nothing else; its model can be missing.
class FakeSpeechModels final : public SpeechModels {
public:
    std::optional<QString> supportedLocale(const QString &equivalentTo) override
    {
        return equivalentTo.startsWith(u"en") ? std::optional(equivalentTo) : std::nullopt;
    }

    Task<> prepare(QString) override
    {
        if (!isInstalled) {
            throw VeskError::noSpeechModel();
        }
        co_return;
    }

    std::optional<AudioFormat> bestAudioFormat(const QString &) override
    {
        return isInstalled ? std::optional(AudioFormat{16000, 1}) : std::nullopt;
    }

    std::unique_ptr<SpeechAnalyzer> makeAnalyzer(const QString &) override
    {
        auto analyzer = std::make_unique<FakeSpeechAnalyzer>(results, failure);
        lastAnalyzer = analyzer.get();
        return analyzer;
    }

    bool isInstalled = true;
    QList<SpeechResult> results;
    std::exception_ptr failure;
    FakeSpeechAnalyzer *lastAnalyzer = nullptr; ///< gone when its recognition is over
};

} // namespace vesk
