#pragma once

#include "Platform/AudioConverter.h"
#include "Platform/Linux/Speech/LiveDecoding.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace vesk {

/// Listens to blocks as they arrive and hands what they say to a LiveDecoding, on a thread of its own. The
/// destructor ends that thread, which never recognises and so never takes long.
class LiveRecognition {
public:
    LiveRecognition(AudioConverters &converters, QString voiceActivityModel,
                    std::shared_ptr<LiveDecoding> decoding);
    ~LiveRecognition();
    LiveRecognition(const LiveRecognition &) = delete;
    LiveRecognition &operator=(const LiveRecognition &) = delete;

    /// Any thread; waits for nothing. Ignored after finish() and after a failure.
    void feed(AudioBlock block);

    /// No more blocks come.
    void finish();

private:
    void listen();
    void listenToAll(class HeardSound &sound);
    std::deque<AudioBlock> nextBlocks();

    AudioConverters &m_converters;
    const QString m_voiceActivityModel;
    const std::shared_ptr<LiveDecoding> m_decoding;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<AudioBlock> m_blocks;
    bool m_isEnding = false;
    std::thread m_thread; // last: it starts when all it uses is there
};

} // namespace vesk
