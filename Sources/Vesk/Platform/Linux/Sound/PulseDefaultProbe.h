#pragma once

#include "Platform/Linux/Sound/PulsePointers.h"

#include <functional>
#include <string>

namespace vesk {

/// Asks for the default source over a connection made for the question. A connection to PipeWire's server
/// that stays can miss that the default changed, and is then told the old one for ever (0.3.65, about one
/// change in ten on a busy machine); a new one is told the truth. Used under the loop's lock.
class PulseDefaultProbe {
public:
    /// `answered` comes on the loop's thread with the name of the default source; not at all when there is no
    /// answer.
    PulseDefaultProbe(pa_mainloop_api *api, std::string server,
                      std::function<void(const std::string &)> answered);
    ~PulseDefaultProbe();
    PulseDefaultProbe(const PulseDefaultProbe &) = delete;
    PulseDefaultProbe &operator=(const PulseDefaultProbe &) = delete;

    /// Does nothing while a question is open.
    void ask();

private:
    void contextChanged();
    void end();

    pa_mainloop_api *m_api;
    std::string m_server;
    std::function<void(const std::string &)> m_answered;
    PulsePointer<pa_context> m_context;
};

} // namespace vesk
