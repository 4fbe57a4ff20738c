#include "Platform/Linux/Sound/PulseDefaultProbe.h"

#include <utility>

namespace vesk {

PulseDefaultProbe::PulseDefaultProbe(pa_mainloop_api *api, std::string server,
                                     std::function<void(const std::string &)> answered)
    : m_api(api)
    , m_server(std::move(server))
    , m_answered(std::move(answered))
{
}

PulseDefaultProbe::~PulseDefaultProbe() { end(); }

void PulseDefaultProbe::ask()
{
    if (m_context && PA_CONTEXT_IS_GOOD(pa_context_get_state(m_context.get()))) {
        return;
    }
    m_context.reset(pa_context_new(m_api, "Vesk"));
    pa_context_set_state_callback(
        m_context.get(),
        [](pa_context *, void *self) { static_cast<PulseDefaultProbe *>(self)->contextChanged(); }, this);
    pa_context_connect(m_context.get(), m_server.empty() ? nullptr : m_server.c_str(), PA_CONTEXT_NOAUTOSPAWN,
                       nullptr);
}

void PulseDefaultProbe::contextChanged()
{
    if (pa_context_get_state(m_context.get()) != PA_CONTEXT_READY) {
        return;
    }
    const auto onServer = [](pa_context *, const pa_server_info *info, void *self) {
        auto &probe = *static_cast<PulseDefaultProbe *>(self);
        const std::string name =
            info != nullptr && info->default_source_name != nullptr ? info->default_source_name : "";
        probe.end();
        if (!name.empty()) {
            probe.m_answered(name);
        }
    };
    const PulsePointer<pa_operation> question(pa_context_get_server_info(m_context.get(), onServer, this));
}

void PulseDefaultProbe::end()
{
    if (m_context) {
        pa_context_set_state_callback(m_context.get(), nullptr, nullptr);
        pa_context_disconnect(m_context.get());
        m_context.reset();
    }
}

} // namespace vesk
